#ifndef ARTWORK_TAGGED_MP3_H
#define ARTWORK_TAGGED_MP3_H

#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "artwork/media_stream.h"
#include "artwork/safe_frame_factory.h"

/* An mp3 file as TagLib sees it. One that cannot be read has no tag, no pictures and no length; nothing is
 * thrown. */
class TaggedMp3 {
  public:
    enum class Length { kRead, kLeaveOut };

    // `path` is a Windows path in UTF-8.
    TaggedMp3(const std::string &path, Length length);

    // Null if there is none. Belongs to this object.
    const TagLib::Tag *tag() const { return file_ ? file_->tag() : nullptr; }

    // Of the sound, in milliseconds, though only whole seconds are read; empty where it is not known.
    std::optional<int64_t> Milliseconds() const;

    // Hands the pictures of the ID3v2 tag at the very start of the file to `use`, in their order, until it
    // gives true. Empty ones are passed over. True if one was used.
    bool UsePicture(const std::function<bool(const TagLib::ByteVector &picture)> &use);

  private:
    TagLib::ID3v2::Tag *TagAtStart();

    MediaStream stream_;
    int64_t tag_bytes_;  // of the tag that the file begins with; 0 if it begins with something else
    SafeFrameFactory frames_;
    std::unique_ptr<TagLib::MPEG::File> file_;
    std::unique_ptr<TagLib::ID3v2::Tag> tag_at_start_;  // only where it is not the file's own
};

// The length of a TagLib file's sound as Milliseconds gives it. `file` may be null.
std::optional<int64_t> LengthOf(const TagLib::File *file);

#endif
