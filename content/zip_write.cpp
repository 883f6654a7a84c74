#include "content/zip_write.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "content/glib_owner.h"
#include "content/path_text.h"
#include "content/zip_archive.h"
#include "driver/limit_log.h"
#include "platform/limits.h"
#include "platform/velmar_path/velmar_path.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr int32_t kNoArchive = -1;
constexpr int32_t kArchiveNotMade = -2;
constexpr int32_t kNothingThere = -3;
constexpr int32_t kFileNotOpened = -4;
constexpr int32_t kFolderNotListed = -5;
constexpr int32_t kTooManyEntries = -6;
constexpr int32_t kNotCompleted = -7;

using EntryName = std::optional<std::string>;

void WriteLine(const std::string &line) {
    WriteVelmarLog("%s", line.c_str());
}

int32_t OpenNewEntry(zipFile zip, const char *name) {
    constexpr int kZip64 = 1;
    return zipOpenNewFileInZip64(zip, name, nullptr, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                 Z_DEFAULT_COMPRESSION, kZip64);
}

// The number of bytes that came before the stream's end, a fault, or `size`.
goffset CopyIntoEntry(zipFile zip, GInputStream *input, goffset size) {
    std::array<char, kZipBlockBytes> block;
    goffset total = 0;
    while (total < size) {
        const gssize count = g_input_stream_read(input, block.data(), block.size(), nullptr, nullptr);
        if (count <= 0) break;
        // The archive's file remembers a failed write until it is closed.
        zipWriteInFileInZip(zip, block.data(), static_cast<unsigned>(count));
        total += count;
    }
    return total;
}

int32_t AddFile(zipFile zip, const EntryName &entry, GFile *file, goffset size) {
    const GObjectOwner<GFileInputStream> input(g_file_read(file, nullptr, nullptr));
    if (!input) return kFileNotOpened;
    const int32_t opened = OpenNewEntry(zip, entry ? entry->c_str() : nullptr);
    if (opened < 0) {
        // The line names an entry from its second character on.
        const std::string_view name = entry ? std::string_view(*entry) : std::string_view();
        WriteLine("unable to open new file \"" + std::string(name.substr(name.empty() ? 0 : 1)) +
                  "\" in zip file\n");
        return opened;
    }
    const goffset total = CopyIntoEntry(zip, G_INPUT_STREAM(input.get()), size);
    if (total < size) {
        WriteLine("total = " + std::to_string(total) + ", size = " + std::to_string(size) + "\n");
    }
    zipCloseFileInZip(zip);
    return 0;
}

int32_t AddFolderEntry(zipFile zip, const std::string &entry) {
    const int32_t opened = OpenNewEntry(zip, (entry + "/").c_str());
    if (opened < 0) {
        WriteLine("unable to open new directory \"" + entry + "\" in zip file\n");
        return opened;
    }
    zipCloseFileInZip(zip);
    return 0;
}

// Walks a tree with the folders that it is in on a stack of its own.
class TreePacker {
  public:
    explicit TreePacker(zipFile zip) : zip_(zip) {}

    int32_t Add(const EntryName &entry, const std::string &native_path) {
        result_ = AddNode(entry, native_path);
        while (!folders_.empty())
            AddNextChild();
        return result_;
    }

  private:
    struct Folder {
        EntryName entry;
        std::string path;
        std::string id;  // empty on a file system that tells none
        GDirOwner names;
    };

