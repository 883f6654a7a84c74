#include "artwork/media_stream.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/limits.h"

namespace {

// The head of an atom is the one thing that is read by eight bytes.
constexpr unsigned long kAtomHeadBytes = 8;

// "ID3" in front of a file, "ID3 " or "id3 " as the name of a chunk.
bool MarksTag(const TagLib::ByteVector &block) {
    return block == "ID3" || block == "ID3 " || block == "id3 ";
}

}  // namespace

MediaStream::MediaStream(const std::string &path) : path_(path), file_(path, L"rb") {
    if (!file_ || _fseeki64(file_.get(), 0, SEEK_END) != 0) return;
    size_ = std::max<int64_t>(_ftelli64(file_.get()), 0);
}

void MediaStream::Renew() {
    reads_ = 0;
    atoms_ = 0;
    seek(0, Beginning);
}

bool MediaStream::TakeRead(unsigned long length) {
    if (length == kAtomHeadBytes && limits::kMediaAtoms.IsPassedBy(++atoms_)) return false;
    return !limits::kMediaReads.IsPassedBy(++reads_);
}

TagLib::ByteVector MediaStream::readBlock(unsigned long length) {
    const auto left = static_cast<unsigned long>(std::max<int64_t>(size_ - position_, 0));
    if (!file_ || left == 0 || !TakeRead(length)) return {};
    TagLib::ByteVector block(static_cast<unsigned>(std::min(length, left)));
    const size_t count = block.size() > kWindowBytes ? ReadAt(position_, block.data(), block.size())
                                                     : ReadFromWindow(block.data(), block.size());
    position_ += static_cast<int64_t>(count);
    block.resize(static_cast<unsigned>(count));
    if (hides_tags_ && MarksTag(block)) block = TagLib::ByteVector(block.size(), ' ');
    return block;
}

size_t MediaStream::ReadAt(int64_t position, char *bytes, size_t size) {
    if (_fseeki64(file_.get(), position, SEEK_SET) != 0) return 0;
    return std::fread(bytes, 1, size, file_.get());
}

// From the position on, through one window or two.
size_t MediaStream::ReadFromWindow(char *bytes, size_t size) {
    size_t count = 0;
    while (count < size) {
        const int64_t position = position_ + static_cast<int64_t>(count);
        const int64_t start = position - position % static_cast<int64_t>(kWindowBytes);
        if (start != window_start_) {
            window_size_ = ReadAt(start, window_.data(), window_.size());
            window_start_ = start;
        }
        const auto offset = static_cast<size_t>(position - start);
        if (offset >= window_size_) break;
        const size_t piece = std::min(size - count, window_size_ - offset);
        std::memcpy(bytes + count, window_.data() + offset, piece);
        count += piece;
    }
    return count;
}

void MediaStream::seek(long offset, Position origin) {
    const int64_t base = origin == Beginning ? 0 : origin == Current ? position_ : size_;
    const int64_t target = base + offset;
    // As in TagLib's own stream, a place before the file is not gone to.
    if (target >= 0) position_ = target;
}

void MediaStream::writeBlock(const TagLib::ByteVector & /*data*/) {}
void MediaStream::insert(const TagLib::ByteVector & /*data*/, unsigned long /*start*/,
                         unsigned long /*replace*/) {}
void MediaStream::removeBlock(unsigned long /*start*/, unsigned long /*length*/) {}
void MediaStream::truncate(long /*length*/) {}
