#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

#include "platform/windows/file_descriptor.h"
#include "platform/windows/last_error.h"
#include "platform/windows/native_path.h"
#include "platform/windows/path_resolution.h"

namespace {

constexpr mode_t kNewFileMode = 0666;

struct OpenMode {
    int flags;
    std::string stdio_mode;
};

std::optional<OpenMode> BaseMode(wchar_t letter) {
    switch (letter) {
        case L'r':
            return OpenMode{O_RDONLY, "r"};
        case L'w':
            return OpenMode{O_WRONLY | O_CREAT | O_TRUNC, "w"};
        case L'a':
            return OpenMode{O_WRONLY | O_CREAT | O_APPEND, "a"};
        default:
            return std::nullopt;
    }
}

std::optional<OpenMode> ParseMode(std::wstring_view text) {
    std::optional<OpenMode> mode = text.empty() ? std::nullopt : BaseMode(text[0]);
    for (size_t i = 1; mode && i < text.size(); ++i) {
        if (text[i] == L'+') {
            mode->flags = (mode->flags & ~O_ACCMODE) | O_RDWR;
            mode->stdio_mode += '+';
        } else if (text[i] == L'x') {
            mode->flags |= O_EXCL;
        } else if (std::wstring_view(L"btNSRTcnD").find(text[i]) == std::wstring_view::npos) {
            return std::nullopt;
        }
    }
    return mode;
}

int OpenNative(const std::string &path, int flags) {
    // Without O_NONBLOCK the open of a pipe would wait for its other end.
    return Uninterrupted([&] { return open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, kNewFileMode); });
}

// An existing file, under whichever spelling, before a new one.
int OpenOrCreate(const SpelledPath &spelled, int flags) {
    if ((flags & O_EXCL) == 0) {
        const int descriptor = OpenNative(spelled.text, flags & ~O_CREAT);
        if (descriptor >= 0 || errno != ENOENT) return descriptor;
    }
    return OpenNative(ResolveSpelling(spelled), flags);
}

// Folders, pipes and devices are no files to a program that opens them: a device may have no end.
bool IsPlainFile(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return false;
    errno = EACCES;
    return S_ISREG(status.st_mode);
}

FILE *Fail(int error_number) {
    errno = error_number == ENOTDIR ? ENOENT : error_number;
    SetLastError(WindowsError(error_number));
    return nullptr;
}

}  // namespace

FILE *_wfopen(const wchar_t *path, const wchar_t *mode_text) {
    const std::optional<OpenMode> mode = ParseMode(mode_text);
    if (!mode) return Fail(EINVAL);
    const SpelledPath spelled = SpellNativePath(std::wstring_view(path));
    const bool creates = (mode->flags & O_CREAT) != 0;
    if (creates && !IsWindowsFileName(FileNameOf(spelled.text))) return Fail(EINVAL);
    FileDescriptor file(OpenOrCreate(spelled, mode->flags));
    if (!file) return Fail(errno);
    FILE *const stream = IsPlainFile(file.get()) ? fdopen(file.get(), mode->stdio_mode.c_str()) : nullptr;
    if (stream == nullptr) {
        const int error = errno;
        // What was made only now is of no use to anybody.
        if ((mode->flags & O_EXCL) != 0) unlink(ResolveSpelling(spelled).c_str());
        return Fail(error);
    }
    file.Release();
    return stream;
}
