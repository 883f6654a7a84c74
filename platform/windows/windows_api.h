/* The Windows API as the driver uses it.
 *
 * On Windows these are the system's own headers. Elsewhere this header declares the subset that is used,
 * under the API's own names, types and constants, and the files of this folder implement it. A declaration
 * here promises what Microsoft documents for it; comments tell only where the layer is narrower or has
 * something of its own to say.
 *
 * Every path is a Windows path and goes through NativePath (native_path.h). Each call may be made on any
 * thread. */
#ifndef PLATFORM_WINDOWS_WINDOWS_API_H
#define PLATFORM_WINDOWS_WINDOWS_API_H

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The shell and the runtime follow <windows.h>, whose types they use.
#include <io.h>
#include <shellapi.h>
#include <shlobj.h>
#include <sys/stat.h>
#include <urlmon.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <cwchar>

#else

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <cwchar>

#define WINAPI
#define CALLBACK

using BOOL = int;
using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using UINT = uint32_t;
using LONG = int32_t;
using HRESULT = int32_t;
using FILEOP_FLAGS = WORD;

using LPVOID = void *;
using LPCVOID = const void *;
using LPDWORD = DWORD *;
using LPBOOL = BOOL *;
using LPSTR = char *;
using LPCSTR = const char *;
using LPCCH = const char *;
using LPWSTR = wchar_t *;
using LPCWSTR = const wchar_t *;
using LPCWCH = const wchar_t *;

using HANDLE = void *;
using HWND = struct HWND__ *;
using HMODULE = struct HINSTANCE__ *;
using FARPROC = void (*)();  // casts to any other function type without a warning
using LPUNKNOWN = struct IUnknown *;
using LPBINDSTATUSCALLBACK = struct IBindStatusCallback *;
using LPSECURITY_ATTRIBUTES = struct SECURITY_ATTRIBUTES *;
using LPTHREAD_START_ROUTINE = DWORD(WINAPI *)(LPVOID);

#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))

inline constexpr int MAX_PATH = 260;

// --- Results and errors --------------------------------------------------------------------------

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT INET_E_DOWNLOAD_FAILURE = static_cast<HRESULT>(0x800C0008);
constexpr bool SUCCEEDED(HRESULT result) {
    return result >= 0;
}
constexpr bool FAILED(HRESULT result) {
    return result < 0;
}

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_WRITE_PROTECT = 19;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_ENVVAR_NOT_FOUND = 203;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;

// The error of the last call that failed on this thread.
DWORD GetLastError();
void SetLastError(DWORD error);

// --- Files and folders ---------------------------------------------------------------------------

struct FILETIME {
    DWORD dwLowDateTime;  // 100 ns since 1601-01-01 UTC, as one 64-bit number in two halves
    DWORD dwHighDateTime;
};

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    // The birth time, or the time of the last write where the file system keeps none.
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    wchar_t cFileName[MAX_PATH];
    wchar_t cAlternateFileName[14];
};
using LPWIN32_FIND_DATAW = WIN32_FIND_DATAW *;

inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
// A symbolic link. FILE_ATTRIBUTE_DIRECTORY beside it tells what the link leads to.
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

// The last component of the pattern may hold `*` and `?`, which take no notice of letter case; "*.*" matches
// all names. Entries, "." and ".." among them, come in the order of the file system. A name that cFileName
// cannot hold is passed over.
HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW entry);
// The same, with FindExInfoBasic at a fraction of the cost: of an entry only the name and the attributes are
// filled in, the rest is 0. (Windows fills in all but the short name.) The operation is a match of names, the
// filter null and the flags 0 or FIND_FIRST_EX_LARGE_FETCH.
enum FINDEX_INFO_LEVELS { FindExInfoStandard, FindExInfoBasic };
enum FINDEX_SEARCH_OPS { FindExSearchNameMatch };
inline constexpr DWORD FIND_FIRST_EX_LARGE_FETCH = 0x2;
HANDLE FindFirstFileExW(LPCWSTR pattern, FINDEX_INFO_LEVELS level, LPVOID entry, FINDEX_SEARCH_OPS operation,
                        LPVOID filter, DWORD flags);
BOOL FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW entry);
BOOL FindClose(HANDLE search);

DWORD GetFileAttributesW(LPCWSTR path);
BOOL DeleteFileW(LPCWSTR path);
BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes);
BOOL RemoveDirectoryW(LPCWSTR path);

inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;
inline constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x8;
// Within one file system only.
BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags);

// --- Shell ---------------------------------------------------------------------------------------

inline constexpr int CSIDL_MYMUSIC = 13;
inline constexpr DWORD SHGFP_TYPE_CURRENT = 0;
// Knows CSIDL_MYMUSIC: the user's music folder, there or not, without a final separator. `path` has room for
// MAX_PATH characters; a longer path is a failure.
HRESULT SHGetFolderPathW(HWND owner, int folder, HANDLE token, DWORD flags, LPWSTR path);

inline constexpr UINT FO_MOVE = 1;
inline constexpr UINT FO_DELETE = 3;
inline constexpr FILEOP_FLAGS FOF_SILENT = 0x4;
inline constexpr FILEOP_FLAGS FOF_RENAMEONCOLLISION = 0x8;
inline constexpr FILEOP_FLAGS FOF_NOCONFIRMATION = 0x10;
inline constexpr FILEOP_FLAGS FOF_ALLOWUNDO = 0x40;
inline constexpr FILEOP_FLAGS FOF_NOCONFIRMMKDIR = 0x200;
inline constexpr FILEOP_FLAGS FOF_NOERRORUI = 0x400;

