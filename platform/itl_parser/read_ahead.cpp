#include "platform/itl_parser/read_ahead.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace itl_parser {

ReadAheadSource::ReadAheadSource(core_foundation::ByteSource &source) : source_(source) {
    try {
        thread_ = std::thread([this] { FillBlocks(); });
    } catch (const std::system_error &) {
        // Then Read goes to the source itself.
    }
}

ReadAheadSource::~ReadAheadSource() {
    {
        const std::lock_guard lock(mutex_);
        is_stopped_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable()) thread_.join();
}

std::optional<size_t> ReadAheadSource::Read(char *buffer, size_t size) {
    if (!thread_.joinable()) return source_.Read(buffer, size);
    size_t total = 0;
    while (total < size) {
        const Block &block = CurrentBlock();
        if (!block.size) return std::nullopt;
        const size_t count = std::min(size - total, *block.size - position_);
        std::memcpy(buffer + total, block.bytes.get() + position_, count);
        total += count;
        position_ += count;
        if (position_ < *block.size) continue;
        if (*block.size < kBlockBytes) break;  // the last one stays the current one
        ReturnBlock();
    }
    return total;
}

void ReadAheadSource::FillBlocks() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return is_stopped_ || filled_ < read_ + kBlocks; });
        if (is_stopped_) return;
        Block &block = blocks_[filled_ % kBlocks];
        lock.unlock();
        block.size = source_.Read(block.bytes.get(), kBlockBytes);
        const bool is_last = !block.size || *block.size < kBlockBytes;
        lock.lock();
        ++filled_;
        changed_.notify_one();
        if (is_last) return;
    }
}

const ReadAheadSource::Block &ReadAheadSource::CurrentBlock() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return filled_ > read_; });
    return blocks_[read_ % kBlocks];
}

void ReadAheadSource::ReturnBlock() {
    const std::lock_guard lock(mutex_);
    ++read_;
    position_ = 0;
    changed_.notify_one();
}

}  // namespace itl_parser
