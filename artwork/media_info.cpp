#include "artwork/media_info.h"

#include <mutex>

#include "platform/windows/native_path.h"
#include "platform/windows/text.h"
#include "platform/windows/utf8_locale.h"
#include "platform/windows/windows_api.h"

namespace {

// The library's names, on Windows and elsewhere.
constexpr const wchar_t *kLibraryNames[] = {L"MediaInfo.dll", L"libmediainfo.so.0"};

constexpr const wchar_t *kNotLoaded = L"Unable to load MediaInfo.dll";

// What is called of the library. On every system its wide texts are of wchar_t.
struct EntryPoints {
    HMODULE library = nullptr;
    void *(WINAPI *create)() = nullptr;
    void(WINAPI *destroy)(void *handle) = nullptr;
    size_t(WINAPI *open)(void *handle, const wchar_t *path) = nullptr;
    void(WINAPI *close)(void *handle) = nullptr;
    const wchar_t *(WINAPI *get)(void *handle, int stream_kind, size_t stream_number,
                                 const wchar_t *parameter, int info_kind, int search_kind) = nullptr;
};

// One for the process. Written under the lock, and no more once it holds a library.
std::mutex loading;
EntryPoints loaded;

template <typename Function>
bool Find(HMODULE library, const char *name, Function &function) {
    function = reinterpret_cast<Function>(GetProcAddress(library, name));
    return function != nullptr;
}

bool FindAll(EntryPoints &points) {
    return Find(points.library, "MediaInfo_New", points.create) &&
           Find(points.library, "MediaInfo_Delete", points.destroy) &&
           Find(points.library, "MediaInfo_Open", points.open) &&
           Find(points.library, "MediaInfo_Close", points.close) &&
           Find(points.library, "MediaInfo_Get", points.get);
}

// Empty if there is no such library, or if it is not what its name says.
EntryPoints LoadFrom(const wchar_t *name) {
    EntryPoints points;
    points.library = LoadLibraryW(name);
    if (points.library == nullptr || FindAll(points)) return points;
    FreeLibrary(points.library);
    return {};
}

}  // namespace

void LoadMediaInfoLibrary() {
    const std::lock_guard lock(loading);
    for (const wchar_t *name : kLibraryNames) {
        if (loaded.library == nullptr) loaded = LoadFrom(name);
    }
}

MediaInfoFile::MediaInfoFile() {
    LoadMediaInfoLibrary();
    if (loaded.library != nullptr) handle_ = loaded.create();
}

MediaInfoFile::~MediaInfoFile() {
    if (IsReady()) loaded.destroy(handle_);
}

size_t MediaInfoFile::Open(const std::wstring &path) {
    if (!IsReady()) return 0;
    const Utf8Locale locale;
    return loaded.open(handle_, Utf8ToWide(NativePath(path)).c_str());
}

std::wstring MediaInfoFile::Get(int stream_kind, size_t stream_number, const wchar_t *parameter,
                                int info_kind, int search_kind) const {
    if (!IsReady()) return kNotLoaded;
    const wchar_t *text = loaded.get(handle_, stream_kind, stream_number, parameter, info_kind, search_kind);
    return text == nullptr ? L"" : text;
}

void MediaInfoFile::Close() {
    if (IsReady()) loaded.close(handle_);
}
