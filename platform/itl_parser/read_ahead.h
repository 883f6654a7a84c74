#ifndef PLATFORM_ITL_PARSER_READ_AHEAD_H
#define PLATFORM_ITL_PARSER_READ_AHEAD_H

#include <array>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/core_foundation/byte_source.h"

namespace itl_parser {

// Reads another source ahead on a thread of its own, some blocks of it: to inflate a library takes as long as
// to make records of it. The other source belongs to that thread while this object lives.
class ReadAheadSource : public core_foundation::ByteSource {
  public:
    // Throws std::bad_alloc. Where the system has no thread to give, the source is read without one.
    explicit ReadAheadSource(core_foundation::ByteSource &source);
    ~ReadAheadSource() override;

    std::optional<size_t> Read(char *buffer, size_t size) override;

  private:
    static constexpr size_t kBlocks = 4;
    static constexpr size_t kBlockBytes = size_t{256} << 10;

    struct Block {
        std::unique_ptr<char[]> bytes = std::make_unique_for_overwrite<char[]>(kBlockBytes);
        std::optional<size_t> size;  // less than kBlockBytes at the end; empty when reading has failed
    };

    void FillBlocks();
    // The block that is to be read now; waits for it.
    const Block &CurrentBlock();
    void ReturnBlock();

    core_foundation::ByteSource &source_;
    std::array<Block, kBlocks> blocks_;
    size_t position_ = 0;  // in the current block

    std::mutex mutex_;                 // guards what follows; a block belongs to one side at a time
    std::condition_variable changed_;  // one waits at most
    size_t filled_ = 0;                // blocks, since the beginning
    size_t read_ = 0;
    bool is_stopped_ = false;
    std::thread thread_;
};

}  // namespace itl_parser

#endif
