#ifndef ARTWORK_SAFE_FRAME_FACTORY_H
#define ARTWORK_SAFE_FRAME_FACTORY_H

#include <taglib/id3v2frame.h>
#include <taglib/id3v2framefactory.h>

#include <cstdint>

/* Makes the frames of an ID3v2 tag as TagLib's own factory does, but for those by which a crafted tag could
 * bring the process down. They become frames of unknown content:
 *   - chapters and tables of contents, which hold frames themselves, to any depth;
 *   - compressed frames where there is room for more than they may grow to;
 *   - all that follows when there are too many, as one frame.
 *
 * The factory must outlive the tags that it serves. */
class SafeFrameFactory : public TagLib::ID3v2::FrameFactory {
  public:
    // `source_size`: the bytes of the file or of its tag, beyond which no compressed frame reaches.
    explicit SafeFrameFactory(int64_t source_size) : source_size_(source_size) {}

  protected:
    // TagLib keeps the name to its frames and factories; a frame may pass it on.
    struct FrameTypes : TagLib::ID3v2::Frame {
        using FrameHeader = TagLib::ID3v2::Frame::Header;
    };

    bool updateFrame(FrameTypes::FrameHeader *header) const override;

  private:
    int64_t source_size_;
    mutable uint64_t frames_ = 0;
};

#endif
