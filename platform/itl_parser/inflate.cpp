// ISA-L inflates such bodies, which are mostly zeros and short fields, three times as fast as zlib, and this
// is most of the time that it takes to read a file.
#include "platform/itl_parser/inflate.h"

#include <isa-l/igzip_lib.h>

#include <algorithm>
#include <array>
#include <limits>

#include "platform/limits.h"

namespace itl_parser {

namespace {

constexpr size_t kInputBytes = size_t{64} << 10;

}  // namespace

struct InflatingSource::State {
    inflate_state stream;
    std::array<char, kInputBytes> input;

    // What comes next is the end of the stream, its checksum included.
    bool IsFinished() const { return stream.block_state == ISAL_BLOCK_FINISH; }
};

InflatingSource::InflatingSource(core_foundation::ByteSource &compressed)
    : compressed_(compressed), state_(std::make_unique<State>()) {
    isal_inflate_init(&state_->stream);
    state_->stream.crc_flag = ISAL_ZLIB;
}

InflatingSource::~InflatingSource() = default;

bool InflatingSource::ReadInput() {
    inflate_state &stream = state_->stream;
    const std::optional<size_t> count = compressed_.Read(state_->input.data(), kInputBytes);
    stream.next_in = reinterpret_cast<uint8_t *>(state_->input.data());
    stream.avail_in = static_cast<uint32_t>(count.value_or(0));
    total_in_ += count.value_or(0);
    return stream.avail_in > 0;
}

bool InflatingSource::IsTooLong() const {
    if (limits::kItlBodyBytes.IsPassedBy(total_out_)) return true;
    const bool is_bomb = total_out_ > limits::kItlFreeBytes + limits::kItlExpansion.value * total_in_;
    if (is_bomb) limits::kItlExpansion.Hit();
    return is_bomb;
}

std::optional<size_t> InflatingSource::Read(char *buffer, size_t size) {
    inflate_state &stream = state_->stream;
    size = std::min<size_t>(size, std::numeric_limits<uint32_t>::max());
    stream.next_out = reinterpret_cast<uint8_t *>(buffer);
    stream.avail_out = static_cast<uint32_t>(size);
    while (stream.avail_out > 0 && !state_->IsFinished()) {
        if (stream.avail_in == 0 && !ReadInput()) return std::nullopt;
        const uint32_t in_before = stream.avail_in;
        const uint32_t out_before = stream.avail_out;
        if (isal_inflate(&stream) != ISAL_DECOMP_OK) return std::nullopt;
        if (stream.avail_in == in_before && stream.avail_out == out_before) return std::nullopt;
        total_out_ += out_before - stream.avail_out;
        if (IsTooLong()) return std::nullopt;
    }
    return size - stream.avail_out;
}

}  // namespace itl_parser
