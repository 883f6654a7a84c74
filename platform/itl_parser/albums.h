#ifndef PLATFORM_ITL_PARSER_ALBUMS_H
#define PLATFORM_ITL_PARSER_ALBUMS_H

#include "platform/itl_parser/library_content.h"
#include "platform/itl_parser/record_cursor.h"

namespace itl_parser {

// Reads the list of albums that fills a section, for their ratings. False when it is not as it should be.
bool ReadAlbums(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open);

// Gives tracks without a rating the one of their album, as iTunes does.
void RateTracksByAlbum(OpenEnds &open);

}  // namespace itl_parser

#endif
