#include "platform/windows/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

#include "platform/limits.h"
#include "platform/windows/file_descriptor.h"
#include "platform/windows/native_path.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/rename_entry.h"
#include "platform/windows/temporary_name.h"

namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kPermissions = 0777;

// The path behind the links that a path ends in, whether there is something or not. Empty if a link cannot be
// read or if there are too many.
std::optional<std::string> FollowLinks(std::string path) {
    std::array<char, PATH_MAX> target;
    for (uint64_t links = 0; !limits::kLinks.IsPassedBy(links + 1); ++links) {
        const ssize_t size = readlink(path.c_str(), target.data(), target.size());
        if (size < 0 && errno != EINVAL && errno != ENOENT) return std::nullopt;
        if (size < 0) return path;
        const std::string_view text(target.data(), static_cast<size_t>(size));
        path = text.starts_with('/') ? std::string(text) : FolderOf(path) + "/" + std::string(text);
    }
    return std::nullopt;
}

// Gives a new file what the old one had. The owner stays ours where the system does not let us give files
// away; that failure is dropped on purpose.
bool TakeOver(int file, const struct stat &old) {
    if (fchown(file, old.st_uid, old.st_gid) != 0) {
        static_cast<void>(fchown(file, static_cast<uid_t>(-1), old.st_gid));
    }
    return fchmod(file, old.st_mode & kPermissions) == 0;
}

}  // namespace

struct AtomicFile::State {
    std::string target;
    std::string temporary;  // empty once it has become the target
    FileDescriptor file;
    bool failed = false;

    State() = default;
    State(const State &) = delete;
    State &operator=(const State &) = delete;
    ~State() {
        file.Close();
        if (!temporary.empty()) unlink(temporary.c_str());
    }

    // Makes the temporary file, as the old file was if there is one.
    bool Open() {
        struct stat old;
        const bool exists = stat(target.c_str(), &old) == 0;
        if (!exists && errno != ENOENT) return false;
        if (exists && (!S_ISREG(old.st_mode) || access(target.c_str(), W_OK) != 0)) return false;
        std::string path = TemporaryPathIn(FolderOf(target));
        const mode_t mode = exists ? kPrivateMode : kNewFileMode;
        file = FileDescriptor(Uninterrupted(
            [&] { return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode); }));
        if (!file) return false;
        temporary = std::move(path);  // needs no memory, now that there is a file
        return !exists || TakeOver(file.get(), old);
    }
};

std::optional<AtomicFile> AtomicFile::Create(std::string_view windows_path) {
    const std::string path = NativePath(windows_path);
    if (!IsWindowsFileName(FileNameOf(path))) return std::nullopt;
    std::optional<std::string> target = FollowLinks(path);
    if (!target) return std::nullopt;
    auto state = std::make_unique<State>();
    state->target = std::move(*target);
    if (!state->Open()) return std::nullopt;
    return AtomicFile(std::move(state));
}

AtomicFile::AtomicFile(std::unique_ptr<State> state) : state_(std::move(state)) {}
AtomicFile::AtomicFile(AtomicFile &&other) noexcept = default;
AtomicFile &AtomicFile::operator=(AtomicFile &&other) noexcept = default;
AtomicFile::~AtomicFile() = default;

bool AtomicFile::Write(const void *bytes, size_t size) {
    const auto *rest = static_cast<const char *>(bytes);
    while (size > 0 && !state_->failed) {
        const ssize_t written = Uninterrupted([&] { return write(state_->file.get(), rest, size); });
        if (written <= 0) {
            state_->failed = true;
            break;
        }
        rest += written;
        size -= static_cast<size_t>(written);
    }
    return !state_->failed;
}

bool AtomicFile::Commit() {
    const bool written = !state_->failed &&
                         Uninterrupted([this] { return fsync(state_->file.get()); }) == 0 &&
                         state_->file.Close();
    if (!written || rename(state_->temporary.c_str(), state_->target.c_str()) != 0) return false;
    state_->temporary.clear();
    // The new file is in place and complete. Should the power fail before the disk has its name, the old one
    // is whole, so a fault here is dropped on purpose.
    SyncFolder(FolderOf(state_->target));
    return true;
}