struct SHFILEOPSTRUCTW {
    HWND hwnd;
    UINT wFunc;
    LPCWSTR pFrom;  // paths, each ended by a zero, and one more zero; the last component may be a pattern
    LPCWSTR pTo;    // FO_MOVE: one folder, ended like pFrom, made if it is not there
    FILEOP_FLAGS fFlags;
    BOOL fAnyOperationsAborted;
    LPVOID hNameMappings;
    LPCWSTR lpszProgressTitle;
};
using LPSHFILEOPSTRUCTW = SHFILEOPSTRUCTW *;

// 0, or the error of the first entry that failed; the entries behind it are still handled. A move never
// replaces anything: a taken name is a failure, or gets a number with FOF_RENAMEONCOLLISION. An entry that
// cannot be moved stays whole where it was. Deleting does not follow links. There is no recycle bin:
// FO_DELETE refuses FOF_ALLOWUNDO. The other flags choose between questions that are never asked here.
int SHFileOperationW(LPSHFILEOPSTRUCTW operation);

// Http and https only, with limits on time and size. The target appears whole or not at all.
HRESULT URLDownloadToFileW(LPUNKNOWN caller, LPCWSTR url, LPCWSTR path, DWORD reserved,
                           LPBINDSTATUSCALLBACK callback);

// --- Threads and events --------------------------------------------------------------------------

inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// `flags` is 0 and `attributes` null. Once a wait for the thread has succeeded, none of its code runs any
// more.
HANDLE CreateThread(LPSECURITY_ATTRIBUTES attributes, size_t stack_size, LPTHREAD_START_ROUTINE routine,
                    LPVOID argument, DWORD flags, LPDWORD thread_id);
DWORD GetCurrentThreadId();
// Events have no name and no attributes.
HANDLE CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manual_reset, BOOL initial_state, LPCWSTR name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
// `handle` is a thread or an event.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL CloseHandle(HANDLE handle);
void Sleep(DWORD milliseconds);

// --- Windows and the environment -----------------------------------------------------------------

// There are no windows of other programs here: null, null and FALSE.
HWND GetForegroundWindow();
HWND FindWindowW(LPCWSTR class_name, LPCWSTR title);
BOOL SetForegroundWindow(HWND window);

// "TEMP", which Windows always sets, is the system's temporary folder while it is unset.
DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size);

// --- Libraries -----------------------------------------------------------------------------------

// A name without a separator is looked for where the system looks for shared libraries.
HMODULE LoadLibraryW(LPCWSTR name);
FARPROC GetProcAddress(HMODULE module, LPCSTR name);
BOOL FreeLibrary(HMODULE module);

// --- Text ----------------------------------------------------------------------------------------

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 0x8;

// The code page that Windows uses for the language of the locale, or that of the locale's 8-bit character
// set.
UINT GetACP();
// Code pages CP_UTF8, CP_ACP and those of GetACP. A byte that is not UTF-8 becomes the character U+DC00 plus
// the byte, and comes back from it, so that any name of a file survives the way there and back.
int MultiByteToWideChar(UINT code_page, DWORD flags, LPCCH text, int text_size, LPWSTR buffer,
                        int buffer_size);
int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWCH text, int text_size, LPSTR buffer,
                        int buffer_size, LPCCH default_character, LPBOOL used_default_character);

// --- Runtime library -----------------------------------------------------------------------------

// The times are `timespec` records under the system's names, for which st_mtime and its like are macros here.
struct _stat64 {
    unsigned st_mode;
    int64_t st_size;
    timespec st_atim;
    timespec st_mtim;
    timespec st_ctim;  // creation, as on Windows
};
#define __stat64 _stat64

struct _stat64i32 {
    unsigned st_mode;
    int32_t st_size;
    timespec st_atim;
    timespec st_mtim;
    timespec st_ctim;
};

inline constexpr unsigned _S_IFMT = 0xF000;
inline constexpr unsigned _S_IFDIR = 0x4000;
inline constexpr unsigned _S_IFREG = 0x8000;

// Failures set errno. A path through something that is no folder is ENOENT, as on Windows.
FILE *_wfopen(const wchar_t *path, const wchar_t *mode);
int _wremove(const wchar_t *path);
// Mode 0 (there), 2 (writable), 4 (readable), 6 (both). A link that leads nowhere is there.
int _waccess(const wchar_t *path, int mode);
int _wstat64(const wchar_t *path, struct _stat64 *status);
// A size beyond 31 bits is a failure, EOVERFLOW.
int _wstat64i32(const wchar_t *path, struct _stat64i32 *status);
int _fseeki64(FILE *file, int64_t offset, int origin);
int64_t _ftelli64(FILE *file);
// Local time; -1 for every moment before 1970. A change of the zone, by "TZ" or by the system, counts from
// the next _tzset on.
int64_t _mktime64(std::tm *time);
void _tzset();
int _stricmp(const char *left, const char *right);
char *_strdup(const char *text);

#endif

#endif
