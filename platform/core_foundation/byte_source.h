// Where the bytes of a list come from.
#ifndef PLATFORM_CORE_FOUNDATION_BYTE_SOURCE_H
#define PLATFORM_CORE_FOUNDATION_BYTE_SOURCE_H

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

namespace core_foundation {

class ByteSource {
  public:
    ByteSource() = default;
    virtual ~ByteSource() = default;
    ByteSource(const ByteSource &) = delete;
    ByteSource &operator=(const ByteSource &) = delete;

    // Puts the next bytes into the buffer, as many as fit, and gives their number: less than `size` only at
    // the end. Empty when reading fails.
    virtual std::optional<size_t> Read(char *buffer, size_t size) = 0;
};

// Bytes that are in memory, and stay there.
class MemorySource : public ByteSource {
  public:
    explicit MemorySource(std::string_view bytes) : rest_(bytes) {}

    std::optional<size_t> Read(char *buffer, size_t size) override {
        const size_t count = std::min(size, rest_.size());
        if (count > 0) std::memcpy(buffer, rest_.data(), count);
        rest_.remove_prefix(count);
        return count;
    }

  private:
    std::string_view rest_;
};

// The first `limit` bytes of another source.
class LimitedSource : public ByteSource {
  public:
    LimitedSource(ByteSource &source, size_t limit) : source_(source), left_(limit) {}

    std::optional<size_t> Read(char *buffer, size_t size) override {
        const std::optional<size_t> count = source_.Read(buffer, std::min(size, left_));
        left_ -= count.value_or(0);
        return count;
    }

  private:
    ByteSource &source_;
    size_t left_;
};

}  // namespace core_foundation

#endif
