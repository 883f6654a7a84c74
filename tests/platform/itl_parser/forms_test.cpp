#include <gtest/gtest.h>

#include <filesystem>

#include "platform/itl_parser/itl_parser.h"
#include "tests/platform/itl_parser/parsed_library.h"
#include "tests/support/byte_text.h"
#include "tests/support/temp_folder.h"

namespace {

// Sections that the parser must find its way through, with another in the place of one of them.
std::string With(const ItlFile &file, size_t place, const std::string &section) {
    auto sections = file.Sections();
    sections[place] = section;
    return file.Bytes(sections);
}

TEST(ItlForms, EveryVersionGivesTheSame) {
    for (const ItlForm &form : AllItlForms()) {
        EXPECT_EQ(Describe(SmallLibrary(form).Bytes()), SmallLibraryText(form)) << form.version;
    }
}

TEST(ItlForms, EveryCombinationOfEncryptionCompressionAndOrder) {
    for (int mode = 0; mode < 3; ++mode) {
        for (const bool compressed : {false, true}) {
            for (const bool little : {false, true}) {
                // The cipher ends within a block of the body, within the body, and behind it.
                for (const std::uint32_t first_part : {0u, 100u, 10000u, 10000000u}) {
                    ItlForm form = ItlForm12();
                    form.encryption = static_cast<std::uint8_t>(mode);
                    form.compressed = compressed;
                    form.little_endian = little;
                    form.first_part = first_part;
                    EXPECT_EQ(Describe(SmallLibrary(form).Bytes()), SmallLibraryText(form))
                        << mode << compressed << little << first_part;
                }
            }
        }
    }
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
    ASSERT_NE(Describe(file.Bytes()), "refused");
    const auto track_list = [&](std::uint32_t count, const std::string &tail) {
        auto section = file.Sections()[2].substr(96) + tail;
        return file.Section(1, section.replace(8, 4, LittleEndian(count)));
    };
    EXPECT_NE(Describe(With(file, 2, track_list(3, ""))), "refused");
    EXPECT_EQ(Describe(With(file, 2, track_list(2, ""))), "refused") << "a track too many";
    EXPECT_EQ(Describe(With(file, 2, track_list(4, ""))), "refused") << "a track too few";
    EXPECT_EQ(Describe(With(file, 2, track_list(3, "x"))), "refused") << "a rest behind the tracks";
    EXPECT_EQ(Describe(With(file, 2, file.Section(8, ""))), "refused") << "no tracks";
    EXPECT_EQ(Describe(With(file, 4, file.Section(8, ""))), "refused") << "no lists";
    EXPECT_EQ(Describe(With(file, 5, file.Sections()[2])), "refused") << "tracks twice";
    for (const std::uint32_t encoding : {4u, 0x100u}) {
        ItlFile other = SmallLibrary(ItlForm12());
        other.AddTrack({.id = 5, .texts = {{kItlName, "x", encoding}}});
        EXPECT_EQ(Describe(other.Bytes()), "refused") << "an unknown encoding";
    }
    ItlForm form = ItlForm12();
    form.encryption = 3;
    EXPECT_EQ(Describe(SmallLibrary(form).Bytes()), "refused") << "an unknown cipher";
}

TEST(ItlForms, OddTextsStayValidUtf8) {
    ItlFile file(ItlForm12());
    file.AddTrack({.id = 1,
                   .texts = {{kItlName, std::string("a\0\x00\xD8z\0", 6), 1},  // half of a surrogate pair
                             {kItlAlbum, std::string("b\0c", 3), 1},           // an odd byte at the end
                             {kItlArtist, "\x80\xFF", 3},
                             {kItlGenre, "line\r\nbreak"}}});
    const ParsedLibrary library(file.Bytes());
    ASSERT_TRUE(library.valid);
    const Track &track = *library.content.tracks[0];
    EXPECT_EQ(track.name, "a\xEF\xBF\xBDz");
    EXPECT_EQ(track.album, "b");
    EXPECT_EQ(track.artist, "\xC2\x80\xC3\xBF");
    EXPECT_EQ(track.genre, "line\r\nbreak");
}

TEST(ITLParser, ReadsAFileOfAnyNameAndOnlyAWholeOne) {
    const TempFolder folder;
    const std::string bytes = SmallLibrary(ItlForm12()).Bytes();
    const auto path = folder.Write("Bücher/iTunes Library.itl", bytes);
    const ITLParser parser((folder.path().string() + "\\Bücher\\iTunes Library.itl").c_str());
    ASSERT_TRUE(parser.isValid());
    EXPECT_EQ(parser.persistentId(), "A1B2C3D4E5F60718");
    EXPECT_EQ(parser.iTunesVersion(), "12.9.4.102");
    EXPECT_EQ(parser.tracks().size(), 3u);
    EXPECT_EQ(&parser.playlists(), &parser.playlists());
    for (const std::string &other : {folder.path().string(), folder.path().string() + "/none", std::string(),
                                     folder.Write("cut.itl", bytes.substr(0, 500)).string()}) {
        const ITLParser refused(other.c_str());
        EXPECT_FALSE(refused.isValid()) << other;
        EXPECT_TRUE(refused.tracks().empty());
        EXPECT_TRUE(refused.playlists().empty());
        EXPECT_EQ(refused.iTunesVersion(), "");
    }
}

}  // namespace
