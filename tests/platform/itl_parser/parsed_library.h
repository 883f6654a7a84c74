// Reads .itl files of the tests from memory.
#ifndef TESTS_PLATFORM_ITL_PARSER_PARSED_LIBRARY_H
#define TESTS_PLATFORM_ITL_PARSER_PARSED_LIBRARY_H

#include <string>

#include "platform/itl_parser/library_content.h"
#include "tests/support/itl_file.h"

struct ParsedLibrary {
    explicit ParsedLibrary(const std::string &bytes);

    bool valid = false;
    size_t bytes_read = 0;  // of the file
    itl_parser::LibraryContent content;
};

// All that was read, a line for each track and list; "refused" for a file that is not valid.
std::string Describe(const ParsedLibrary &library);
std::string Describe(const std::string &bytes);

// A small library: texts in every encoding, an album's rating, lists of every sort.
ItlFile SmallLibrary(const ItlForm &form);

// What Describe tells of it in a form. The first versions have fewer fields.
std::string SmallLibraryText(const ItlForm &form);

#endif
