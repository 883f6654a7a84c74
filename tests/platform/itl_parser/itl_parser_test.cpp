// Reads .itl files from memory, of every form, damaged and hostile.
#include "platform/itl_parser/itl_parser.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>

#include "fixtures/byte_text.h"
#include "fixtures/itl_file.h"
#include "fixtures/temp_folder.h"
#include "platform/itl_parser/inflate.h"
#include "platform/itl_parser/library_content.h"
#include "platform/itl_parser/library_reader.h"
#include "platform/itl_parser/texts.h"
#include "platform/limits.h"
#include "tests/platform/damage.h"

namespace {

namespace fs = std::filesystem;

struct ParsedLibrary : core_foundation::MemorySource {
    explicit ParsedLibrary(const std::string &bytes)
        : MemorySource(bytes), valid(itl_parser::ReadLibrary(*this, bytes.size(), content)) {}

    itl_parser::LibraryContent content;
    bool valid;
};

// All that was read, a line for each track and list; "refused" for a file that is not valid.
std::string Describe(const std::string &bytes) {
    const ParsedLibrary library(bytes);
    if (!library.valid) return "refused";
    std::ostringstream out;
    out << library.content.version << " " << library.content.persistent_id << "\n";
    for (const Track *track : library.content.tracks) {
        out << track->id;
        for (const std::string_view text :
             {track->name, track->album, track->artist, track->genre, track->kind, track->location})
            out << "|" << text;
        out << "|" << track->date_modified << "|" << track->size << "|" << track->total_time << "|"
            << track->bit_rate << "|" << track->sample_rate << "|" << track->rating << "|"
            << track->persistent_id << "|" << track->play_count << "\n";
    }
    for (const Playlist *list : library.content.playlists) {
        out << list->name << "|" << list->smart_text << "|" << list->id << "|" << list->kind << ":";
        for (const int32_t id : list->items)
            out << " " << id;
        out << "\n";
    }
    return out.str();
}

// A small library: texts in every encoding, an album's rating, lists of every sort.
ItlFile SmallLibrary(const ItlForm &form) {
    ItlFile file(form);
    file.AddTrack({.id = 101,
                   .texts = {{kItlName, "Café"},
                             {kItlAlbum, "Blue"},
                             {kItlArtist, "東京 😀"},
                             {kItlGenre, "Rock", 0},
                             {kItlKind, "na\xC3\xAFve", 0},
                             {kItlComments, "not read", 77},
                             {kItlLocation, "file://localhost/C:/Music/Caf%C3%A9.mp3"}},
                   .date_modified = 3422000000,
                   .size = 4000000,
                   .total_time = 180000,
                   .bit_rate = 256,
                   .sample_rate = 44100,
                   .play_count = 3,
                   .rating = 80,
                   .persistent_id = 0x1122334455667788,
                   .album = 7});
    file.AddTrack({.id = 102,
                   .texts = {{kItlName, "na\xEFve", 0}, {kItlAlbum, "Blue"}},
                   .sample_rate = -1,
                   .album = 7});
    file.AddTrack({.id = 103, .size = 0x80000000, .total_time = 2843833152, .rating = 20, .album = 7});
    file.AddAlbum(9, 100);
    file.AddAlbum(7, 60);
    file.AddPlaylist({.name = "####!####", .id = 901, .master = true, .items = {101, 102, 103}});
    file.AddPlaylist({.name = "Music", .kind = 4, .id = 902, .smart_info = "\x01\x02\x03", .items = {102}});
    file.AddPlaylist({.name = "Ж", .id = 903, .items = {103, 0, 101, 103, 999}});
    return file;
}

// What Describe tells of it in a form. The first versions have fewer fields.
std::string SmallLibraryText(const ItlForm &form) {
    const std::string album_rating = form.track_header >= 0xE0 ? "60" : "0";
    const std::string kind = form.list_header >= 0x23A ? "4" : "0";
    const int first_id = form.list_header >= 0xD44 ? 901 : 104;
    const auto id = [=](int position) { return std::to_string(first_id + position); };
    return form.version +
           " A1B2C3D4E5F60718\n101|Café|Blue|東京 😀|Rock|naïve|file://localhost/C:/Music/Caf%C3%A9.mp3|"
           "3422000000|4000000|180000|256|44100|80|1122334455667788|3\n"
           "102|naïve|Blue|||||0|0|0|0|0|" +
           album_rating + "|0000000000000000|0\n103|||||||0|-1|0|0|0|20|0000000000000000|0\n####!####||" +
           id(0) + "|0: 101 102 103\nMusic|AQID|" + id(1) + "|" + kind + ": 102\nЖ||" + id(2) +
           "|0: 103 101 103 999\n";
}

TEST(ItlForms, EveryVersionAndCombinationGivesTheSame) {
    std::vector<ItlForm> forms = AllItlForms();
    for (int combination = 0; combination < 3 * 2 * 2; ++combination) {
        // The cipher ends within a block of the body, within the body, and behind it.
        for (const std::uint32_t first_part : {0u, 100u, 10000u, 10000000u}) {
            ItlForm &form = forms.emplace_back(ItlForm12());
            form.encryption = static_cast<std::uint8_t>(combination % 3);
            form.compressed = combination / 3 % 2 == 1;
            form.little_endian = combination / 6 == 1;
            form.first_part = first_part;
        }
    }
    for (const ItlForm &form : forms)
        EXPECT_EQ(Describe(SmallLibrary(form).Bytes()), SmallLibraryText(form))
            << form.version << form.encryption + 0 << form.compressed << form.little_endian
            << form.first_part;
}

TEST(ItlForms, SectionsComeInAnyOrderAndUnknownOnesArePassedOver) {
    const ItlFile file = SmallLibrary(ItlForm12());
    auto sections = file.Sections();
    std::swap(sections[1], sections[5]);
    std::swap(sections[2], sections[4]);
    sections.insert(sections.begin() + 3, file.Section(9999, "whatever"));
    EXPECT_EQ(Describe(file.Bytes(sections)), SmallLibraryText(ItlForm12()));
}

TEST(ItlForms, WhatIsNotUnderstoodIsRefused) {
    const ItlFile file = SmallLibrary(ItlForm12());
    const auto with = [&](size_t place, const std::string &section) {
        auto sections = file.Sections();
        sections[place] = section;
        return Describe(file.Bytes(sections));
    };
    const auto track_list = [&](std::uint32_t count, const std::string &tail) {
        auto section = file.Sections()[2].substr(96) + tail;
        return file.Section(1, section.replace(8, 4, LittleEndian(count)));
    };
    EXPECT_NE(with(2, track_list(3, "")), "refused");
    for (const std::uint32_t count : {2u, 4u})
        EXPECT_EQ(with(2, track_list(count, "")), "refused") << "a track too many or too few";
    EXPECT_EQ(with(2, track_list(3, "x")), "refused") << "a rest behind the tracks";
    EXPECT_EQ(with(2, file.Section(8, "")), "refused") << "no tracks";
    EXPECT_EQ(with(4, file.Section(8, "")), "refused") << "no lists";
    EXPECT_EQ(with(5, file.Sections()[2]), "refused") << "tracks twice";
    for (const std::uint32_t encoding : {4u, 0x100u}) {
        ItlFile other = SmallLibrary(ItlForm12());
        other.AddTrack({.id = 5, .texts = {{kItlName, "x", encoding}}});
        EXPECT_EQ(Describe(other.Bytes()), "refused") << "an unknown encoding";
    }
    ItlForm form = ItlForm12();
    form.encryption = 3;
    EXPECT_EQ(Describe(SmallLibrary(form).Bytes()), "refused") << "an unknown cipher";
}

TEST(ItlTexts, OddOnesStayValidUtf8AndThoseNotReadHaveAnyLength) {
    ItlForm form = ItlForm12();
    form.compressed = false;
    ItlFile file(form);
    file.AddTrack({.id = 1,
                   .texts = {{kItlComments, std::string(3'000'000, 'x')},
                             {kItlName, std::string("a\0\x00\xD8z\0", 6), 1},  // half of a surrogate pair
                             {kItlAlbum, std::string("b\0c", 3), 1},           // an odd byte at the end
                             {kItlArtist, "\x80\xFF", 3},
                             {kItlGenre, "line\r\nbreak"}}});
    const std::string text = Describe(file.Bytes());
    EXPECT_EQ(text.substr(text.find('\n')),
              "\n1|a\xEF\xBF\xBDz|b|\xC2\x80\xC3\xBF|line\r\nbreak|||0|0|0|0|0|0|0000000000000000|0\n");
}

TEST(ITLParser, ReadsAFileOfAnyNameAndOnlyAWholeOne) {
    const TempFolder folder;
    const std::string bytes = SmallLibrary(ItlForm12()).Bytes();
    folder.Write("Bücher/iTunes Library.itl", bytes);
    const ITLParser parser((folder.path().string() + "\\Bücher\\iTunes Library.itl").c_str());
    EXPECT_TRUE(parser.isValid());
    EXPECT_EQ(parser.persistentId() + " " + parser.iTunesVersion(), "A1B2C3D4E5F60718 12.9.4.102");
    EXPECT_EQ(std::pair(parser.tracks().size(), parser.playlists().size()), std::pair(size_t{3}, size_t{3}));
    for (const std::string &other : {folder.path().string(), folder.path().string() + "/none", std::string(),
                                     folder.Write("cut.itl", bytes.substr(0, 500)).string()}) {
        const ITLParser refused(other.c_str());
        EXPECT_FALSE(refused.isValid()) << other;
        EXPECT_TRUE(refused.tracks().empty() && refused.playlists().empty() &&
                    refused.iTunesVersion().empty());
    }
}

TEST(ItlSamples, AllAreValid) {
    const fs::path folder = fs::path(SAMPLES_FOLDER) / "itl";
    if (!fs::exists(folder)) GTEST_SKIP() << "no samples";
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".itl") continue;
        const ParsedLibrary library(ReadWholeFile(entry.path()));
        EXPECT_TRUE(library.valid && !library.content.playlists.empty()) << entry.path();
        // The subscription of a podcast may have no name.
        for (const Track *track : library.content.tracks)
            EXPECT_TRUE(track->id > 0 && !(track->name.empty() && track->location.empty())) << entry.path();
    }
}

