#include "artwork/safe_frame_factory.h"

namespace {

// Deflated data grows at most a thousandfold, so this keeps a tag below 256 MB. Hardly any program compresses
// frames, and pictures, which are large, do not get smaller by it.
constexpr int64_t kMostCompressedBytes = 256 * 1024;

bool HoldsFrames(const TagLib::ByteVector &frame_id) {
    return frame_id == "CHAP" || frame_id == "CTOC";
}

}  // namespace

bool SafeFrameFactory::updateFrame(FrameTypes::FrameHeader *header) const {
    if (HoldsFrames(header->frameID())) return false;
    if (!header->compression() || source_size_ <= kMostCompressedBytes)
        return FrameFactory::updateFrame(header);
    // The same frame without its flags: id (4), size (4), flags (2). Only versions from 3 on have them.
    const unsigned size = header->frameSize();
    header->setData(header->frameID() + TagLib::ByteVector(6, '\0'), header->version());
    header->setFrameSize(size);
    return false;
}
