#include "content/zip_archive.h"

#include <array>
#include <cstdio>
#include <limits>
#include <string>

#include "platform/windows/file_handle.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

// minizip reaches files through a table of functions. These open wide paths and count in 64 bits on every
// system.
namespace {

FILE *AsFile(voidpf stream) {
    return static_cast<FILE *>(stream);
}

voidpf ZCALLBACK OpenFile(voidpf, const void *path, int mode) {
    const wchar_t *file_mode = (mode & ZLIB_FILEFUNC_MODE_CREATE) != 0 ? L"w+b" : L"rb";
    return _wfopen(static_cast<const wchar_t *>(path), file_mode);
}

uLong ZCALLBACK ReadFile(voidpf, voidpf stream, void *buffer, uLong size) {
    return static_cast<uLong>(std::fread(buffer, 1, size, AsFile(stream)));
}

uLong ZCALLBACK WriteFile(voidpf, voidpf stream, const void *buffer, uLong size) {
    return static_cast<uLong>(std::fwrite(buffer, 1, size, AsFile(stream)));
}

ZPOS64_T ZCALLBACK TellFile(voidpf, voidpf stream) {
    return static_cast<ZPOS64_T>(_ftelli64(AsFile(stream)));
}

// The origins have the numbers of SEEK_SET, SEEK_CUR and SEEK_END. An offset beyond 63 bits comes from a
// damaged archive, and as a negative number it would lead backwards.
long ZCALLBACK SeekFile(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    if (offset > static_cast<ZPOS64_T>(std::numeric_limits<int64_t>::max())) return -1;
    return _fseeki64(AsFile(stream), static_cast<int64_t>(offset), origin);
}

// Reports any write that failed since the file was opened, so that zipClose fails for an archive that lacks
// bytes.
int ZCALLBACK CloseFile(voidpf, voidpf stream) {
    const bool failed = std::ferror(AsFile(stream)) != 0;
    return std::fclose(AsFile(stream)) != 0 || failed ? EOF : 0;
}

int ZCALLBACK FileError(voidpf, voidpf stream) {
    return std::ferror(AsFile(stream));
}

zlib_filefunc64_def FileFunctions() {
    return {OpenFile, ReadFile, WriteFile, TellFile, SeekFile, CloseFile, FileError, nullptr};
}

}  // namespace

ZipReadHandle OpenZipForRead(std::string_view path) {
    zlib_filefunc64_def functions = FileFunctions();
    return ZipReadHandle(unzOpen2_64(Utf8ToWide(path).c_str(), &functions));
}

// End of the directory: signature 0, numbers of disks 4 and 6, numbers of entries 8 and 10, size of the
// directory 12 and its offset 16, all zero here, length of the comment 20.
bool IsEmptyZip(std::string_view path) {
    static constexpr std::string_view kNoEntries("PK\5\6\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20);
    const FileHandle file(path, L"rb");
    std::array<char, kNoEntries.size()> start;
    return file && std::fread(start.data(), 1, start.size(), file.get()) == start.size() &&
           std::string_view(start.data(), start.size()) == kNoEntries;
}

ZipWriteHandle CreateZip(std::string_view path) {
    zlib_filefunc64_def functions = FileFunctions();
    return ZipWriteHandle(zipOpen2_64(Utf8ToWide(path).c_str(), APPEND_STATUS_CREATE, nullptr, &functions));
}
