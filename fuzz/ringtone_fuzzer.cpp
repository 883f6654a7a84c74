// Reads the length of a ringtone: the first byte of the input chooses the extension, the rest is the file.
#include <string>
#include <vector>

#include "artwork/sound_length.h"
#include "fixtures/media_files.h"
#include "fixtures/preference_file.h"
#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/work_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    constexpr const char *kNames[] = {"a.m4r", "a.mp3", "a.wav", "a.aif", "a.flac", "a.ogg", "a.asf", "a"};
    static WorkFolder work;
    Choices choices(AsText(bytes, size));
    const std::string name = kNames[choices.Below(std::size(kNames))];
    work.Write(name, choices.Rest());
    const auto length = SoundLength(BackslashPath(work.Place() / name));
    Require(!length || *length != 0, "a length that is known is not 0");
    work.CheckAndClear();
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    const MediaTags tags = {
        .title = "Tone", .artist = "A", .album = "B", .genre = "Pop", .year = 1, .track = 1};
    return {'\0' + M4aFile(1, tags), '\1' + Mp3File(1, tags), '\2' + WavFile(1).substr(0, 2000),
            '\7' + M4aFile(1, tags)};
}
