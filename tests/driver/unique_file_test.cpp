#include "driver/unique_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "content/path_text.h"
#include "tests/driver/copy_fixture.h"

namespace {

// The name behind the folder that the walk gives; "none" without one.
std::string UniqueIn(const TempFolder &folder, const std::string &name) {
    const std::string path = BackslashPath(folder.path()) + "\\";
    const auto unique = UniqueFileName(Utf8ToWide(path + name));
    return unique ? WideToUtf8(*unique).substr(path.size()) : "none";
}

// What a block of memory is called, without the extension.
std::string NameOfBlock(const std::string &bytes) {
    char name[64];
    std::snprintf(name, sizeof name, "%p", static_cast<const void *>(bytes.data()));
    return name;
}

// The walk as it is defined.
std::string FirstFree(const TempFolder &folder, const std::string &name) {
    const std::string path = BackslashPath(folder.path()) + "\\";
    const auto is_free = [&](const std::string &text) {
        return _waccess(Utf8ToWide(path + text).c_str(), 0) != 0;
    };
    const size_t dot = std::min(name.rfind('.'), name.size());
    std::string candidate = name;
    for (int number = 1; !is_free(candidate); ++number)
        candidate = name.substr(0, dot) + std::to_string(number) + name.substr(dot);
    return candidate;
}

TEST(UniqueFileName, PutsANumberBeforeTheLastDot) {
    const TempFolder folder;
    for (const char *name : {"song.mp3", "track7.mp3", "a.b.c", "none", "ÄRGER.mp3", ".mp3", "f.d/none"})
        folder.Write(name, "");
    std::filesystem::create_directory(folder.path() / "track71.mp3");
    std::filesystem::create_symlink("nowhere", folder.path() / "SONG1.mp3");
    EXPECT_EQ(UniqueIn(folder, "new.mp3"), "new.mp3");
    EXPECT_EQ(UniqueIn(folder, "song.mp3"), "song2.mp3");
    EXPECT_EQ(UniqueIn(folder, "track7.mp3"), "track72.mp3");
    EXPECT_EQ(UniqueIn(folder, "a.b.c"), "a.b1.c");
    EXPECT_EQ(UniqueIn(folder, "none"), "none1");
    EXPECT_EQ(UniqueIn(folder, "ärger.MP3"), "ärger1.MP3");
    EXPECT_EQ(UniqueIn(folder, ".mp3"), "1.mp3");
    EXPECT_EQ(UniqueIn(folder, "f.d\\none"), "f1.d\\none");
    EXPECT_EQ(UniqueIn(folder, "song.mp3\\x"), "song.mp3\\x");
    // No stem with a backslash, and a place that cannot be asked about.
    EXPECT_EQ(UniqueFileName(L"/tmp/.."), std::nullopt);
    EXPECT_EQ(UniqueIn(folder, std::string(300, 'x')), "none");
}

TEST(UniqueFileName, GivesWhatTheWalkGives) {
    std::mt19937 random(20);
    const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    for (int round = 0; round < 40; ++round) {
        const TempFolder folder;
        const std::string stem = round % 2 == 0 ? "x" : "Ö";
        folder.Write(stem + ".mp3", "");
        // Most of the first numbers, some of them in other letters or forms, and names that are none of them.
        for (int number = 0; number < 60; ++number) {
            const int form = pick(40);
            if (form == 0) continue;
            const std::string other = stem == "x" ? "X" : form == 1 ? "ö" : "O\xCC\x88";
            const std::string text = (form == 3 ? "0" : "") + std::to_string(number) + (form == 4 ? "x" : "");
            folder.Write((form <= 2 ? other : stem) + text + (form % 2 == 0 ? ".mp3" : ".MP3"), "");
        }
        EXPECT_EQ(UniqueIn(folder, stem + ".mp3"), FirstFree(folder, stem + ".mp3")) << "round " << round;
    }
}

TEST(UniqueFile, TenThousandCopiesOfOneNameHaveNamesOfTheirOwn) {
    constexpr int kCopies = 10000;
    constexpr int kCopied = 100;
    CopyFixture copy;
    const std::filesystem::path folder = copy.folder.path() / CopyFixture::kFolder;
    const std::string byte = "b";
    copy.TakeMemory(byte);
    const auto file = [&](int number) {
        return folder / (NameOfBlock(byte) + (number == 0 ? "" : std::to_string(number)) + ".mpg");
    };
    const auto copy_some = [&](int first) {
        for (int number = first; number < first + kCopied; ++number) {
            ASSERT_EQ(CopyDriverPath(&copy.driver, 0, "", &copy.source), 0);
            ASSERT_TRUE(std::filesystem::exists(file(number))) << number;
        }
    };
    copy_some(0);
    // What copies in between would have left; a benchmark makes them all.
    for (int number = kCopied; number < kCopies - kCopied; ++number)
        std::ofstream(file(number)).put('b');
    copy_some(kCopies - kCopied);

    // Numbers that are free again are taken first.
    for (const int number : {7777, 3})
        ASSERT_TRUE(std::filesystem::remove(file(number)));
    for (const int number : {3, 7777, kCopies}) {
        CopyDriverPath(&copy.driver, 0, "", &copy.source);
        EXPECT_TRUE(std::filesystem::exists(file(number))) << number;
    }
}

TEST(UniqueFile, TwoProcessesNeverWriteOneFile) {
    constexpr int kEach = 300;
    CopyFixture copy;
    std::vector<pid_t> children;
    for (const char letter : {'a', 'b'}) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        for (int i = 0; i < kEach; ++i) {
            const auto file =
                CreateUniqueFile(Utf8ToWide(copy.Location("Automatically Add to iTunes\\x.mp3")));
            if (!file || std::fputc(letter, file->handle.get()) != letter) _exit(1);
        }
        _exit(0);
    }
    for (const pid_t child : children) {
        int status = 1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    std::map<std::string, int> counts;
    for (const auto &[name, bytes] : copy.Files())
        ++counts[bytes];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"a", kEach}, {"b", kEach}}));
}

