#include "content/zip_extract.h"

#include <array>
#include <optional>

#include "content/glib_owner.h"
#include "content/path_text.h"
#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_entry_path.h"
#include "driver/limit_log.h"
#include "platform/velmar_path/velmar_path.h"
#include "platform/windows/atomic_file.h"
#include "platform/windows/native_path.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr int kFolderMode = 0777;

using Block = std::array<char, kZipBlockBytes>;

// Single entries are covers and documents.
constexpr ExtractLimits kSingleEntryLimits = {limits::kZipEntryBytes, limits::kZipEntryBytes};

// Counts what comes out of an archive, whatever it claims about its sizes.
class InflatedBytes {
  public:
    InflatedBytes(const std::string &zip_path, const ExtractLimits &limits) : limits_(limits) {
        struct _stat64 status = {};
        if (_wstat64(Utf8ToWide(zip_path).c_str(), &status) == 0 && status.st_size > 0)
            archive_ = static_cast<uint64_t>(status.st_size);
    }

    void BeginEntry() { entry_ = 0; }
    // False if a limit is passed.
    bool Add(uint64_t size) {
        entry_ += size;
        all_ += size;
        if (limits_.entry.IsPassedBy(entry_) || limits_.archive.IsPassedBy(all_)) return false;
        return all_ <= limits::kZipFreeBytes || !limits::kZipExpansion.IsPassedBy(all_ / archive_);
    }

  private:
    const ExtractLimits &limits_;
    uint64_t archive_ = 1;
    uint64_t entry_ = 0;
    uint64_t all_ = 0;
};

enum class ExtractResult {
    kDone,
    kNoPlace,      // the name leads out of the folder, or is no name for a file
    kNotReplaced,  // what is there cannot be deleted
    kNotWritten,   // the file cannot be made or written, or would pass a limit
};

bool Exists(const std::string &native_path) {
    return g_file_test(native_path.c_str(), G_FILE_TEST_EXISTS) != FALSE;
}

bool IsLink(const std::string &native_path) {
    return g_file_test(native_path.c_str(), G_FILE_TEST_IS_SYMLINK) != FALSE;
}

// A failure shows when something is put into the folder.
void MakeFolder(const std::string &native_path) {
    if (!Exists(native_path)) g_mkdir_with_parents(native_path.c_str(), kFolderMode);
}

// Writes what the entry holds, up to the size that it claims. False if the file takes no more or a limit is
// passed.
bool CopyEntry(ZipEntryStream &entry, GOutputStream *output, InflatedBytes &inflated) {
    Block block;
    inflated.BeginEntry();
    for (;;) {
        const int count = entry.Read(block);
        if (count <= 0) return true;
        const auto size = static_cast<gsize>(count);
        if (!inflated.Add(size)) return false;
        if (g_output_stream_write_all(output, block.data(), size, nullptr, nullptr, nullptr) == FALSE)
            return false;
    }
}

// The parent is made here too: an archive need not have entries for its folders.
GObjectOwner<GFileOutputStream> CreateFile(GFile *file) {
    const GObjectOwner<GFile> parent(g_file_get_parent(file));
    if (parent) MakeFolder(GTextOwner(g_file_get_path(parent.get())).get());
    return GObjectOwner<GFileOutputStream>(g_file_create(file, G_FILE_CREATE_NONE, nullptr, nullptr));
}

ExtractResult ExtractFile(ZipEntryStream &entry, const std::string &native_path, InflatedBytes &inflated) {
    const GObjectOwner<GFile> file(g_file_new_for_path(native_path.c_str()));
    const bool taken = Exists(native_path) || IsLink(native_path);
    if (taken && g_file_delete(file.get(), nullptr, nullptr) == FALSE) return ExtractResult::kNotReplaced;
    const GObjectOwner<GFileOutputStream> output = CreateFile(file.get());
    if (!output) return ExtractResult::kNotWritten;
    const bool copied = CopyEntry(entry, G_OUTPUT_STREAM(output.get()), inflated);
    const bool closed = g_output_stream_close(G_OUTPUT_STREAM(output.get()), nullptr, nullptr) != FALSE;
    if (copied && closed) return ExtractResult::kDone;
    g_file_delete(file.get(), nullptr, nullptr);
    return ExtractResult::kNotWritten;
}

