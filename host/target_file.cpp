#include "host/target_file.h"

#include <cerrno>
#include <chrono>
#include <random>

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

// The name says what the file is, should a power cut leave one behind. It never depends on the target's name,
// which may have no room for more letters.
fs::path ScratchName(const fs::path &folder) {
    std::random_device random;
    return folder / (".velmarhost-" + std::to_string(random()) + "-" + std::to_string(random()) + ".part");
}

[[noreturn]] void ThrowLastError() {
    throw std::system_error(errno, std::generic_category());
}

fs::file_time_type FileTime(int64_t seconds) {
    return std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(seconds)));
}

// Some file systems keep times in steps of two seconds.
bool IsSameTime(fs::file_time_type time, int64_t seconds) {
    const auto distance = time - FileTime(seconds);
    return distance > std::chrono::seconds(-2) && distance < std::chrono::seconds(2);
}

}  // namespace

Existing LookAtTarget(const fs::path &target, std::optional<uint64_t> size, std::optional<int64_t> modified) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(target, error);
    if (!fs::exists(status)) return Existing::kNothing;
    if (fs::is_directory(target, error)) return Existing::kDifferent;
    if (!size && !modified) return Existing::kSame;
    // The size in a library is old when a tag was changed since, so either one suffices.
    const uint64_t found_size = fs::file_size(target, error);
    if (size && !error && found_size == *size) return Existing::kSame;
    const fs::file_time_type found_time = fs::last_write_time(target, error);
    if (modified && !error && IsSameTime(found_time, *modified)) return Existing::kSame;
    return Existing::kDifferent;
}

TargetFile::TargetFile(const fs::path &folder) : scratch_([&folder] { return ScratchName(folder); }) {
    errno = 0;
    file_.reset(std::fopen(scratch_.path().c_str(), "wbx"));
    if (!file_) ThrowLastError();
}

void TargetFile::Write(std::string_view bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) ThrowLastError();
}

void TargetFile::Finish(const fs::path &target, std::optional<int64_t> modified) {
    errno = 0;
    if (std::fclose(file_.release()) != 0) ThrowLastError();
    std::error_code ignored;  // a file system without times still holds the file
    if (modified) fs::last_write_time(scratch_.path(), FileTime(*modified), ignored);
    fs::rename(scratch_.path(), target);
}

void WriteWholeFile(const fs::path &target, std::string_view bytes) {
    TargetFile file(target.parent_path());
    file.Write(bytes);
    file.Finish(target, std::nullopt);
}

}  // namespace velmarhost