TEST(Copy, ThatIsKilledHarmsNoOtherFile) {
    constexpr int kKills = 200;
    constexpr int kLongestMicroseconds = 4000;
    std::mt19937 random(7);
    CopyFixture copy;
    const std::string bytes(1 << 20, 'n');
    copy.TakeMemory(bytes);
    const std::string stem = NameOfBlock(bytes);
    std::map<std::string, std::string> whole;
    for (const char *number : {"", "1", "2", "4"})
        whole[stem + number + ".mpg"] = std::string("old ") + number;
    for (const auto &[name, content] : whole)
        copy.folder.Write(std::string(CopyFixture::kFolder) + "/" + name, content);
    // What else iTunes has lies beside the folder.
    for (const char *name : {"media/iTunes Library.xml", "media/iTunesPrefs.xml"})
        copy.folder.Write(name, name);
    int partial = 0;
    for (int i = 0; i < kKills; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            while (CopyDriverPath(&copy.driver, 0, "", &copy.source) == 0) {
            }
            _exit(1);
        }
        usleep(static_cast<useconds_t>(random() % kLongestMicroseconds));
        ASSERT_EQ(kill(child, SIGKILL), 0);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        auto files = copy.Files();
        for (const auto &[name, content] : whole) {
            EXPECT_EQ(files[name], content);
            files.erase(name);
        }
        // New files are copies, and only the last of them may be incomplete.
        int incomplete = 0;
        for (const auto &[name, content] : files) {
            EXPECT_TRUE(bytes.starts_with(content)) << name;
            incomplete += content != bytes;
            std::filesystem::remove(copy.folder.path() / CopyFixture::kFolder / name);
        }
        EXPECT_LE(incomplete, 1);
        for (const char *name : {"media/iTunes Library.xml", "media/iTunesPrefs.xml"})
            EXPECT_EQ(ReadWholeFile(copy.folder.path() / name), name);
        partial += incomplete;
    }
    EXPECT_GT(partial, 0) << "no copy was met while it wrote";
}

}  // namespace
