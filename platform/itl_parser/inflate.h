#ifndef PLATFORM_ITL_PARSER_INFLATE_H
#define PLATFORM_ITL_PARSER_INFLATE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/core_foundation/byte_source.h"

namespace itl_parser {

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
    bool IsTooLong() const;

    core_foundation::ByteSource &compressed_;
    std::unique_ptr<State> state_;
    uint64_t total_in_ = 0;
    uint64_t total_out_ = 0;
};

}  // namespace itl_parser

#endif
