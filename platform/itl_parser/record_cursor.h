// The body of the file is a chain of records. Each begins:
//
//   offset 0x00  u32  tag: four letters, spelled backwards in a little-endian body
//          0x04  u32  length of the header
//          0x08  u32  length of the record with what it holds; in the head of a list the number of its
//          records
//
// The header has grown with the versions: a field beyond its end is absent, and reads as 0.
#ifndef PLATFORM_ITL_PARSER_RECORD_CURSOR_H
#define PLATFORM_ITL_PARSER_RECORD_CURSOR_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "platform/core_foundation/byte_source.h"
#include "platform/core_foundation/input_window.h"
#include "platform/itl_parser/byte_order.h"

namespace itl_parser {

constexpr uint32_t Tag(const char (&letters)[5]) {
    return LoadU32(letters, ByteOrder::kBig);
}

constexpr size_t kRecordStart = 12;

// What a reader expects of a record.
struct RecordKind {
    uint32_t tag;
    uint32_t least_header;  // at least kRecordStart
    uint32_t fields;        // how much of the header is read at most
    bool has_length;        // its third word is a length
};

// The fixed fields of a record.
class Fields {
  public:
    Fields(const char *bytes, size_t size, ByteOrder order) : bytes_(bytes), size_(size), order_(order) {}

    bool Has(size_t offset, size_t size) const { return size <= size_ && offset <= size_ - size; }
    uint8_t U8(size_t offset) const { return Has(offset, 1) ? static_cast<uint8_t>(bytes_[offset]) : 0; }
    uint32_t U32(size_t offset) const { return Has(offset, 4) ? LoadU32(bytes_ + offset, order_) : 0; }
    uint64_t U64(size_t offset) const { return Has(offset, 8) ? LoadNumber(bytes_ + offset, 8, order_) : 0; }

  private:
    const char *bytes_;
    size_t size_;
    ByteOrder order_;
};

struct Record {
    uint64_t header_end;  // places in the body
    uint64_t end;         // of what it holds; of the head of a list, the end of what holds the list
    uint32_t number;      // the third word
    Fields fields;        // until the cursor moves
};

// A place in the body that only goes forward. Nothing is read that the body does not have.
class RecordCursor {
  public:
    static constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();

    RecordCursor(core_foundation::ByteSource &body, ByteOrder order) : window_(body), order_(order) {}

    // Reads the first bytes. False when that failed.
    bool Begin() { return window_.Begin(); }

    ByteOrder order() const { return order_; }
    uint64_t position() const { return position_; }

    // The next `size` bytes in one piece, or null where the body ends or fails before. At most some ten
    // thousand bytes: the window holds them.
    const char *Peek(size_t size) {
        while (window_.view().size() < size) {
            if (!window_.Advance(window_.begin())) return nullptr;
        }
        return window_.begin();
    }
    // 0 at the end.
    uint32_t PeekTag() {
        const char *bytes = Peek(4);
        return bytes == nullptr ? 0 : LoadU32(bytes, order_);
    }

    // The record that begins here, which ends at `limit` at the latest. Empty when something else stands
    // here.
    std::optional<Record> Open(const RecordKind &kind, uint64_t limit);

    // Goes on to a place. False when the body ends before, or the cursor is past it.
    bool MoveTo(uint64_t place);

    // True at the end of a body that was read without a fault.
    bool IsAtEnd() { return Peek(1) == nullptr && !window_.failed(); }

  private:
    void Skip(size_t count) {
        window_.Skip(count);
        position_ += count;
    }

    core_foundation::InputWindow window_;
    ByteOrder order_;
    uint64_t position_ = 0;
};

}  // namespace itl_parser

#endif
