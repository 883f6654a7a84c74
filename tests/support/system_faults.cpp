#include "tests/support/system_faults.h"

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace {

thread_local bool armed = false;
thread_local Fault fault;
thread_local int calls_left = 0;
bool folders_are_file_systems = false;
bool rename_flags_unknown = false;

// True at a call that meets the fault.
bool IsDue(bool allocates = false) {
    if (!armed || allocates != (fault.kind == FaultKind::kAllocation)) return false;
    --calls_left;
    const bool due = calls_left == 0 || (calls_left < 0 && fault.lasting);
    if (due && fault.kind == FaultKind::kDeath) _exit(0);
    return due;
}

bool Refuses(bool can_wait) {
    if (!IsDue() || fault.kind != FaultKind::kError || (fault.error == EINTR && !can_wait)) return false;
    errno = fault.error;
    return true;
}

// How much of a transfer is done; nothing when it fails.
size_t Piece(size_t size) {
    if (!IsDue()) return size;
    if (fault.kind == FaultKind::kShort) return std::min<size_t>(size, 1);
    errno = fault.error;
    return fault.kind == FaultKind::kError ? 0 : size;
}

template <typename Function>
Function *Next(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of('/'));
}

bool CrossesFileSystems(const char *from, const char *to) {
    const bool crosses = folders_are_file_systems && FolderOf(from) != FolderOf(to);
    if (crosses) errno = EXDEV;
    return crosses;
}

}  // namespace

FaultInjection::FaultInjection(const Fault &new_fault, int call_number) {
    fault = new_fault;
    calls_left = call_number;
    armed = call_number > 0;
}
FaultInjection::~FaultInjection() {
    armed = false;
}
bool FaultInjection::WasHit() const {
    return armed && calls_left <= 0;
}

FoldersAreFileSystems::FoldersAreFileSystems() : ScopedFlag(folders_are_file_systems) {}
RenameFlagsUnknown::RenameFlagsUnknown() : ScopedFlag(rename_flags_unknown) {}

// A call under a name of ours, so that the system's declarations do not matter, and for libraries to find.
#define SYSTEM_CALL(result, name, symbol, parameters)                                         \
    extern "C" __attribute__((visibility("default"))) result name parameters __asm__(symbol); \
    result name parameters

// One that gives a negative number, or null, when it fails, and else does what the system does.
#define REFUSABLE(result, name, symbol, parameters, arguments, failure, can_wait) \
    SYSTEM_CALL(result, name, symbol, parameters) {                               \
        return Refuses(can_wait) ? failure : Next(&name, symbol) arguments;       \
    }
#define PATH_CALL(name, symbol) REFUSABLE(int, name, symbol, (const char *path), (path), -1, false)
#define STATUS_CALL(name, symbol) \
    REFUSABLE(int, name, symbol, (const char *path, void *status), (path, status), -1, false)
#define OPEN_CALL(name, symbol)                                             \
    SYSTEM_CALL(int, name, symbol, (const char *path, int flags, ...)) {    \
        va_list arguments;                                                  \
        va_start(arguments, flags);                                         \
        const mode_t mode = va_arg(arguments, mode_t);                      \
        va_end(arguments);                                                  \
        return Refuses(true) ? -1 : Next(&name, symbol)(path, flags, mode); \
    }

OPEN_CALL(FaultyOpen, "open")
OPEN_CALL(FaultyOpen64, "open64")
PATH_CALL(FaultyUnlink, "unlink")
PATH_CALL(FaultyRemove, "remove")
PATH_CALL(FaultyRmdir, "rmdir")
STATUS_CALL(FaultyStat, "stat")
STATUS_CALL(FaultyStat64, "stat64")
STATUS_CALL(FaultyLstat, "lstat")
STATUS_CALL(FaultyLstat64, "lstat64")
REFUSABLE(int, FaultyFstat, "fstat", (int file, void *status), (file, status), -1, false)
REFUSABLE(int, FaultyFstat64, "fstat64", (int file, void *status), (file, status), -1, false)
REFUSABLE(int, FaultyStatx, "statx", (int folder, const char *path, int flags, unsigned mask, void *status),
          (folder, path, flags, mask, status), -1, false)
