#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/artwork_file.h"
#include "tests/support/byte_text.h"
#include "tests/support/media_files.h"

// MP4: a file is a row of boxes, each a size (4), a name (4) and a body of fields or further boxes. "moov"
// describes the tracks, "mdat" holds their samples one after another.

namespace {

constexpr std::uint32_t kMovieScale = 1000;
constexpr std::uint32_t kLanguageUndetermined = 0x55C4;
constexpr int kPictureSide = 48;

struct Track {
    std::uint32_t number;
    bool video;
    std::uint32_t scale;            // time units a second
    std::uint32_t sample_duration;  // in units of scale
    std::string description;        // the entry of "stsd"
    std::vector<std::string> samples;

    std::uint32_t Duration() const { return sample_duration * static_cast<std::uint32_t>(samples.size()); }
    std::string Bytes() const {
        std::string bytes;
        for (const std::string &sample : samples)
            bytes += sample;
        return bytes;
    }
};

std::string Box(std::string_view name, const std::string &body) {
    return BigEndian(static_cast<std::uint32_t>(body.size()) + 8) + std::string(name) + body;
}

// A box that begins with a version of 0 and flags.
std::string FullBox(std::string_view name, std::uint32_t flags, const std::string &body) {
    return Box(name, BigEndian(flags) + body);
}

// The transformation that changes nothing, in 16.16 and 2.30 fixed point.
std::string UnityMatrix() {
    return BigEndian(0x10000) + Zeros(12) + BigEndian(0x10000) + Zeros(12) + BigEndian(0x40000000);
}

// Descriptor: tag, length, body.
std::string Descriptor(char tag, const std::string &body) {
    return tag + BigEndian(static_cast<std::uint32_t>(body.size()), 1) + body;
}

// AAC-LC (2), 44100 Hz (index 4), one channel: five, four and four bits.
std::string AacDescription() {
    const std::string decoder = std::string("\x40\x15", 2) + Zeros(3) + BigEndian(64000) + BigEndian(64000) +
                                Descriptor('\x05', std::string("\x12\x08", 2));
    const std::string stream =
        Zeros(3) + Descriptor('\x04', decoder) + Descriptor('\x06', std::string("\x02", 1));
    return Box("mp4a", Zeros(6) + BigEndian(1, 2) + Zeros(8) + BigEndian(1, 2) + BigEndian(16, 2) + Zeros(4) +
                           BigEndian(44100U << 16) + FullBox("esds", 0, Descriptor('\x03', stream)));
}

// 1024 silent samples: a single channel element (0) whose bands are all empty, so that only its header is
// there, and the end mark 111.
Track SoundTrack(int seconds) {
    const auto frames = static_cast<std::size_t>((seconds * 44100 + 1023) / 1024);
    return {.number = 1,
            .video = false,
            .scale = 44100,
            .sample_duration = 1024,
            .description = AacDescription(),
            .samples = std::vector<std::string>(frames, std::string("\x00\x00\x00\x07", 4))};
}

// Each picture is a PNG file, which is the simplest of all forms that players know.
Track PictureTrack(int seconds) {
    constexpr std::uint32_t kPicturesPerSecond = 5;
    constexpr std::uint32_t kDotsPerInch = 72U << 16;
    const std::string description =
        Box("png ", Zeros(6) + BigEndian(1, 2) + Zeros(16) + BigEndian(kPictureSide, 2) +
                        BigEndian(kPictureSide, 2) + BigEndian(kDotsPerInch) + BigEndian(kDotsPerInch) +
                        Zeros(4) + BigEndian(1, 2) + Zeros(32) + BigEndian(24, 2) + BigEndian(0xFFFF, 2));
    const auto pictures = static_cast<std::size_t>(seconds) * kPicturesPerSecond;
    return {.number = 2,
            .video = true,
            .scale = kPicturesPerSecond,
            .sample_duration = 1,
            .description = description,
            .samples = std::vector<std::string>(pictures, PngPicture(kPictureSide))};
}

std::uint32_t MovieTime(const Track &track) {
    return static_cast<std::uint32_t>(std::uint64_t{track.Duration()} * kMovieScale / track.scale);
}

// All samples of a track stand in one chunk at `offset` of the file.
std::string SampleTable(const Track &track, std::uint32_t offset) {
    const auto count = static_cast<std::uint32_t>(track.samples.size());
    std::string sizes;
    for (const std::string &sample : track.samples)
        sizes += BigEndian(static_cast<std::uint32_t>(sample.size()));
    return Box("stbl",
               FullBox("stsd", 0, BigEndian(1) + track.description) +
                   FullBox("stts", 0, BigEndian(1) + BigEndian(count) + BigEndian(track.sample_duration)) +
                   FullBox("stsc", 0, BigEndian(1) + BigEndian(1) + BigEndian(count) + BigEndian(1)) +
                   FullBox("stsz", 0, BigEndian(0) + BigEndian(count) + sizes) +
                   FullBox("stco", 0, BigEndian(1) + BigEndian(offset)));
}

std::string MediaInformation(const Track &track, std::uint32_t offset) {
    const std::string header = track.video ? FullBox("vmhd", 1, Zeros(8)) : FullBox("smhd", 0, Zeros(4));
    const std::string this_file = FullBox("dref", 0, BigEndian(1) + FullBox("url ", 1, {}));
    return Box("minf", header + Box("dinf", this_file) + SampleTable(track, offset));
}

std::string TrackBox(const Track &track, std::uint32_t offset) {
    constexpr std::uint32_t kEnabledInMovie = 3;
    const std::uint32_t volume = track.video ? 0 : 0x100;
    const std::string side = BigEndian(track.video ? kPictureSide << 16 : 0);
    const std::string header =
        FullBox("tkhd", kEnabledInMovie,
                Zeros(8) + BigEndian(track.number) + Zeros(4) + BigEndian(MovieTime(track)) + Zeros(12) +
                    BigEndian(volume, 2) + Zeros(2) + UnityMatrix() + side + side);
    const std::string media_header = FullBox("mdhd", 0,
                                             Zeros(8) + BigEndian(track.scale) + BigEndian(track.Duration()) +
                                                 BigEndian(kLanguageUndetermined, 2) + Zeros(2));
    const std::string handler = FullBox("hdlr", 0, Zeros(4) + (track.video ? "vide" : "soun") + Zeros(13));
    return Box("trak", header + Box("mdia", media_header + handler + MediaInformation(track, offset)));
}

// A tag of iTunes: a box of the tag's name around "data", which begins with the type (1: UTF-8, 0: numbers).
std::string Tag(const std::string &name, std::uint32_t type, const std::string &value) {
    if (value.empty()) return {};
    return Box(name, Box("data", BigEndian(type) + Zeros(4) + value));
}

std::string TextTag(const char *name, const std::string &value) {
    return Tag(std::string("\xA9") + name, 1, value);
}

std::string TagsBox(const MediaTags &tags) {
    const std::string year = tags.year == 0 ? std::string() : std::to_string(tags.year);
    const std::string items = TextTag("nam", tags.title) + TextTag("ART", tags.artist) +
                              TextTag("alb", tags.album) + TextTag("gen", tags.genre) + TextTag("day", year) +
                              Tag("trkn", 0, BigEndian(static_cast<std::uint32_t>(tags.track)) + Zeros(4));
    const std::string handler = FullBox("hdlr", 0, Zeros(4) + "mdirappl" + Zeros(9));
    return Box("udta", FullBox("meta", 0, handler + Box("ilst", items)));
}

std::string MovieBox(const std::vector<Track> &tracks, const MediaTags &tags, std::uint32_t data_offset) {
    std::uint32_t duration = 0;
    std::string boxes;
    for (const Track &track : tracks) {
        duration = MovieTime(track) > duration ? MovieTime(track) : duration;
        boxes += TrackBox(track, data_offset);
        data_offset += static_cast<std::uint32_t>(track.Bytes().size());
    }
    const std::string header = FullBox(
        "mvhd", 0,
        Zeros(8) + BigEndian(kMovieScale) + BigEndian(duration) + BigEndian(0x10000) + BigEndian(0x100, 2) +
            Zeros(10) + UnityMatrix() + Zeros(24) + BigEndian(static_cast<std::uint32_t>(tracks.size()) + 1));
    return Box("moov", header + boxes + TagsBox(tags));
}

// The description stands in front of the samples and needs their offset; its own length does not depend on
// it.
std::string Mp4File(std::string_view brand, const std::vector<Track> &tracks, const MediaTags &tags) {
    const std::string type =
        Box("ftyp", std::string(brand) + BigEndian(0x200) + std::string(brand) + "mp42isom");
    const std::size_t movie_length = MovieBox(tracks, tags, 0).size();
    const auto data_offset = static_cast<std::uint32_t>(type.size() + movie_length + 8);
    std::string samples;
    for (const Track &track : tracks)
        samples += track.Bytes();
    return type + MovieBox(tracks, tags, data_offset) + Box("mdat", samples);
}

}  // namespace

std::string M4aFile(int seconds, const MediaTags &tags) {
    return Mp4File("M4A ", {SoundTrack(seconds)}, tags);
}

std::string M4vFile(int seconds, const MediaTags &tags) {
    return Mp4File("M4V ", {SoundTrack(seconds), PictureTrack(seconds)}, tags);
}
