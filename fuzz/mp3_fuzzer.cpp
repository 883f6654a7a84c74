// Imports an input as an mp3 file that waits beside the library, and reads its picture as a host does. The
// mutator knows the frames of an ID3v2 tag, whose lengths must be right for TagLib to look inside.
#include <random>
#include <string>
#include <vector>

#include "artwork/local_file.h"
#include "driver/scanned_entries.h"
#include "fixtures/artwork_file.h"
#include "fixtures/media_files.h"
#include "fixtures/preference_file.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/tree_check.h"
#include "fuzz/work_folder.h"
#include "tests/artwork/id3_builder.h"
#include "tests/driver/tree_fixture.h"

namespace {

constexpr size_t kTagHeader = 10;
constexpr size_t kFrameHeader = 10;
constexpr size_t kIdSize = 4;

struct Frame {
    std::string id;
    std::string flags;
    std::string body;
};

struct TaggedFile {
    std::string version;  // with the flags of the tag
    std::vector<Frame> frames;
    std::string sound;
};

size_t BigEndianAt(std::string_view bytes, size_t offset, unsigned bits) {
    size_t number = 0;
    for (size_t i = 0; i < kIdSize; ++i)
        number = number << bits | (static_cast<unsigned char>(bytes[offset + i]) & ((1U << bits) - 1));
    return number;
}

// Frames of versions 3 and 4, as far as their lengths lead.
TaggedFile Parse(std::string_view bytes) {
    if (!bytes.starts_with("ID3") || bytes.size() < kTagHeader) return {"", {}, std::string(bytes)};
    TaggedFile file{std::string(bytes.substr(3, 3)), {}, {}};
    const size_t tag_size = BigEndianAt(bytes, 6, 7);
    std::string_view frames = bytes.substr(kTagHeader, tag_size);
    file.sound = bytes.substr(kTagHeader + frames.size());
    while (frames.size() > kFrameHeader) {
        const size_t size = BigEndianAt(frames, kIdSize, bytes[3] == 4 ? 7 : 8);
        file.frames.push_back({std::string(frames.substr(0, kIdSize)), std::string(frames.substr(8, 2)),
                               std::string(frames.substr(kFrameHeader, size))});
        frames.remove_prefix(kFrameHeader + file.frames.back().body.size());
    }
    return file;
}

std::string Write(const TaggedFile &file) {
    if (file.version.empty()) return file.sound;
    std::string frames;
    for (const Frame &frame : file.frames) {
        std::string written = Id3Frame(frame.id, frame.body, frame.flags);
        if (file.version[0] == 4) written.replace(kIdSize, kIdSize, SynchSafe(frame.body.size()));
        frames += written;
    }
    return "ID3" + file.version + SynchSafe(frames.size()) + frames + file.sound;
}

void MutateFrame(TaggedFile &file, std::minstd_rand &random) {
    constexpr const char *kIds[] = {"TIT2", "TPE1", "TALB", "TCON", "TDRC", "TYER", "TRCK", "APIC",
                                    "COMM", "CHAP", "CTOC", "TXXX", "GEOB", "PRIV", "SYLT", "RVA2"};
    Frame &frame = file.frames[random() % file.frames.size()];
    switch (random() % 8) {
        case 0:
            frame.id = kIds[random() % std::size(kIds)];
            break;
        case 1:
            frame.flags = Mutated(frame.flags, 0);
            break;
        case 2:
            file.frames.push_back(Frame(frame));
            return;
        case 3:
            file.version = Mutated(file.version, 0);
            break;
        default:
            frame.body = Mutated(frame.body);
    }
    frame.id.resize(kIdSize);
    frame.flags.resize(2);
    file.version.resize(3);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static WorkFolder work;
    work.Write("song.mp3", AsText(bytes, size));
    {
        BareTree tree;
        tree.driver.library_folder = BackslashPath(work.Place());
        DriverPath *music =
            EnsureCategoryPath(&tree.driver, "music", node_category::kAudio, node_subcategory::kMusic);
        Require(ImportLocalFile(&tree.driver, BackslashPath(work.Place() / "song.mp3")) == 0,
                "every file is taken");
        Require(ChildCount(music) == 1, "a file is one entry");
        CheckTree(&tree.driver, "library/music");
    }
    work.CheckAndClear();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t most, unsigned seed) {
    std::minstd_rand random(seed);
    TaggedFile file = Parse(AsText(bytes, size));
    if (file.frames.empty() || random() % 4 == 0) return LLVMFuzzerMutate(bytes, size, most);
    MutateFrame(file, random);
    return Store(Write(file), bytes, most);
}

std::vector<std::string> FuzzSeeds() {
    const MediaTags tags = {.title = "Title",
                            .artist = "Artist",
                            .album = "Album",
                            .genre = "Rock",
                            .year = 2004,
                            .track = 1,
                            .picture = PngPicture(4)};
    const std::string compressed = "\x78\x9C\x03" + Zeros(4) + "\1";
    const std::string frames = Id3Text("TIT2", "T\xE9t") + Id3Text("TRCK", "3/7") + PictureFrame("") +
                               PictureFrame("picture") + Id3Frame("CHAP", "chapter" + Zeros(17)) +
                               Id3Frame("TPE1", BigEndian(4) + compressed, Zeros(1) + "\x80");
    return {Mp3File(1, tags), Id3Tag(frames) + SilentSound(0),
            "ID3\4" + Zeros(2) + SynchSafe(frames.size()) + frames, SilentSound(1) + "TAG" + Zeros(125),
            "x" + Id3Tag(frames)};
}