REFUSABLE(int, FaultyAccess, "access", (const char *path, int mode), (path, mode), -1, false)
REFUSABLE(int, FaultyMkdir, "mkdir", (const char *path, mode_t mode), (path, mode), -1, false)
REFUSABLE(int, FaultyChmod, "chmod", (const char *path, mode_t mode), (path, mode), -1, false)
REFUSABLE(int, FaultyFchmod, "fchmod", (int file, mode_t mode), (file, mode), -1, false)
REFUSABLE(int, FaultyFchown, "fchown", (int file, uid_t owner, gid_t group), (file, owner, group), -1, false)
REFUSABLE(int, FaultySymlink, "symlink", (const char *text, const char *path), (text, path), -1, false)
REFUSABLE(int, FaultyFtruncate, "ftruncate", (int file, off_t size), (file, size), -1, true)
REFUSABLE(ssize_t, FaultyReadlink, "readlink", (const char *path, char *text, size_t size),
          (path, text, size), -1, false)
REFUSABLE(void *, FaultyOpendir, "opendir", (const char *path), (path), nullptr, false)
REFUSABLE(void *, FaultyFdopendir, "fdopendir", (int folder), (folder), nullptr, false)
REFUSABLE(void *, FaultyReaddir, "readdir", (void *folder), (folder), nullptr, false)
REFUSABLE(void *, FaultyReaddir64, "readdir64", (void *folder), (folder), nullptr, false)

SYSTEM_CALL(ssize_t, FaultyRead, "read", (int file, void *bytes, size_t size)) {
    const size_t piece = Piece(size);
    return piece == 0 && size > 0 ? -1 : Next(&FaultyRead, "read")(file, bytes, piece);
}
SYSTEM_CALL(ssize_t, FaultyWrite, "write", (int file, const void *bytes, size_t size)) {
    const size_t piece = Piece(size);
    return piece == 0 && size > 0 ? -1 : Next(&FaultyWrite, "write")(file, bytes, piece);
}
SYSTEM_CALL(ssize_t, FaultyCopyFileRange, "copy_file_range",
            (int from, off_t *from_place, int to, off_t *to_place, size_t size, unsigned flags)) {
    const size_t piece = Piece(size);
    if (piece == 0 && size > 0) return -1;
    return Next(&FaultyCopyFileRange, "copy_file_range")(from, from_place, to, to_place, piece, flags);
}

SYSTEM_CALL(int, FaultyClose, "close", (int file)) {
    const bool refused = Refuses(true);
    const int result = Next(&FaultyClose, "close")(file);
    if (refused) errno = fault.error;
    return refused ? -1 : result;
}

// No test looks at the disk itself, which is slow.
SYSTEM_CALL(int, FaultyFsync, "fsync", (int /*file*/)) {
    return Refuses(true) ? -1 : 0;
}

SYSTEM_CALL(int, FaultyLink, "link", (const char *from, const char *to)) {
    return CrossesFileSystems(from, to) || Refuses(false) ? -1 : Next(&FaultyLink, "link")(from, to);
}
SYSTEM_CALL(int, FaultyRename, "rename", (const char *from, const char *to)) {
    return CrossesFileSystems(from, to) || Refuses(false) ? -1 : Next(&FaultyRename, "rename")(from, to);
}
SYSTEM_CALL(int, FaultyRenameat2, "renameat2",
            (int from_folder, const char *from, int to_folder, const char *to, unsigned flags)) {
    if (rename_flags_unknown && flags != 0) {
        errno = EINVAL;
        return -1;
    }
    if (CrossesFileSystems(from, to) || Refuses(false)) return -1;
    return Next(&FaultyRenameat2, "renameat2")(from_folder, from, to_folder, to, flags);
}