TEST(ItlLimits, ABodyThatExpandsTooFarIsGivenUpEarly) {
    const ItlFile file(ItlForm12());
    auto sections = file.Sections();
    sections.push_back(file.Section(4, Zeros(limits::kItlFreeBytes)));
    EXPECT_TRUE(ParsedLibrary(file.Bytes(sections)).valid) << "a small body may be as empty as it likes";
    sections.push_back(file.Section(4, Zeros(size_t{256} << 20)));
    const std::string bytes = file.Bytes(sections);
    ParsedLibrary library(bytes);
    EXPECT_FALSE(library.valid);
    EXPECT_GT(library.Read(std::string(bytes).data(), bytes.size()), bytes.size() / 2) << "what was not read";
}

// What does not compress.
std::string Noise(size_t size) {
    std::string noise;
    for (std::uint32_t state = 1; noise.size() < size; state = state * 1664525 + 1013904223)
        noise += static_cast<char>(state >> 24);
    return noise;
}

// Lists of 20 bytes are far smaller in the file than what is kept of each.
TEST(ItlLimits, AFileOfWhichTooMuchWouldBeKeptIsGivenUp) {
    const ItlFile file(ItlForm12());
    for (const std::uint32_t count : {20'000u, 2'000'000u}) {
        std::string lists = "mlph" + LittleEndian(12) + LittleEndian(count);
        for (std::uint32_t i = 0; i < count; ++i)
            lists += "miph" + LittleEndian(20) + LittleEndian(20) + Zeros(8);
        auto sections = file.Sections();
        sections[4] = file.Section(2, lists);
        // Noise keeps the expansion within its limit.
        sections.push_back(file.Section(4, Noise(1'000'000)));
        EXPECT_EQ(ParsedLibrary(file.Bytes(sections)).valid, count == 20'000);
    }
}

TEST(ItlLimits, ATextOfAnyLengthBelowTheLimitIsRead) {
    for (const size_t length : {limits::kItlTextBytes.value, limits::kItlTextBytes.value + 1}) {
        for (const ItlForm &form : {ItlForm8(), ItlForm12()}) {
            ItlFile file(form);
            file.AddTrack({.id = 1, .texts = {{kItlName, std::string(length, 'x')}}});
            EXPECT_EQ(ParsedLibrary(file.Bytes()).valid, length == limits::kItlTextBytes.value);
        }
    }
}

// The length in the envelope put right, so that the damage behind it is met.
std::string WithLength(std::string bytes) {
    if (bytes.size() >= 12) bytes.replace(8, 4, BigEndian(static_cast<std::uint32_t>(bytes.size())));
    return bytes;
}

TEST(DamagedItl, NoCutIsTaken) {
    for (const ItlForm &form : AllItlForms()) {
        const std::string bytes = SmallLibrary(form).Bytes();
        for (size_t length = 0; length < bytes.size(); ++length) {
            for (const std::string &cut : {bytes.substr(0, length), WithLength(bytes.substr(0, length))})
                ASSERT_EQ(Describe(cut), "refused") << form.version << " " << length;
        }
        EXPECT_EQ(Describe(bytes + "x"), "refused") << form.version;
    }
}

// A larger body is inflated on a thread of its own, which ends wherever the file, or the interest in it,
// does.
TEST(DamagedItl, OfALargeFileIsRefusedWhereverItLies) {
    const ItlFile file = SmallLibrary(ItlForm12());
    const std::string noise = Noise(3 << 20);
    auto sections = file.Sections();
    sections.push_back(file.Section(4, noise));
    const std::string bytes = file.Bytes(sections);
    EXPECT_EQ(Describe(bytes), Describe(file.Bytes()));
    for (size_t part = 1; part < 16; ++part)
        EXPECT_EQ(Describe(WithLength(bytes.substr(0, bytes.size() * part / 16))), "refused") << part;
    sections.insert(sections.begin(), std::string(noise.rbegin(), noise.rend()));
    EXPECT_EQ(Describe(file.Bytes(sections)), "refused");
}

// A checksum ends a compressed body: what is read of a damaged one is what was written. In one that is not
// compressed damage meets the records, most of which may hold anything. The sanitizers are the judges.
TEST(DamagedItl, OfTheWholeFileIsNoticedInACompressedBodyAndDoesNoHarmInAnother) {
    Damage damage(19040101);
    std::vector<ItlForm> forms = AllItlForms();
    forms.push_back(ItlForm12());
    forms.back().compressed = false;
    forms.back().encryption = 0;
    for (const ItlForm &form : forms) {
        const std::string bytes = SmallLibrary(form).Bytes();
        const auto body = [&](const std::string &file) {
            return file.substr(std::min<size_t>(form.envelope_header, file.size()));
        };
        int valid = 0;
        for (int round = 0; round < (form.compressed ? 800 : 2000); ++round) {
            const std::string damaged = WithLength(damage.Of(bytes));
            const std::string text = Describe(damaged);
            valid += text == "refused" ? 0 : 1;
            if (!form.compressed || text == "refused" || body(damaged) == body(bytes)) continue;
            EXPECT_EQ(text.substr(text.find('\n')), SmallLibraryText(form).substr(form.version.size() + 17));
        }
        EXPECT_TRUE(form.compressed || (valid > 100 && valid < 2000)) << form.version << " " << valid;
    }
}

}  // namespace
