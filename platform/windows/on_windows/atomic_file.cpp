#include "platform/windows/atomic_file.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

// The path of the file behind the links that a path ends in; the path itself if there is no such file yet.
std::wstring FollowLinks(const std::wstring &path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file = CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return path;
    std::wstring target(GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    const DWORD size = GetFinalPathNameByHandleW(file, target.data(), static_cast<DWORD>(target.size()),
                                                 FILE_NAME_NORMALIZED);
    CloseHandle(file);
    if (size == 0 || size >= target.size()) return path;
    target.resize(size);
    return target;
}

std::wstring TemporaryPathBeside(const std::wstring &target) {
    static volatile LONG counter = 0;
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    const std::wstring folder = target.substr(0, target.find_last_of(L"\\/") + 1);
    return folder + L".tmp-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(ticks.QuadPart) + L"-" + std::to_wstring(InterlockedIncrement(&counter));
}

}  // namespace

struct AtomicFile::State {
    std::wstring target;
    std::wstring temporary;  // empty once it has become the target
    HANDLE file = INVALID_HANDLE_VALUE;
    bool failed = false;

    State() = default;
    State(const State &) = delete;
    State &operator=(const State &) = delete;
    ~State() {
        Close();
        if (!temporary.empty()) DeleteFileW(temporary.c_str());
    }

    bool Close() {
        HANDLE open = std::exchange(file, INVALID_HANDLE_VALUE);
        return open != INVALID_HANDLE_VALUE && CloseHandle(open) != FALSE;
    }

    bool Exists() const { return GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES; }

    bool Open() {
        constexpr DWORD kNoReplacement = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
        if (Exists() && (GetFileAttributesW(target.c_str()) & kNoReplacement) != 0) return false;
        const std::wstring path = TemporaryPathBeside(target);
        file =
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return false;
        temporary = path;
        return true;
    }

    // A replaced file hands on its attributes and its access list.
    bool Replace() const {
        if (Exists())
            return ReplaceFileW(target.c_str(), temporary.c_str(), nullptr, 0, nullptr, nullptr) != FALSE;
        return MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE;
    }
};

std::optional<AtomicFile> AtomicFile::Create(std::string_view windows_path) {
    auto state = std::make_unique<State>();
    state->target = FollowLinks(Utf8ToWide(windows_path));
    if (state->target.empty() || !state->Open()) return std::nullopt;
    return AtomicFile(std::move(state));
}

AtomicFile::AtomicFile(std::unique_ptr<State> state) : state_(std::move(state)) {}
AtomicFile::AtomicFile(AtomicFile &&other) noexcept = default;
AtomicFile &AtomicFile::operator=(AtomicFile &&other) noexcept = default;
AtomicFile::~AtomicFile() = default;

bool AtomicFile::Write(const void *bytes, size_t size) {
    const auto *rest = static_cast<const char *>(bytes);
    while (size > 0 && !state_->failed) {
        const auto part = static_cast<DWORD>(std::min<size_t>(size, std::numeric_limits<DWORD>::max()));
        DWORD written = 0;
        state_->failed = WriteFile(state_->file, rest, part, &written, nullptr) == FALSE || written == 0;
        rest += written;
        size -= written;
    }
    return !state_->failed;
}

bool AtomicFile::Commit() {
    const bool written = !state_->failed && FlushFileBuffers(state_->file) != FALSE && state_->Close();
    if (!written || !state_->Replace()) return false;
    state_->temporary.clear();
    return true;
}