// --- Streams. Those of the C library call the system from inside; the ones made here do so through the
// above.
namespace {

struct Stream {
    int file;
    bool is_unbuffered;
};

std::mutex streams_mutex;
std::map<FILE *, Stream> streams;
thread_local bool next_read_fails = false;

std::optional<Stream> Find(FILE *stream) {
    const std::lock_guard lock(streams_mutex);
    const auto found = streams.find(stream);
    return found != streams.end() ? std::optional(found->second) : std::nullopt;
}

int FileOf(void *cookie) {
    return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

ssize_t WriteAll(void *cookie, const char *bytes, size_t size) {
    size_t done = 0;
    while (done < size) {
        const ssize_t count = FaultyWrite(FileOf(cookie), bytes + done, size - done);
        if (count < 0) return 0;
        done += static_cast<size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

int Seek(void *cookie, off64_t *place, int origin) {
    *place = lseek(FileOf(cookie), *place, origin);
    return *place < 0 ? -1 : 0;
}

constexpr cookie_io_functions_t kStreamCalls = {
    [](void *cookie, char *bytes, size_t size) {
        return next_read_fails ? -1 : FaultyRead(FileOf(cookie), bytes, size);
    },
    WriteAll, Seek, [](void *cookie) { return FaultyClose(FileOf(cookie)); }};

}  // namespace

SYSTEM_CALL(FILE *, FaultyFdopen, "fdopen", (int file, const char *mode)) {
    if (Refuses(false)) return nullptr;
    FILE *stream = fopencookie(reinterpret_cast<void *>(intptr_t{file}), mode, kStreamCalls);
    const std::lock_guard lock(streams_mutex);
    const bool was_armed = std::exchange(armed, false);  // the map's own memory does not count
    streams[stream] = {file, false};
    armed = was_armed;
    return stream;
}

SYSTEM_CALL(int, FaultyFileno, "fileno", (FILE * stream)) {
    const auto found = Find(stream);
    return found ? found->file : Next(&FaultyFileno, "fileno")(stream);
}

SYSTEM_CALL(int, FaultySetvbuf, "setvbuf", (FILE * stream, char *buffer, int mode, size_t size)) {
    {
        const std::lock_guard lock(streams_mutex);
        const auto found = streams.find(stream);
        if (found != streams.end()) found->second.is_unbuffered = mode == _IONBF;
    }
    return Next(&FaultySetvbuf, "setvbuf")(stream, buffer, mode, size);
}

// Without a buffer such a stream would call for each byte. What ends the reading is met again by the stream
// itself, so that it knows of it.
SYSTEM_CALL(size_t, FaultyFread, "fread", (void *bytes, size_t size, size_t count, FILE *stream)) {
    const auto found = Find(stream);
    if (!found || !found->is_unbuffered) return Next(&FaultyFread, "fread")(bytes, size, count, stream);
    size_t done = 0;
    ssize_t step = 1;
    while (step > 0 && done < size * count) {
        step = FaultyRead(found->file, static_cast<char *>(bytes) + done, size * count - done);
        if (step > 0) done += static_cast<size_t>(step);
    }
    char unused = 0;
    next_read_fails = step < 0;
    if (step <= 0) Next(&FaultyFread, "fread")(&unused, 1, 1, stream);
    next_read_fails = false;
    return done / size;
}

SYSTEM_CALL(int, FaultyFclose, "fclose", (FILE * stream)) {
    {
        const std::lock_guard lock(streams_mutex);
        streams.erase(stream);
    }
    return Next(&FaultyFclose, "fclose")(stream);
}

// --- Memory, as far as the language's own operator goes. Not inline, where the compiler would miss the pair.

[[gnu::noinline]] void *operator new(size_t size) {
    void *memory = IsDue(true) ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void *memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void *memory, size_t /*size*/) noexcept {
    std::free(memory);
}
