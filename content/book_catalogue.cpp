#include "content/book_catalogue.h"

#include <array>
#include <memory>

#include "content/app_info.h"
#include "content/book.h"
#include "content/file_kinds.h"
#include "content/glib_owner.h"
#include "content/path_text.h"
#include "content/plist_values.h"
#include "content/zip_entry.h"
#include "content/zip_extract.h"
#include "driver/attributes.h"
#include "driver/limit_log.h"
#include "platform/windows/file_handle.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr const char *kBooks = "Books";
constexpr const char *kPath = "path";
constexpr const char *kItemId = "itemId";
constexpr const char *kAssetInfo = "asset-info";
constexpr const char *kFileSize = "file-size";
constexpr const char *kDigest = "BKGeneratedItemId";

constexpr int32_t kLoadFailed = -2;

enum AddResult : int32_t {
    kAdded = 0,
    kNoCatalogue = -1,
    kNoBooks = -2,
    kNoFile = -3,
    kNoArchive = -4,
    kKnownBook = -5,
};

using ChecksumOwner = std::unique_ptr<GChecksum, GlibRelease<g_checksum_free>>;

// Values that were read never change: what takes a new one is a copy. Of a value that is no dictionary, an
// empty one.
CFOwner CopyOfDictionary(const void *value) {
    if (!IsDictionary(value)) {
        return CFOwner(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                 &kCFTypeDictionaryValueCallBacks));
    }
    return CFOwner(
        CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, static_cast<CFDictionaryRef>(value)));
}

CFMutableDictionaryRef Mutable(const CFOwner &dictionary) {
    return static_cast<CFMutableDictionaryRef>(const_cast<void *>(dictionary.get()));
}

void AddIfAbsent(const CFOwner &dictionary, const char *key, const CFOwner &value) {
    CFDictionaryAddValue(Mutable(dictionary), Utf8ToCFString(key).get(), value.get());
}

void Replace(const CFOwner &dictionary, const char *key, const CFOwner &value) {
    CFDictionaryRemoveValue(Mutable(dictionary), Utf8ToCFString(key).get());
    AddIfAbsent(dictionary, key, value);
}

CFOwner NumberValue(int64_t number) {
    return CFOwner(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &number));
}

// The catalogue as it was read, and its list.
struct Catalogue {
    CFOwner root;
    CFArrayRef books = nullptr;

    CFIndex Count() const { return CFArrayGetCount(books); }
    const void *At(CFIndex index) const { return CFArrayGetValueAtIndex(books, index); }
};

int32_t ReadCatalogue(Catalogue &catalogue) {
    catalogue.root = ReadPropertyListFile(GetBookCataloguePath());
    if (!IsDictionary(catalogue.root.get())) return kNoCatalogue;
    const void *books = PlistValue(catalogue.root.get(), kBooks);
    if (!IsArray(books)) return kNoBooks;
    catalogue.books = static_cast<CFArrayRef>(books);
    return 0;
}

// A write that fails leaves the file as it was; nobody asks for its outcome.
void WriteWithEntry(const Catalogue &catalogue, const CFOwner &entry) {
    const CFOwner root = CopyOfDictionary(catalogue.root.get());
    const CFOwner books(CFArrayCreateMutableCopy(kCFAllocatorDefault, 0, catalogue.books));
    CFArrayAppendValue(static_cast<CFMutableArrayRef>(const_cast<void *>(books.get())), entry.get());
    Replace(root, kBooks, books);
    WritePropertyListFile(GetBookCataloguePath(), root.get(), kCFPropertyListBinaryFormat_v1_0);
}

// What the archive of a book says of itself, ready to take more; empty if it says nothing.
std::optional<CFOwner> ReadBookMetadata(const std::string &path) {
    const LimitLog limit_log(path);
    const ZipReadHandle zip = OpenZipForRead(path);
    if (!zip) return std::nullopt;
    CFOwner metadata;
    if (LocateZipEntry(zip.get(), "iTunesMetadata.plist")) metadata = ReadEntryPropertyList(zip.get());
    return CopyOfDictionary(metadata.get());
}

// The largest id in the catalogue, at least 0; empty if `own_id` is one of them.
std::optional<int64_t> LargestOtherId(const Catalogue &catalogue, int64_t own_id) {
    int64_t largest = 0;
    for (CFIndex i = 0; i < catalogue.Count(); ++i) {
        const auto id = PlistInteger(catalogue.At(i), kItemId);
        if (id == own_id) return std::nullopt;
        if (id) largest = std::max(largest, *id);
    }
    return largest;
}