// Puts the entry at the cursor below a folder, under its own inner path, in the place of a file that is
// there. An entry that cannot be opened is passed over, and damaged data end the file early: both count as
// done. Of a failed entry no file is left.
ExtractResult ExtractInto(const std::string &native_folder, unzFile zip, InflatedBytes &inflated) {
    const std::optional<ZipEntry> entry = CurrentZipEntry(zip);
    if (!entry) return ExtractResult::kDone;
    ZipEntryStream stream(zip, *entry);
    if (!stream) return ExtractResult::kDone;
    const std::optional<std::string> target = ZipEntryTarget(native_folder, entry->name);
    if (!target) return ExtractResult::kNoPlace;
    if (entry->name.ends_with('/')) {
        MakeFolder(*target);
        return ExtractResult::kDone;
    }
    // A file without a name would take the place of the folder.
    if (*target == native_folder) return ExtractResult::kNoPlace;
    return ExtractFile(stream, *target, inflated);
}

bool ExtractAllEntries(unzFile zip, const std::string &folder, InflatedBytes &inflated) {
    const std::string native_folder = NativePath(folder);
    ZipCursor cursor(zip);
    for (; cursor.Valid(); cursor.Next()) {
        if (ExtractInto(native_folder, zip, inflated) != ExtractResult::kDone) return false;
    }
    return !cursor.Exceeded();
}

// Writes all of the entry at the cursor. False for damaged data too.
bool WriteEntry(unzFile zip, AtomicFile &file, InflatedBytes &inflated) {
    const std::optional<ZipEntry> entry = CurrentZipEntry(zip);
    if (!entry) return false;
    ZipEntryStream stream(zip, *entry);
    if (!stream) return false;
    Block block;
    while (const int count = stream.Read(block)) {
        if (count < 0 || !inflated.Add(static_cast<uint64_t>(count))) return false;
        if (!file.Write(block.data(), static_cast<size_t>(count))) return false;
    }
    return true;
}

}  // namespace

int32_t UnzipAll(const std::string &zip_path, const std::string &folder, const ExtractLimits &limits) {
    const LimitLog limit_log(zip_path);
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip) return IsEmptyZip(zip_path) ? 0 : -2;
    InflatedBytes inflated(zip_path, limits);
    if (ExtractAllEntries(zip.get(), folder, inflated)) return 0;
    WriteVelmarLog("%s", ("decompress file \"" + zip_path + "\" failed\n").c_str());
    return -3;
}

int32_t ExtractEntry(const std::string &zip_path, const std::string &entry_name, const std::string &folder) {
    const LimitLog limit_log(zip_path);
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip) return -1;
    std::string pattern = "^" + entry_name + "$";
    ReplaceChar(pattern, '\\', '/');
    if (!FindEntryByRegex(zip.get(), pattern)) return -2;
    InflatedBytes inflated(zip_path, kSingleEntryLimits);
    return ExtractInto(NativePath(folder), zip.get(), inflated) == ExtractResult::kDone ? 0 : -4;
}

int32_t ExtractEntryToFile(const std::string &zip_path, const std::string &entry_name,
                           const std::string &file_path) {
    const LimitLog limit_log(zip_path);
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip || !LocateZipEntry(zip.get(), entry_name)) return -1;
    std::optional<AtomicFile> file = AtomicFile::Create(file_path);
    InflatedBytes inflated(zip_path, kSingleEntryLimits);
    return file && WriteEntry(zip.get(), *file, inflated) && file->Commit() ? 0 : -1;
}
