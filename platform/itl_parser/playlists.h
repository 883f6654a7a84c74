#ifndef PLATFORM_ITL_PARSER_PLAYLISTS_H
#define PLATFORM_ITL_PARSER_PLAYLISTS_H

#include "platform/itl_parser/library_content.h"
#include "platform/itl_parser/record_cursor.h"

namespace itl_parser {

// Reads the lists that fill a section. False when anything in it is not as it should be.
bool ReadPlaylists(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open);

// Gives an id to the lists that have none, as iTunes does when it loads such a file: one that no track and no
// other list has.
void NumberPlaylists(const LibraryContent &content, OpenEnds &open);

}  // namespace itl_parser

#endif
