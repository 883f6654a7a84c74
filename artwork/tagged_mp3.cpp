#include "artwork/tagged_mp3.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/audioproperties.h>

#include <exception>

namespace {

constexpr int64_t kMillisecondsInSecond = 1000;

int64_t TagBytesAtStart(MediaStream &stream) {
    const TagLib::ByteVector head = stream.readBlock(TagLib::ID3v2::Header::size());
    stream.seek(0, TagLib::IOStream::Beginning);
    const bool begins_with_tag = head.startsWith(TagLib::ID3v2::Header::fileIdentifier());
    return begins_with_tag ? TagLib::ID3v2::Header(head).completeTagSize() : 0;
}

TagLib::ByteVector PictureOf(const TagLib::ID3v2::Frame *frame) {
    if (frame == nullptr || frame->frameID() != "APIC") return {};
    const auto *picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame *>(frame);
    return picture == nullptr ? TagLib::ByteVector() : picture->picture();
}

}  // namespace

TaggedMp3::TaggedMp3(const std::string &path, Length length)
    : stream_(path),
      tag_bytes_(TagBytesAtStart(stream_)),
      frames_(tag_bytes_ != 0 ? tag_bytes_ : stream_.length()) {
    if (!stream_.isOpen()) return;
    try {
        file_ = std::make_unique<TagLib::MPEG::File>(&stream_, &frames_, length == Length::kRead,
                                                     TagLib::AudioProperties::Average);
        if (!file_->isValid()) file_.reset();
    } catch (const std::exception &) {
        file_.reset();
    }
}

std::optional<int64_t> TaggedMp3::Milliseconds() const {
    return LengthOf(file_.get());
}

// A tag where the file begins is the one that the file has parsed already. Where it begins with something
// else, its own tag, if there is one, lies elsewhere.
TagLib::ID3v2::Tag *TaggedMp3::TagAtStart() {
    if (file_->hasID3v2Tag() && tag_bytes_ != 0) return file_->ID3v2Tag(false);
    tag_at_start_ = std::make_unique<TagLib::ID3v2::Tag>(file_.get(), 0, &frames_);
    return tag_at_start_.get();
}

bool TaggedMp3::UsePicture(const std::function<bool(const TagLib::ByteVector &picture)> &use) {
    if (!file_) return false;
    try {
        const TagLib::ID3v2::Tag *tag = TagAtStart();
        if (tag == nullptr || tag->isEmpty()) return false;
        for (const TagLib::ID3v2::Frame *frame : tag->frameList()) {
            const TagLib::ByteVector picture = PictureOf(frame);
            if (!picture.isEmpty() && use(picture)) return true;
        }
    } catch (const std::exception &) {
        // A tag that is too large to be held has no pictures.
    }
    return false;
}

std::optional<int64_t> LengthOf(const TagLib::File *file) {
    const TagLib::AudioProperties *sound = file == nullptr ? nullptr : file->audioProperties();
    if (sound == nullptr || sound->length() == 0) return std::nullopt;
    return sound->length() * kMillisecondsInSecond;
}
