#include "tests/platform/windows/faulty_system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace {

// The tests that use this run on one thread.
bool armed = false;
Fault fault = Fault::kFail;
int calls_left = 0;
bool folders_are_file_systems = false;
bool rename_flags_unknown = false;

// True at the call that meets the fault.
bool IsDue() {
    if (!armed || --calls_left != 0) return false;
    if (fault == Fault::kDie) _exit(0);
    return true;
}

bool Fails() {
    if (!IsDue() || fault == Fault::kShort) return false;
    errno = fault == Fault::kInterrupted ? EINTR : EIO;
    return true;
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of('/'));
}

bool CrossesFileSystems(const char *from, const char *to) {
    return folders_are_file_systems && FolderOf(from) != FolderOf(to);
}

template <typename... Arguments>
int Call(long number, Arguments... arguments) {
    return Fails() ? -1 : static_cast<int>(syscall(number, arguments...));
}

int Refuse(int error_number) {
    errno = error_number;
    return -1;
}

}  // namespace

FaultInjection::FaultInjection(Fault new_fault, int call_number) {
    fault = new_fault;
    calls_left = call_number;
    armed = true;
}
FaultInjection::~FaultInjection() {
    armed = false;
}
bool FaultInjection::WasHit() const {
    return calls_left <= 0;
}

FoldersAreFileSystems::FoldersAreFileSystems() {
    folders_are_file_systems = true;
}
FoldersAreFileSystems::~FoldersAreFileSystems() {
    folders_are_file_systems = false;
}

RenameFlagsUnknown::RenameFlagsUnknown() {
    rename_flags_unknown = true;
}
RenameFlagsUnknown::~RenameFlagsUnknown() {
    rename_flags_unknown = false;
}

extern "C" {

int open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Call(SYS_openat, AT_FDCWD, path, flags, mode);
}

ssize_t write(int file, const void *bytes, size_t size) {
    const bool is_due = IsDue();
    if (is_due && fault == Fault::kShort) return syscall(SYS_write, file, bytes, std::min<size_t>(size, 1));
    if (is_due) return Refuse(fault == Fault::kInterrupted ? EINTR : EIO);
    return syscall(SYS_write, file, bytes, size);
}

ssize_t read(int file, void *buffer, size_t size) {
    return Fails() ? -1 : syscall(SYS_read, file, buffer, size);
}

int close(int file) {
    const bool fails = Fails();
    const int error = errno;
    const int result = static_cast<int>(syscall(SYS_close, file));
    return fails ? Refuse(error) : result;
}

// No test looks at the disk itself, which is slow.
int fsync(int) {
    return Fails() ? -1 : 0;
}

int fchmod(int file, mode_t mode) noexcept {
    return Call(SYS_fchmod, file, mode);
}
int fchown(int file, uid_t owner, gid_t group) noexcept {
    return Call(SYS_fchown, file, owner, group);
}
int chmod(const char *path, mode_t mode) noexcept {
    return Call(SYS_fchmodat, AT_FDCWD, path, mode);
}
int unlink(const char *path) noexcept {
    return Call(SYS_unlinkat, AT_FDCWD, path, 0);
}
int rmdir(const char *path) noexcept {
    return Call(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR);
}
int mkdir(const char *path, mode_t mode) noexcept {
    return Call(SYS_mkdirat, AT_FDCWD, path, mode);
}
int symlink(const char *text, const char *path) noexcept {
    return Call(SYS_symlinkat, text, AT_FDCWD, path);
}

int link(const char *from, const char *to) noexcept {
    if (CrossesFileSystems(from, to)) return Refuse(EXDEV);
    return Call(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
}

int rename(const char *from, const char *to) noexcept {
    if (CrossesFileSystems(from, to)) return Refuse(EXDEV);
    return Call(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0U);
}

int renameat2(int from_folder, const char *from, int to_folder, const char *to, unsigned flags) noexcept {
    if (rename_flags_unknown && flags != 0) return Refuse(EINVAL);
    if (CrossesFileSystems(from, to)) return Refuse(EXDEV);
    return Call(SYS_renameat2, from_folder, from, to_folder, to, flags);
}

ssize_t readlink(const char *path, char *buffer, size_t size) noexcept {
    return Fails() ? -1 : syscall(SYS_readlinkat, AT_FDCWD, path, buffer, size);
}

}  // extern "C"
