// File URLs and the streams of the C interface.
#ifndef PLATFORM_CORE_FOUNDATION_FILE_STREAM_H
#define PLATFORM_CORE_FOUNDATION_FILE_STREAM_H

#include <optional>
#include <string>
#include <string_view>

#include "platform/core_foundation/byte_source.h"
#include "platform/core_foundation/heap_object.h"
#include "platform/windows/atomic_file.h"

namespace core_foundation {

class UrlObject : public HeapObject {
  public:
    explicit UrlObject(std::string_view path) : HeapObject(ValueType::kUrl), path_(path) {
        text = path_.c_str();
        length = static_cast<uint32_t>(path_.size());
    }
    const std::string &path() const { return path_; }

  private:
    std::string path_;
};

class ReadStream : public HeapObject, public ByteSource {
  public:
    explicit ReadStream(const UrlObject &url) : HeapObject(ValueType::kReadStream), path_(url.path()) {}
    ~ReadStream() override { Close(); }

    bool Open();
    void Close();
    std::optional<size_t> Read(char *buffer, size_t size) override;

  private:
    std::string path_;
    int descriptor_ = -1;
};

class WriteStream : public HeapObject {
  public:
    explicit WriteStream(const UrlObject &url) : HeapObject(ValueType::kWriteStream), path_(url.path()) {}

    bool Open();
    // Appends; false once a write has failed.
    bool Write(std::string_view content);
    // Makes a later Close leave the target as it is.
    void Discard() { file_.reset(); }
    void Close();

  private:
    std::string path_;
    std::optional<AtomicFile> file_;
};

}  // namespace core_foundation

#endif
