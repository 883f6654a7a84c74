#include "artwork/safe_frame_factory.h"

#include "platform/limits.h"

namespace {

// More than a tag can hold, so that the next frame would begin behind it.
constexpr unsigned kRestOfTag = 1U << 30;

bool HoldsFrames(const TagLib::ByteVector &frame_id) {
    return frame_id == "CHAP" || frame_id == "CTOC";
}

}  // namespace

bool SafeFrameFactory::updateFrame(FrameTypes::FrameHeader *header) const {
    if (limits::kTagFrames.IsPassedBy(++frames_)) {
        header->setFrameSize(kRestOfTag);
        return false;
    }
    if (HoldsFrames(header->frameID())) return false;
    if (!header->compression() ||
        !limits::kCompressedTagBytes.IsPassedBy(static_cast<uint64_t>(source_size_)))
        return FrameFactory::updateFrame(header);
    // The same frame without its flags: id (4), size (4), flags (2). Only versions from 3 on have them.
    const unsigned size = header->frameSize();
    header->setData(header->frameID() + TagLib::ByteVector(6, '\0'), header->version());
    header->setFrameSize(size);
    return false;
}
