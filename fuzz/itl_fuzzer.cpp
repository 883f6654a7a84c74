// Reads an input as "iTunes Library.itl". One that begins as such a file does is taken as it is. Of any other
// the first byte says what follows:
//
//   0  a body, behind the number of a version's form and a number of sections; it is compressed and encrypted
//   as
//      that version does
//   1  decisions, of which a library is built, record by record, in the form of some version, and then
//   damaged a
//      little
//
// as a fuzzer makes up neither what is compressed or encrypted nor lengths that come out even.
#include <string>
#include <string_view>
#include <vector>

#include "fixtures/itl_file.h"
#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"
#include "platform/itl_parser/library_reader.h"

namespace {

using itl_parser::LibraryContent;

enum Shape : char { kBody = 0, kRecords = 1, kShapes = 2 };

constexpr std::string_view kFileStart = "hdfm";

void Read(std::string_view bytes) {
    LibraryContent content;
    core_foundation::MemorySource source(bytes);
    if (!itl_parser::ReadLibrary(source, bytes.size(), content)) return;
    for (const Track *track : content.tracks) {
        for (const std::string_view text : {track->name, track->album, track->artist, track->genre,
                                            track->kind, track->location, track->persistent_id})
            RequireTerminated(text);
    }
    for (const Playlist *list : content.playlists) {
        RequireTerminated(list->name);
        RequireTerminated(list->smart_text);
    }
}

ItlForm ChooseForm(Choices &choices) {
    const std::vector<ItlForm> forms = AllItlForms();
    return forms[choices.Below(forms.size())];
}

std::string FileAround(Choices &choices) {
    const ItlForm form = ChooseForm(choices);
    const auto sections = static_cast<uint32_t>(choices.Below(16));
    const std::string body(choices.Rest());
    return ItlFile(form).BytesAround(form.compressed ? ItlDeflated(body) : body, sections);
}

ItlText ChooseText(Choices &choices) {
    constexpr uint32_t kTypes[] = {kItlName,      kItlAlbum,       kItlArtist,   kItlGenre,
                                   kItlKind,      kItlLocation,    kItlListName, kItlSmartCriteria,
                                   kItlSmartInfo, kItlAlbumArtist, kItlComments, 300};
    ItlText text{kTypes[choices.Below(std::size(kTypes))], {}, {}};
    // A text of an encoding may be any bytes; one without is UTF-8, which the builder converts.
    if (choices.Flag()) {
        text.encoding = choices.Number(1);
        text.text = choices.LongText();
    } else {
        text.text = "t" + std::to_string(choices.Number(1));
    }
    return text;
}

ItlTrack ChooseTrack(Choices &choices) {
    ItlTrack track;
    track.id = static_cast<uint32_t>(choices.Number(1 + 3 * static_cast<int>(choices.Below(2))));
    for (size_t count = choices.Below(6); count > 0; --count)
        track.texts.push_back(ChooseText(choices));
    track.date_modified = static_cast<uint32_t>(choices.Number(4));
    track.size = choices.Number(8);
    track.total_time = static_cast<uint32_t>(choices.Number(4));
    track.year = static_cast<uint32_t>(choices.Number(4));
    track.rating = static_cast<uint8_t>(choices.Number(1));
    track.persistent_id = choices.Number(8);
    track.album = static_cast<uint32_t>(choices.Number(1));
    return track;
}

ItlPlaylist ChoosePlaylist(Choices &choices) {
    ItlPlaylist list;
    list.name = "l" + std::to_string(choices.Number(1));
    list.kind = static_cast<uint8_t>(choices.Number(1));
    list.id = static_cast<uint32_t>(choices.Number(4));
    list.master = choices.Flag();
    list.smart_info = choices.Text();
    for (size_t count = choices.Below(32); count > 0; --count)
        list.items.push_back(static_cast<uint32_t>(choices.Number(1)));
    return list;
}

// Other bytes at places that the input chooses, before the body is compressed.
void Damage(std::vector<std::string> &sections, Choices &choices) {
    for (size_t count = choices.Below(4); count > 0; --count) {
        std::string &section = sections[choices.Below(sections.size())];
        if (!section.empty()) section[choices.Below(section.size())] = static_cast<char>(choices.Number(1));
    }
    if (choices.Below(8) == 7)
        sections.erase(sections.begin() + static_cast<int>(choices.Below(sections.size())));
    if (choices.Below(8) == 7) sections.push_back(sections[choices.Below(sections.size())]);
}

std::string BuiltFile(Choices &choices) {
    ItlFile file(ChooseForm(choices));
    for (size_t count = choices.Below(16); count > 0 && !choices.AtEnd(); --count) {
        enum { kTrack, kPlaylist, kAlbum, kKinds };
        switch (choices.Below(kKinds)) {
            case kTrack:
                file.AddTrack(ChooseTrack(choices));
                break;
            case kPlaylist:
                file.AddPlaylist(ChoosePlaylist(choices));
                break;
            default:
                file.AddAlbum(static_cast<uint32_t>(choices.Number(1)),
                              static_cast<uint8_t>(choices.Number(1)));
        }
    }
    std::vector<std::string> sections = file.Sections();
    Damage(sections, choices);
    return file.Bytes(sections);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view input = AsText(data, size);
    Choices choices(input);
    if (input.starts_with(kFileStart)) {
        Read(input);
    } else if (choices.Below(kShapes) == kBody) {
        Read(FileAround(choices));
    } else {
        Read(BuiltFile(choices));
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    const std::vector<ItlForm> forms = AllItlForms();
    for (size_t i = 0; i < forms.size(); ++i) {
        ItlFile file(forms[i]);
        file.AddTrack(
            {.id = 7, .texts = {{kItlName, "Fjäll", {}}, {kItlLocation, "file://localhost/C:/a.mp3", {}}}});
        file.AddPlaylist({.name = "List", .kind = 4, .id = 9, .smart_info = "settings", .items = {7}});
        file.AddAlbum(1, 40);
        seeds.push_back(file.Bytes());
        std::string body;
        for (const std::string &section : file.Sections())
            body += section;
        seeds.push_back(std::string{kBody, static_cast<char>(i), static_cast<char>(file.Sections().size())} +
                        body);
        std::string decisions{kRecords, static_cast<char>(i), 15};
        for (int j = 0; j < 600; ++j)
            decisions += static_cast<char>(j * j * 7 >> 4);
        seeds.push_back(decisions);
    }
    return seeds;
}
