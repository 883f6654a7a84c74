#ifndef PLATFORM_ITL_PARSER_INFLATE_H
#define PLATFORM_ITL_PARSER_INFLATE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/core_foundation/byte_source.h"

namespace itl_parser {

// How far a body may expand. Deflate reaches a factor of about 1030, so a small file could keep a reader busy
// for minutes. Real files of some size expand 8 to 13 times; the smallest 27 times, to 0.1 MB, as they are
// hardly more than empty lists, and lists alone would not come to much more.
constexpr uint64_t kMostExpansion = 64;
constexpr uint64_t kFreeExpansion = uint64_t{1} << 20;
// Seven times what the largest libraries known, of a hundred thousand tracks, come to.
constexpr uint64_t kLongestBody = uint64_t{1} << 30;

// The content of a zlib stream, piece by piece. What follows the stream is left alone.
class InflatingSource : public core_foundation::ByteSource {
  public:
    explicit InflatingSource(core_foundation::ByteSource &compressed);
    ~InflatingSource() override;

    // Fails when the stream is damaged, has no end, or expands beyond the limits.
    std::optional<size_t> Read(char *buffer, size_t size) override;

  private:
    struct State;

    bool ReadInput();

    core_foundation::ByteSource &compressed_;
    std::unique_ptr<State> state_;
    uint64_t total_in_ = 0;
    uint64_t total_out_ = 0;
};

}  // namespace itl_parser

#endif