    // Gives the result of the node alone; a folder's children come with the next steps of the walk.
    int32_t AddNode(const EntryName &entry, const std::string &path) {
        const GObjectOwner<GFile> file(g_file_new_for_path(path.c_str()));
        constexpr const char *kAttributes =
            G_FILE_ATTRIBUTE_STANDARD_TYPE "," G_FILE_ATTRIBUTE_STANDARD_SIZE "," G_FILE_ATTRIBUTE_ID_FILE;
        const GObjectOwner<GFileInfo> info(
            g_file_query_info(file.get(), kAttributes, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
        if (!info) return kNothingThere;
        switch (g_file_info_get_file_type(info.get())) {
            case G_FILE_TYPE_REGULAR:
                return AddFile(zip_, entry, file.get(), g_file_info_get_size(info.get()));
            case G_FILE_TYPE_DIRECTORY:
                return EnterFolder(entry, path, info.get());
            default:
                return 0;
        }
    }

    int32_t EnterFolder(const EntryName &entry, const std::string &path, GFileInfo *info) {
        const char *id = g_file_info_get_attribute_string(info, G_FILE_ATTRIBUTE_ID_FILE);
        Folder folder = {entry, path, id == nullptr ? "" : id, nullptr};
        if (IsEntered(folder.id)) return 0;
        if (limits::kPackedDepth.IsPassedBy(folders_.size() + 1)) return kFolderNotListed;
        const int32_t added = entry ? AddFolderEntry(zip_, *entry) : 0;
        if (added < 0) return added;
        folder.names.reset(g_dir_open(path.c_str(), 0, nullptr));
        if (!folder.names) return kFolderNotListed;
        folders_.push_back(std::move(folder));
        return 0;
    }

    bool IsEntered(const std::string &id) const {
        return !id.empty() && std::any_of(folders_.begin(), folders_.end(),
                                          [&](const Folder &folder) { return folder.id == id; });
    }

    // A folder without a next child is done, and its result is what its last child left.
    void AddNextChild() {
        const Folder &folder = folders_.back();
        const char *name = g_dir_read_name(folder.names.get());
        if (name == nullptr) {
            folders_.pop_back();
        } else if (limits::kZipEntries.IsPassedBy(++entries_)) {
            folders_.clear();
            result_ = kTooManyEntries;
        } else {
            // Whole texts, as entering a folder moves the records.
            const EntryName entry = folder.entry ? *folder.entry + "/" + name : name;
            const std::string path = folder.path + "/" + name;
            result_ = AddNode(entry, path);
        }
    }

    zipFile zip_;
    std::vector<Folder> folders_;
    uint32_t entries_ = 0;
    int32_t result_ = 0;
};

// A file beside another that no other process or thread comes upon. It is removed at the end of the scope
// unless it has taken the other's place. Its name is of fixed length: with an addition the other's could
// become too long.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string &target) : target_(target) {
        const std::optional<std::string> folder = DirectoryOfPath(target);
        const std::string name = std::string(GTextOwner(g_uuid_string_random()).get()) + ".tmp";
        path_ = folder ? *folder + "\\" + name : name;
    }
    ~TemporaryFile() {
        if (!path_.empty()) RemoveFileQuietly(path_);
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    const std::string &path() const { return path_; }

    bool TakePlace() {
        const std::wstring from = Utf8ToWide(path_);
        if (MoveFileExW(from.c_str(), Utf8ToWide(target_).c_str(), MOVEFILE_REPLACE_EXISTING) == FALSE)
            return false;
        path_.clear();
        return true;
    }

  private:
    std::string target_;
    std::string path_;
};

// The archive is closed in any case.
int32_t FillArchive(ZipWriteHandle zip, const std::string &folder) {
    const int32_t packed = AddPathToZip(zip.get(), std::nullopt, folder);
    const bool complete = zipClose(zip.release(), nullptr) == ZIP_OK;
    return packed < 0 || complete ? packed : kNotCompleted;
}

}  // namespace

int32_t AddPathToZip(zipFile zip, const std::optional<std::string> &entry_name, const std::string &path) {
    if (zip == nullptr) return kNoArchive;
    return TreePacker(zip).Add(entry_name, NativePath(path));
}

int32_t ZipFolder(const std::string &folder, const std::string &zip_path) {
    const LimitLog limit_log(folder);
    TemporaryFile temporary(zip_path);
    ZipWriteHandle zip = CreateZip(temporary.path());
    if (!zip) {
        WriteLine("create zip file \"" + zip_path + "\" failed\n");
        return kArchiveNotMade;
    }
    int32_t result = FillArchive(std::move(zip), folder);
    if (result >= 0 && !temporary.TakePlace()) result = kNotCompleted;
    if (result < 0) WriteLine("compress to \"" + zip_path + "\" failed\n");
    return result;
}
