// Memory of one size, taken from the system and given back as a whole.
#ifndef PLATFORM_CORE_FOUNDATION_MEMORY_BLOCK_H
#define PLATFORM_CORE_FOUNDATION_MEMORY_BLOCK_H

#include <cstddef>
#include <utility>

namespace core_foundation {

class MemoryBlock {
  public:
    MemoryBlock() = default;
    // Empty (see operator bool) when the system has no memory left. The content is undefined.
    explicit MemoryBlock(size_t size);
    ~MemoryBlock();
    MemoryBlock(MemoryBlock &&other) noexcept { *this = std::move(other); }
    MemoryBlock &operator=(MemoryBlock &&other) noexcept;

    explicit operator bool() const { return data_ != nullptr; }
    char *data() const { return data_; }
    size_t size() const { return size_; }

  private:
    char *data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace core_foundation

#endif
