#ifndef ARTWORK_MEDIA_STREAM_H
#define ARTWORK_MEDIA_STREAM_H

#include <taglib/tiostream.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/windows/file_handle.h"

/* A media file for TagLib: read only, plain files only, and with an end to what may be read.
 *
 * TagLib looks for frames step by step through files of any size, and reads nested atoms by calling itself.
 * Once a budget is spent, the file looks as if it ended there, which ends both. */
class MediaStream : public TagLib::IOStream {
  public:
    // `path` is a Windows path in UTF-8.
    explicit MediaStream(const std::string &path);

    // From now on what marks an ID3v2 tag inside another format is not seen, and so the tag is not parsed.
    void HideTags() { hides_tags_ = true; }
    // Gives the whole budget back, for another attempt at the same file.
    void Renew();

    TagLib::FileName name() const override { return path_.c_str(); }
    TagLib::ByteVector readBlock(unsigned long length) override;
    bool readOnly() const override { return true; }
    bool isOpen() const override { return static_cast<bool>(file_); }
    void seek(long offset, Position origin) override;
    long tell() const override { return static_cast<long>(position_); }
    long length() override { return static_cast<long>(size_); }

    // Never called for reading.
    void writeBlock(const TagLib::ByteVector &data) override;
    void insert(const TagLib::ByteVector &data, unsigned long start, unsigned long replace) override;
    void removeBlock(unsigned long start, unsigned long length) override;
    void truncate(long length) override;

  private:
    bool TakeRead(unsigned long length);
    size_t ReadAt(int64_t position, char *bytes, size_t size);
    size_t ReadFromWindow(char *bytes, size_t size);

    // TagLib reads some dozen small pieces of the beginning and the end of a file, and seeks for each.
    static constexpr size_t kWindowBytes = 16384;

    std::string path_;
    FileHandle file_;
    int64_t size_ = 0;
    int64_t position_ = 0;
    std::array<char, kWindowBytes> window_;
    int64_t window_start_ = -1;
    size_t window_size_ = 0;
    uint64_t reads_ = 0;
    uint64_t atoms_ = 0;
    bool hides_tags_ = false;
};

#endif
