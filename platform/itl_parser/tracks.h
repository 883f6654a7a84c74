#ifndef PLATFORM_ITL_PARSER_TRACKS_H
#define PLATFORM_ITL_PARSER_TRACKS_H

#include "platform/itl_parser/library_content.h"
#include "platform/itl_parser/record_cursor.h"

namespace itl_parser {

// Reads the list of tracks that fills a section. False when anything in it is not as it should be.
bool ReadTracks(RecordCursor &cursor, uint64_t section_end, LibraryContent &content, OpenEnds &open);

}  // namespace itl_parser

#endif
