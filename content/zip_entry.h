#ifndef CONTENT_ZIP_ENTRY_H
#define CONTENT_ZIP_ENTRY_H

#include <minizip/unzip.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/limits.h"

// Entries of an archive that is open for reading: finding one, which moves the cursor there, and reading the
// one at the cursor. Names use "/" as the separator.

struct ZipEntry {
    std::string name;
    uint64_t size;  // uncompressed, as the archive claims
    bool encrypted;
};

// What the archive says of the entry at the cursor; empty if that cannot be read.
std::optional<ZipEntry> CurrentZipEntry(unzFile zip);

// Looks for an entry by its whole name, without regard to ASCII case. The cursor stays where it was if there
// is none.
bool LocateZipEntry(unzFile zip, const std::string &name);

// The name of the first entry, in the archive's order, whose beginning matches a regular expression, without
// regard to case; empty if there is none, if the pattern is no valid one, or if it costs more steps than a
// pattern for names needs.
std::optional<std::string> FindEntryByRegex(unzFile zip, const std::string &pattern);

// The bytes of the entry at the cursor, as far as they are there; empty if it cannot be opened, is damaged,
// or has more bytes than `limit`, whatever the archive claims.
std::optional<std::string> ReadCurrentZipEntry(unzFile zip, const Limit &limit);

// Steps through all entries: `for (ZipCursor cursor(zip); cursor.Valid(); cursor.Next())`.
class ZipCursor {
  public:
    explicit ZipCursor(unzFile zip) : zip_(zip), valid_(unzGoToFirstFile(zip) == UNZ_OK) {}

    bool Valid() const { return valid_; }
    void Next();
    // True if the walk ended because the archive has more entries than limits::kZipEntries.
    bool Exceeded() const { return exceeded_; }

  private:
    unzFile zip_;
    uint32_t steps_ = 1;
    bool valid_;
    bool exceeded_ = false;
};

// The data of the entry at the cursor, open for a scope.
class ZipEntryStream {
  public:
    // An encrypted entry does not open: without its password there is only noise.
    ZipEntryStream(unzFile zip, const ZipEntry &entry)
        : zip_(!entry.encrypted && unzOpenCurrentFile(zip) == UNZ_OK ? zip : nullptr) {}
    // A wrong checksum shows only here. It is dropped on purpose: damaged bytes of a picture or a book are
    // better than none.
    ~ZipEntryStream() {
        if (zip_ != nullptr) unzCloseCurrentFile(zip_);
    }
    ZipEntryStream(const ZipEntryStream &) = delete;
    ZipEntryStream &operator=(const ZipEntryStream &) = delete;

    explicit operator bool() const { return zip_ != nullptr; }
    // The number of bytes that came; 0 at the end, negative for damaged data.
    int Read(std::span<char> buffer) {
        return unzReadCurrentFile(zip_, buffer.data(), static_cast<unsigned>(buffer.size()));
    }

  private:
    unzFile zip_;
};

#endif
