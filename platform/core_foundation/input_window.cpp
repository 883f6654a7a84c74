#include "platform/core_foundation/input_window.h"

#include <algorithm>
#include <cstring>

#include "platform/core_foundation/value.h"
#include "platform/limits.h"

namespace core_foundation {

namespace {

// Room for the sentinel and for whatever reads whole blocks.
constexpr size_t kPadding = 64;
constexpr size_t kSentinel = 2;

}  // namespace

bool InputWindow::Advance(const char *keep) {
    if (is_at_end_ || failed_) return false;
    begin_ = keep;
    const size_t size = buffer_.size() - kPadding;
    if (view().size() > size / 2) {
        if (!Resize(2 * size)) return false;
    } else {
        std::memmove(buffer_.data(), begin_, view().size());
        end_ = buffer_.data() + view().size();
        begin_ = buffer_.data();
    }
    return Fill();
}

bool InputWindow::ReadAll() {
    while (Advance(begin_)) {
    }
    return !failed_;
}

bool InputWindow::Resize(size_t size) {
    MemoryBlock grown(std::min<size_t>(size, limits::kListBytes.value) + kPadding);
    failed_ = !grown || limits::kListBytes.IsPassedBy(view().size() + 1);
    if (failed_) return false;
    if (!view().empty()) std::memcpy(grown.data(), begin_, view().size());
    end_ = grown.data() + view().size();
    begin_ = grown.data();
    buffer_ = std::move(grown);
    return true;
}

bool InputWindow::Fill() {
    const auto room = static_cast<size_t>(buffer_.data() + buffer_.size() - kPadding - end_);
    const std::optional<size_t> count = source_.Read(end_, room);
    failed_ = !count;
    is_at_end_ = count.value_or(0) < room;
    end_ += count.value_or(0);
    std::memset(end_, 0, kPadding);
    std::memset(end_, '<', kSentinel);
    return !failed_;
}

}  // namespace core_foundation
