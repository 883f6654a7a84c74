// Reads arbitrary bytes as "iTunes Library.itl". A body that is compressed or encrypted is beyond what a
// fuzzer makes up, so the bytes are taken as a plain body too, behind an envelope that fits them, in both
// byte orders.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/itl_parser/library_reader.h"

namespace {

using itl_parser::LibraryContent;

constexpr size_t kHeader = 144;
constexpr unsigned kMostSections = 8;

// Texts that are followed by a NUL, as promised.
void CheckText(std::string_view text) {
    if (text.data()[text.size()] != '\0') std::abort();
}

void Read(std::string_view bytes) {
    LibraryContent content;
    core_foundation::MemorySource source(bytes);
    if (!itl_parser::ReadLibrary(source, bytes.size(), content)) return;
    for (const Track *track : content.tracks) {
        for (const std::string_view text : {track->name, track->album, track->artist, track->genre,
                                            track->kind, track->location, track->persistent_id})
            CheckText(text);
    }
    for (const Playlist *list : content.playlists) {
        CheckText(list->name);
        CheckText(list->smart_text);
    }
}

std::string WithEnvelope(std::string_view body, unsigned sections, bool little_endian) {
    std::string file(kHeader, '\0');
    file.replace(0, 4, "hdfm");
    file[7] = static_cast<char>(kHeader);
    file[0x33] = static_cast<char>(sections);
    file[0x52] = little_endian ? 1 : 0;
    file += body;
    for (size_t i = 0; i < 4; ++i)
        file[8 + i] = static_cast<char>(file.size() >> (24 - 8 * i));
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    Read(bytes);
    for (unsigned sections = 2; sections <= kMostSections; sections += 3) {
        Read(WithEnvelope(bytes, sections, false));
        Read(WithEnvelope(bytes, sections, true));
    }
    return 0;
}
