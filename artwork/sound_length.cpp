#include "artwork/sound_length.h"

#include <taglib/fileref.h>
#include <taglib/mp4file.h>

#include <exception>

#include "artwork/media_stream.h"
#include "artwork/tagged_mp3.h"
#include "driver/limit_log.h"

namespace {

constexpr TagLib::AudioProperties::ReadStyle kStyle = TagLib::AudioProperties::Average;

// Formats without a factory of ours for their ID3v2 tags: those are hidden, as only the length is wanted.
std::optional<int64_t> LengthByContent(MediaStream &stream) {
    stream.Renew();
    stream.HideTags();
    const TagLib::FileRef file(&stream, true, kStyle);
    return file.isNull() ? std::nullopt : LengthOf(file.file());
}

std::optional<int64_t> ReadLength(const std::string &path) {
    MediaStream stream(path);
    if (!stream.isOpen()) return std::nullopt;
    {
        const TagLib::MP4::File file(&stream, true, kStyle);
        if (file.isValid()) return LengthOf(&file);
    }
    stream.Renew();
    if (TagLib::MPEG::File::isSupported(&stream))
        return TaggedMp3(path, TaggedMp3::Length::kRead).Milliseconds();
    return LengthByContent(stream);
}

}  // namespace

std::optional<int64_t> SoundLength(const std::string &path) {
    const LimitLog limit_log(path);
    try {
        return ReadLength(path);
    } catch (const std::exception &) {
        return std::nullopt;
    }
}
