#include "driver/unique_file.h"

#include <gtest/gtest.h>

#include <random>

#include "content/path_text.h"
#include "fixtures/preference_file.h"
#include "fixtures/temp_folder.h"

namespace {

struct UniqueFileName : TempFolder, testing::Test {
    std::wstring Wide(const std::string &name) const {
        return Utf8ToWide(BackslashPath(path()) + "\\" + name);
    }
    // What UniqueFileName gives, behind the folder; "none" without a name.
    std::string Unique(const std::string &name) const {
        const auto unique = ::UniqueFileName(Wide(name));
        return unique ? WideToUtf8(*unique).substr(path().string().size() + 1) : "none";
    }
};

TEST_F(UniqueFileName, PutsANumberBeforeTheLastDot) {
    for (const char *name : {"song.mp3", "a.b.c", "none", ".mp3", "f.d/none"})
        Write(name, "");
    std::filesystem::create_directory(path() / "song2.mp3");
    std::filesystem::create_symlink("nowhere", path() / "SONG1.mp3");
    EXPECT_EQ(Unique("new.mp3"), "new.mp3");
    EXPECT_EQ(Unique("song.mp3"), "song3.mp3");
    EXPECT_EQ(Unique("a.b.c"), "a.b1.c");
    EXPECT_EQ(Unique("none"), "none1");
    EXPECT_EQ(Unique(".mp3"), "1.mp3");
    EXPECT_EQ(Unique("f.d\\none"), "f1.d\\none");
    EXPECT_EQ(Unique("song.mp3\\x"), "song.mp3\\x");
    // No stem with a backslash, and a place that cannot be asked about.
    EXPECT_EQ(::UniqueFileName(L"/tmp/.."), std::nullopt);
    EXPECT_EQ(Unique(std::string(300, 'x')), "none");
}

TEST_F(UniqueFileName, IsWhatAWalkOverTheNumbersGives) {
    std::mt19937 random(20);
    for (int round = 0; round < 40; ++round) {
        const std::string tail(static_cast<size_t>(round), '_');
        const std::string stem = (round % 2 == 0 ? "x" : "Ö") + tail;
        Write(stem + ".mp3", "");
        // Most of the first numbers, some of them in other letters or forms, and names that are none of them.
        for (int number = 0; number < 60; ++number) {
            const auto form = random() % 40;
            if (form == 0) continue;
            const std::string other = (round % 2 == 0 ? "X" : form == 1 ? "ö" : "O\xCC\x88") + tail;
            const std::string text = (form == 3 ? "0" : "") + std::to_string(number) + (form == 4 ? "x" : "");
            Write((form <= 2 ? other : stem) + text + (form % 2 == 0 ? ".mp3" : ".MP3"), "");
        }
        std::string free;
        for (int number = 1; free.empty() || _waccess(Wide(free).c_str(), 0) == 0; ++number)
            free = stem + std::to_string(number) + ".mp3";
        EXPECT_EQ(Unique(stem + ".mp3"), free);
        // The file is made with the name, so no other process gets that too.
        EXPECT_EQ(CreateUniqueFile(Wide(stem + ".mp3")).value().path, Wide(free));
        EXPECT_TRUE(exists(path() / free));
        EXPECT_NE(CreateUniqueFile(Wide(free)).value().path, Wide(free));
    }
}

}  // namespace