void AddFileSize(const CFOwner &entry, int32_t size) {
    const CFOwner asset_info = CopyOfDictionary(PlistValue(entry.get(), kAssetInfo));
    AddIfAbsent(asset_info, kFileSize, NumberValue(size));
    Replace(entry, kAssetInfo, asset_info);
}

int32_t AddEpub(const Catalogue &catalogue, const std::string &path, int32_t size) {
    const auto metadata = ReadBookMetadata(path);
    if (!metadata) return kNoArchive;
    const CFOwner &entry = *metadata;
    int64_t id = PlistInteger(entry.get(), kItemId).value_or(0);
    const auto largest = LargestOtherId(catalogue, id);
    if (!largest) return kKnownBook;
    AddFileSize(entry, size);
    if (id == 0) {
        // Behind the last number there is none; it begins anew with the first.
        id = static_cast<int64_t>(static_cast<uint64_t>(*largest) + 1);
        AddIfAbsent(entry, kItemId, NumberValue(id));
    }
    const std::string folder = GetBookCatalogueFolder() + "\\" + std::to_string(id) + ".epub";
    // A book that could be unpacked in part only is entered all the same.
    UnzipAll(path, folder);
    AddIfAbsent(entry, kPath, Utf8ToCFString(folder));
    WriteWithEntry(catalogue, entry);
    return kAdded;
}

bool HasDigest(const Catalogue &catalogue, const std::string &digest) {
    for (CFIndex i = 0; i < catalogue.Count(); ++i) {
        const auto known = CFStringToUtf8(PlistString(catalogue.At(i), kDigest));
        if (known && _stricmp(known->c_str(), digest.c_str()) == 0) return true;
    }
    return false;
}

int32_t AddFile(const Catalogue &catalogue, const std::string &path) {
    const auto digest = ComputeBookDigest(path);
    if (!digest) return kNoFile;
    if (HasDigest(catalogue, *digest)) {
        _wremove(Utf8ToWide(path).c_str());
        return kKnownBook;
    }
    const CFOwner entry = CopyOfDictionary(nullptr);
    AddIfAbsent(entry, kPath, Utf8ToCFString(path));
    AddIfAbsent(entry, kDigest, Utf8ToCFString(*digest));
    WriteWithEntry(catalogue, entry);
    return kAdded;
}

void AddListedBook(DriverPath *book_category, const void *entry) {
    const auto path = CFStringToUtf8(PlistString(entry, kPath));
    const auto kind = path ? GetFileCategory(*path) : std::nullopt;
    DriverPath *book = nullptr;
    if (!kind || kind->category != node_category::kBook || AddLocalBook(book_category, *path, &book) != 0)
        return;
    const auto size = PlistInteger(PlistValue(entry, kAssetInfo), kFileSize);
    if (size) AddAttribute(book, "st_size", std::to_string(*size).c_str());
}

}  // namespace

std::string GetBookCataloguePath() {
    return GetBookCatalogueFolder() + "\\Books.plist";
}

int32_t LoadBookCatalogue(DriverPath *book_category) {
    Catalogue catalogue;
    const int32_t result = ReadCatalogue(catalogue);
    if (result == kNoCatalogue) return kLoadFailed;
    if (result != 0) return 0;
    for (CFIndex i = 0; i < catalogue.Count(); ++i)
        AddListedBook(book_category, catalogue.At(i));
    return 0;
}

int32_t AddToBookCatalogue(const std::string &path, int32_t media_type) {
    Catalogue catalogue;
    const int32_t result = ReadCatalogue(catalogue);
    if (result != 0) return result;
    struct _stat64i32 status;
    if (_wstat64i32(Utf8ToWide(path).c_str(), &status) != 0) return kNoFile;
    return media_type == kMediaTypeEpub ? AddEpub(catalogue, path, status.st_size) : AddFile(catalogue, path);
}

std::optional<std::string> ComputeBookDigest(const std::string &path) {
    const FileHandle file(path, L"rb");
    if (!file) return std::nullopt;
    const ChecksumOwner checksum(g_checksum_new(G_CHECKSUM_MD5));
    std::array<unsigned char, 65536> block;
    while (const size_t count = std::fread(block.data(), 1, block.size(), file.get()))
        g_checksum_update(checksum.get(), block.data(), static_cast<gssize>(count));
    // The digest of a part would be that of another book.
    if (std::ferror(file.get()) != 0) return std::nullopt;
    const GTextOwner digits(g_ascii_strup(g_checksum_get_string(checksum.get()), -1));
    return std::string(digits.get());
}
