#include "platform/itl_parser/record_cursor.h"

#include <algorithm>

namespace itl_parser {

std::optional<Record> RecordCursor::Open(const RecordKind &kind, uint64_t limit) {
    const uint64_t room = limit - position_;
    if (position_ > limit || room < kRecordStart) return std::nullopt;
    const char *start = Peek(kRecordStart);
    if (start == nullptr || LoadU32(start, order_) != kind.tag) return std::nullopt;
    const uint32_t header = LoadU32(start + 4, order_);
    const uint32_t number = LoadU32(start + 8, order_);
    if (header < kind.least_header || header > room) return std::nullopt;
    if (kind.has_length && (number < header || number > room)) return std::nullopt;
    const size_t size = std::min(header, kind.fields);
    const char *fields = Peek(size);
    if (fields == nullptr) return std::nullopt;
    return Record{position_ + header, kind.has_length ? position_ + number : limit, number,
                  Fields(fields, size, order_)};
}

bool RecordCursor::MoveTo(uint64_t place) {
    if (place < position_) return false;
    while (place - position_ > window_.view().size()) {
        Skip(window_.view().size());
        if (!window_.Advance(window_.begin())) return false;
    }
    Skip(static_cast<size_t>(place - position_));
    return true;
}

}  // namespace itl_parser
