#ifndef CONTENT_ZIP_EXTRACT_H
#define CONTENT_ZIP_EXTRACT_H

#include <minizip/unzip.h>

#include <cstdint>
#include <string>

// Entries of archives as files. Paths are Windows paths in UTF-8. Each result is 0 or negative.

// How many bytes may still be written, whatever the archive claims about its sizes.
struct ExtractLimits {
    uint64_t entry_bytes;    // by one entry
    uint64_t archive_bytes;  // by all entries together; goes down with each
};

// Above the largest book that the store takes, 2 GB, and well above what it becomes unpacked.
inline constexpr ExtractLimits kUnzipLimits = {4ULL << 30, 8ULL << 30};

enum class ExtractResult : int32_t {
    kDone = 0,
    kNoArchive = -1,
    kNoPlace = -2,      // the name leads out of the folder, or is no name for a file
    kNotReplaced = -3,  // what is there cannot be deleted
    kNotWritten = -4,   // the file cannot be made or written, or would pass a limit
};

// Puts the entry at the cursor below a folder, under its own inner path, in the place of a file that is
// there. An entry that cannot be opened is passed over, and damaged data end the file early: both count as
// done. Of a failed entry no file is left.
ExtractResult ExtractCurrentEntry(unzFile zip, const std::string &folder, ExtractLimits &limits);

// Extracts all entries, up to the first that fails. 0; -2 no archive; -3 an entry failed or there are too
// many, which is logged.
int32_t UnzipAll(const std::string &zip_path, const std::string &folder, ExtractLimits limits = kUnzipLimits);

// Extracts the first entry whose name matches `entry_name` without regard to case. The name counts as a
// regular expression, and its backslashes as "/". 0; -1 no archive; -2 no such entry; -4 the extraction
// failed.
int32_t ExtractEntry(const std::string &zip_path, const std::string &entry_name, const std::string &folder);

// Extracts the entry of exactly this name, but for ASCII case, to a file that appears whole or not at all. 0,
// or -1 on any failure.
int32_t ExtractEntryToFile(const std::string &zip_path, const std::string &entry_name,
                           const std::string &file_path);

#endif
