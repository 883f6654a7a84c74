// What a file may ask for at most.
//
// Files come from anybody, and some are made to harm: each limit here stands well above what real files have
// and below what would hurt. What is counted is what is there, not what a header claims. A reader that meets
// a limit gives the file, or the part of it, up; whoever passes it over tells the log which limit that was
// (driver/limit_log.h).
#ifndef PLATFORM_LIMITS_H
#define PLATFORM_LIMITS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

struct Limit {
    const char *name;  // what is counted, as the log says it behind the number
    uint64_t value;

    // True if `amount` is more. Then this is the limit that the thread has hit.
    constexpr bool IsPassedBy(uint64_t amount) const {
        if (amount <= value) return false;
        Hit();
        return true;
    }
    void Hit() const;
};

// The limit that a thread has hit last; without a name if none.
inline thread_local Limit hit_limit = {nullptr, 0};

inline void Limit::Hit() const {
    hit_limit = *this;
}

// The limit that this thread has hit since the last call.
inline Limit TakeHitLimit() {
    return std::exchange(hit_limit, {nullptr, 0});
}

namespace limits {

inline constexpr uint64_t kKiB = 1024;
inline constexpr uint64_t kMiB = 1024 * kKiB;
inline constexpr uint64_t kGiB = 1024 * kMiB;

// --- Property lists: the library XML, preferences, the book catalogue, lists in archives

// Containers inside containers, in every format. Real lists stay below 20.
inline constexpr Limit kListDepth = {"levels of containers in a property list", 512};
// Lengths are 32 bits wide, so no text, no data and no list may be longer.
inline constexpr Limit kListBytes = {"bytes in a property list", std::numeric_limits<uint32_t>::max() - 1};
// Containers of binary lists may share their content, so a small file can describe a tree of any size.
// Written out as a tree it may be so many times its file; small ones may be larger.
inline constexpr Limit kListExpansion = {"times its size for a binary property list as a tree", 256};
inline constexpr uint64_t kListFreeBytes = kMiB;
// Many times the size of the longest that applications and books are known to hold. As XML it may take a
// dozen times its size in memory.
inline constexpr Limit kEntryListBytes = {"bytes in a property list of an archive", kMiB};
// The old text form: tables of texts in applications, of some KB. Two bytes of it can make a value.
inline constexpr Limit kOldStyleBytes = {"bytes in an old-style property list", 512 * kKiB};

// --- "iTunes Library.itl"

// The largest known, of a hundred thousand tracks, have some 20 MB, and come to 150 MB.
inline constexpr Limit kItlFileBytes = {"bytes in a library file", 512 * kMiB};
inline constexpr Limit kItlBodyBytes = {"bytes in the body of a library file", kGiB};
// Deflate reaches a factor of about 1030, so a small file could keep a reader busy for minutes. Real files of
// some size expand 8 to 13 times; the smallest 27 times, to 0.1 MB, as they are hardly more than empty lists.
inline constexpr Limit kItlExpansion = {"times its size for the body of a library file", 64};
inline constexpr uint64_t kItlFreeBytes = kMiB;
// Of a real file two to three times the length is kept; of a crafted one, which deflate makes small, it could
// be a hundred times.
inline constexpr Limit kItlKeptExpansion = {"times its size in memory for a library file", 16};
inline constexpr uint64_t kItlFreeKeptBytes = 16 * kMiB;
// The longest texts that iTunes writes, descriptions of podcasts, have 4 KB; of those that are read, none
// has 1.
inline constexpr Limit kItlTextBytes = {"bytes in a text of a library file", 64 * kKiB};

// --- Archives: books and applications

// More than any real book or application has.
inline constexpr Limit kZipEntries = {"entries in an archive", 65535};
// minizip cuts longer names, and such an entry is not found by its exact name.
inline constexpr Limit kZipNameBytes = {"bytes in the name of an entry", 256};
// A pattern can come from a book. A longer one matches no name that is kept, and one that has to go back more
// often than this for one name is made to take forever.
inline constexpr Limit kPatternBytes = {"bytes in a pattern for entries", 4096};
inline constexpr Limit kPatternSteps = {"steps of a pattern for the name of an entry", 10000};
// An entry by itself is a cover, an icon or a document.
inline constexpr Limit kZipEntryBytes = {"bytes inflated from one entry", 64 * kMiB};
// Above the largest book that the store takes, 2 GB, and well above what it becomes unpacked.
inline constexpr Limit kBookEntryBytes = {"bytes inflated from one entry of a book", 4 * kGiB};
inline constexpr Limit kBookBytes = {"bytes inflated from one book", 8 * kGiB};
// All that comes out against the whole archive, so entries that share their data gain nothing. Real books
// hold small files that shrink a lot; anything larger than this is mostly pictures, which do not.
inline constexpr Limit kZipExpansion = {"times its size for what an archive inflates to", 256};
inline constexpr uint64_t kZipFreeBytes = kMiB;
// When folders are packed: each level keeps its folder open.
inline constexpr Limit kPackedDepth = {"levels of folders to pack", 64};

// --- Documents of books and applications

// Many times the size of the largest package document of a real book.
inline constexpr Limit kTextFileBytes = {"bytes in a text document", 8 * kMiB};
// Pages of real books stay below 40 levels. The XML library calls itself for each.
inline constexpr Limit kXmlDepth = {"levels of elements in an XML document", 128};
// Tags, attributes, comments and the like: six times those of a package document with 5000 files. The XML
// library spends a hundred bytes on each.
inline constexpr Limit kXmlNodes = {"nodes in an XML document", 150'000};

// --- Media files and artwork

// Reads of one file. A sound file takes some dozens; a search for frames takes one for each kilobyte, so this
// is an end behind 16 MB without any.
inline constexpr Limit kMediaReads = {"reads of a media file", 16384};
// A ringtone has some fifty, and each that is nested costs half a kilobyte of the stack.
inline constexpr Limit kMediaAtoms = {"atoms in a media file", 1024};
// Frames of ID3v2 tags. Real files have some dozens; ten bytes of a tag can make one, which takes half a
// kilobyte in memory.
inline constexpr Limit kTagFrames = {"frames in the tags of a file", 4096};
// A tag with compressed frames. Deflated data grows at most a thousandfold, so this keeps a tag below 256 MB.
// Hardly any program compresses frames, and pictures, which are large, do not get smaller by it.
inline constexpr Limit kCompressedTagBytes = {"bytes around a compressed frame of a tag", 256 * kKiB};
// A file of the artwork cache has up to a dozen. Each picture is a node in memory.
inline constexpr Limit kArtworkBoxes = {"boxes in an artwork file", 1024};
// A cache holds a file or two for each track. Where many tracks share an id that many files have, nodes would
// grow as the product of both.
inline constexpr Limit kArtworkFiles = {"files of the artwork cache for one track", 8};
// More than any cover has, 4096 x 4096.
inline constexpr Limit kPicturePixels = {"pixels in a picture", uint64_t{4096} * 4096};
// Pictures on the net are a few hundred kilobytes at most, while somebody waits.
inline constexpr Limit kDownloadBytes = {"bytes in a download", 32 * kMiB};

// --- Folders and paths

// Deeper than anyone keeps media. Each level holds a search open, of which a process has not many.
inline constexpr Limit kFolderDepth = {"levels of folders", 256};
// Lists nest a few levels at most. Places in the tree are compared level by level.
inline constexpr Limit kListNesting = {"levels of lists in lists", 64};
// For hosts: a tree that goes deeper is damaged or has a cycle.
inline constexpr Limit kTreeDepth = {"levels of a library tree", 100};
// As many links at the end of a path as the system follows.
inline constexpr Limit kLinks = {"links in a row", 40};
// An entry under a longer name, a cover or an icon, could not be found again.
inline constexpr Limit kEntryPathBytes = {"bytes in the path of an entry", 259};
// Temporary files: room for a path on Windows, in characters, and in bytes of UTF-8 for books.
inline constexpr Limit kTempPathCharacters = {"characters in the path of a temporary file", 259};
inline constexpr Limit kTempPathBytes = {"bytes in the path of a temporary file", 519};

}  // namespace limits

#endif
