#ifndef PLATFORM_ITL_PARSER_LIBRARY_READER_H
#define PLATFORM_ITL_PARSER_LIBRARY_READER_H

#include <cstdint>

#include "platform/core_foundation/byte_source.h"
#include "platform/itl_parser/library_content.h"

namespace itl_parser {

// Reads a whole file in one pass through a window of 256 KB. False for a file that is damaged or of a form
// that is not known, and when it would take more memory than there is or KeptMemory allows; then the content
// is of no use.
bool ReadLibrary(core_foundation::ByteSource &file, uint64_t file_length, LibraryContent &content);

}  // namespace itl_parser

#endif
