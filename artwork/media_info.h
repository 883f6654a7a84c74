#ifndef ARTWORK_MEDIA_INFO_H
#define ARTWORK_MEDIA_INFO_H

#include <cstddef>
#include <string>

// MediaInfo, which tells how long a file plays that TagLib cannot tell of. It is looked for at run time: a
// machine without it loses nothing else. Once found it stays loaded until the process ends.

// Numbers of MediaInfo's own interface.
namespace media_info {
constexpr int kGeneralStream = 0;
constexpr int kText = 1;
constexpr int kByName = 0;
}  // namespace media_info

// Loads the library unless it is loaded. One that lacks an entry point that is called counts as missing.
void LoadMediaInfoLibrary();

// A file that MediaInfo looks at. Looks for the library at every construction until there is one.
class MediaInfoFile {
  public:
    MediaInfoFile();
    ~MediaInfoFile();
    MediaInfoFile(const MediaInfoFile &) = delete;
    MediaInfoFile &operator=(const MediaInfoFile &) = delete;

    bool IsReady() const { return handle_ != nullptr; }

    // `path` is a Windows path. 0 if the file cannot be opened.
    size_t Open(const std::wstring &path);

    // Empty if MediaInfo does not know. A fixed text if there is no MediaInfo.
    std::wstring Get(int stream_kind, size_t stream_number, const wchar_t *parameter, int info_kind,
                     int search_kind) const;

    void Close();

  private:
    void *handle_ = nullptr;
};

#endif
