#include "content/zip_extract.h"

#include <algorithm>
#include <array>
#include <optional>

#include "content/glib_owner.h"
#include "content/path_text.h"
#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_entry_path.h"
#include "platform/velmar_path/velmar_path.h"
#include "platform/windows/atomic_file.h"
#include "platform/windows/native_path.h"

namespace {

constexpr int kFolderMode = 0777;

// Single entries are covers and documents.
constexpr ExtractLimits kSingleEntryLimits = {kMaxZipEntryInMemory, kMaxZipEntryInMemory};

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
bool CopyEntry(ZipEntryStream &entry, GOutputStream *output, ExtractLimits &limits) {
    std::array<char, kZipBlockBytes> block;
    uint64_t left = std::min(limits.entry_bytes, limits.archive_bytes);
    for (;;) {
        const int count = entry.Read(block);
        if (count <= 0) return true;
        const auto size = static_cast<gsize>(count);
        if (size > left) return false;
        left -= size;
        limits.archive_bytes -= size;
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

ExtractResult ExtractFile(ZipEntryStream &entry, const std::string &native_path, ExtractLimits &limits) {
    const GObjectOwner<GFile> file(g_file_new_for_path(native_path.c_str()));
    const bool taken = Exists(native_path) || IsLink(native_path);
    if (taken && g_file_delete(file.get(), nullptr, nullptr) == FALSE) return ExtractResult::kNotReplaced;
    const GObjectOwner<GFileOutputStream> output = CreateFile(file.get());
    if (!output) return ExtractResult::kNotWritten;
    const bool copied = CopyEntry(entry, G_OUTPUT_STREAM(output.get()), limits);
    const bool closed = g_output_stream_close(G_OUTPUT_STREAM(output.get()), nullptr, nullptr) != FALSE;
    if (copied && closed) return ExtractResult::kDone;
    g_file_delete(file.get(), nullptr, nullptr);
    return ExtractResult::kNotWritten;
}

ExtractResult ExtractInto(const std::string &native_folder, unzFile zip, ExtractLimits &limits) {
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
    return ExtractFile(stream, *target, limits);
}

bool ExtractAllEntries(unzFile zip, const std::string &folder, ExtractLimits &limits) {
    const std::string native_folder = NativePath(folder);
    ZipCursor cursor(zip);
    for (; cursor.Valid(); cursor.Next()) {
        if (ExtractInto(native_folder, zip, limits) != ExtractResult::kDone) return false;
    }
    return !cursor.Exceeded();
}

bool WriteWholeFile(const std::string &path, const std::string &bytes) {
    std::optional<AtomicFile> file = AtomicFile::Create(path);
    return file && file->Write(bytes.data(), bytes.size()) && file->Commit();
}

}  // namespace

ExtractResult ExtractCurrentEntry(unzFile zip, const std::string &folder, ExtractLimits &limits) {
    if (zip == nullptr) return ExtractResult::kNoArchive;
    return ExtractInto(NativePath(folder), zip, limits);
}

int32_t UnzipAll(const std::string &zip_path, const std::string &folder, ExtractLimits limits) {
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip) return IsEmptyZip(zip_path) ? 0 : -2;
    if (ExtractAllEntries(zip.get(), folder, limits)) return 0;
    WriteVelmarLog("%s", ("decompress file \"" + zip_path + "\" failed\n").c_str());
    return -3;
}

int32_t ExtractEntry(const std::string &zip_path, const std::string &entry_name, const std::string &folder) {
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip) return -1;
    std::string pattern = "^" + entry_name + "$";
    ReplaceChar(pattern, '\\', '/');
    if (!FindEntryByRegex(zip.get(), pattern)) return -2;
    ExtractLimits limits = kSingleEntryLimits;
    return ExtractCurrentEntry(zip.get(), folder, limits) == ExtractResult::kDone ? 0 : -4;
}

int32_t ExtractEntryToFile(const std::string &zip_path, const std::string &entry_name,
                           const std::string &file_path) {
    const ZipReadHandle zip = OpenZipForRead(zip_path);
    if (!zip || !LocateZipEntry(zip.get(), entry_name)) return -1;
    const std::optional<std::string> bytes = ReadCurrentZipEntry(zip.get());
    return bytes && WriteWholeFile(file_path, *bytes) ? 0 : -1;
}
