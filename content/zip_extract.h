#ifndef CONTENT_ZIP_EXTRACT_H
#define CONTENT_ZIP_EXTRACT_H

#include <cstdint>
#include <string>

#include "platform/limits.h"

// Entries of archives as files. Paths are Windows paths in UTF-8. Each result is 0 or negative.

// How many bytes may be written, whatever the archive claims about its sizes.
struct ExtractLimits {
    Limit entry;    // by one entry
    Limit archive;  // by all entries together
};

inline constexpr ExtractLimits kBookLimits = {limits::kBookEntryBytes, limits::kBookBytes};

// Extracts all entries, up to the first that fails. 0; -2 no archive; -3 an entry failed or there are too
// many, which is logged.
int32_t UnzipAll(const std::string &zip_path, const std::string &folder,
                 const ExtractLimits &limits = kBookLimits);

// Extracts the first entry whose name matches `entry_name` without regard to case. The name counts as a
// regular expression, and its backslashes as "/". 0; -1 no archive; -2 no such entry; -4 the extraction
// failed.
int32_t ExtractEntry(const std::string &zip_path, const std::string &entry_name, const std::string &folder);

// Extracts the entry of exactly this name, but for ASCII case, to a file that appears whole or not at all. 0,
// or -1 on any failure.
int32_t ExtractEntryToFile(const std::string &zip_path, const std::string &entry_name,
                           const std::string &file_path);

#endif
