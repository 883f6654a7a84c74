// Archives that are damaged or made to harm.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_entry_path.h"
#include "content/zip_extract.h"
#include "platform/limits.h"
#include "tests/content/captured_log.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_builder.h"

namespace {

constexpr Limit Bytes(uint64_t count) {
    return {"bytes", count};
}

namespace fs = std::filesystem;

class HostileZipTest : public ::testing::Test {
  protected:
    HostileZipTest() { fs::create_directory(Out()); }

    std::string WriteZip(const std::vector<ZipBuilderEntry> &entries) const {
        return folder_.Write("a.zip", BuildZip(entries)).string();
    }
    fs::path Out(const std::string &name = "") const { return folder_.path() / "out" / name; }
    // What lies outside the archive's target folder, the archive itself not counted.
    size_t EntriesOutside() const {
        size_t count = 0;
        for (const auto &entry : fs::directory_iterator(folder_.path()))
            count += entry.path().filename() != "out" && entry.path().filename() != "a.zip";
        return count;
    }

    TempFolder folder_;
    CapturedLog log_;  // keeps the test's output readable
};

TEST_F(HostileZipTest, SlippingNameIsRefused) {
    for (const std::string name : {"../evil", "..\\evil", "a/../../evil", "a\\..\\..\\evil", "/evil",
                                   "\\evil", "//host/share/evil", "C:\\evil", "C:evil", "a/.. /evil",
                                   "a/.../evil", "../", "a/../", "", "a/b:stream", "a\nb", "what?"}) {
        const std::string zip = WriteZip({StoredEntry(name, "evil")});
        EXPECT_EQ(UnzipAll(zip, Out().string()), -3) << name;
        EXPECT_EQ(EntriesOutside(), 0U) << name;
        EXPECT_TRUE(fs::is_empty(Out())) << name;
    }
}

// Every name up to a length over the characters that matter, read as Windows and as other systems would read
// it.
TEST_F(HostileZipTest, NoNameLeadsOutOfTheFolder) {
    const std::string alphabet = "a./\\ :";
    const fs::path root = "/no/such/root";
    std::function<void(const std::string &)> check = [&](const std::string &name) {
        if (const auto target = ZipEntryTarget(root.string(), name)) {
            const fs::path inside = fs::path(*target).lexically_relative(root);
            EXPECT_NE(*inside.begin(), "..") << name;
            EXPECT_EQ(inside, inside.lexically_normal()) << name;
            for (const fs::path &part : inside) {
                EXPECT_TRUE(part == "." || part.string().find_first_not_of(". ") != std::string::npos)
                    << name;
                EXPECT_EQ(part.string().find_first_of("\\:"), std::string::npos) << name;
            }
        }
        if (name.size() == 5) return;
        for (const char character : alphabet)
            check(name + character);
    };
    check("");
}

TEST_F(HostileZipTest, LinkInTheTargetIsNotFollowed) {
    fs::create_directory(folder_.path() / "outside");
    fs::create_directory_symlink(folder_.path() / "outside", Out("link"));
    EXPECT_EQ(UnzipAll(WriteZip({StoredEntry("link/evil", "evil")}), Out().string()), -3);
    EXPECT_EQ(
        UnzipAll(WriteZip({StoredEntry("link/", ""), StoredEntry("link/sub/evil", "evil")}), Out().string()),
        -3);
    EXPECT_TRUE(fs::is_empty(folder_.path() / "outside"));
}

TEST_F(HostileZipTest, LinkInTheFilesPlaceIsReplaced) {
    const fs::path victim = folder_.Write("victim", "victim");
    fs::create_symlink(victim, Out("there"));
    fs::create_symlink(folder_.path() / "made", Out("dangling"));
    EXPECT_EQ(
        UnzipAll(WriteZip({StoredEntry("there", "new"), StoredEntry("dangling", "new")}), Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(victim), "victim");
    EXPECT_FALSE(fs::exists(folder_.path() / "made"));
    EXPECT_FALSE(fs::is_symlink(Out("there")));
    EXPECT_EQ(ReadWholeFile(Out("dangling")), "new");
}

TEST_F(HostileZipTest, BombStopsAtTheLimit) {
    const std::string zeros(1 << 20, '\0');
    const std::string zip = WriteZip({DeflatedEntry("bomb", zeros)});
    EXPECT_EQ(UnzipAll(zip, Out().string(), {Bytes(zeros.size() - 1), Bytes(1ULL << 30)}), -3);
    EXPECT_FALSE(fs::exists(Out("bomb")));
    EXPECT_EQ(UnzipAll(zip, Out().string(), {Bytes(zeros.size()), Bytes(zeros.size())}), 0);
    EXPECT_EQ(fs::file_size(Out("bomb")), zeros.size());
    const ZipReadHandle handle = OpenZipForRead(zip);
    ASSERT_TRUE(LocateZipEntry(handle.get(), "bomb"));
    EXPECT_EQ(ReadCurrentZipEntry(handle.get(), Bytes(zeros.size() - 1)), std::nullopt);
    EXPECT_EQ(ReadCurrentZipEntry(handle.get(), Bytes(zeros.size())), zeros);
}

TEST_F(HostileZipTest, ManySmallBombsStopAtTheLimitOfTheArchive) {
    const std::string zeros(1 << 16, '\0');
    const std::string zip =
        WriteZip({DeflatedEntry("1", zeros), DeflatedEntry("2", zeros), DeflatedEntry("3", zeros)});
    EXPECT_EQ(UnzipAll(zip, Out().string(), {Bytes(1ULL << 30), Bytes(zeros.size() * 2)}), -3);
    EXPECT_TRUE(fs::exists(Out("2")));
    EXPECT_FALSE(fs::exists(Out("3")));
}

TEST_F(HostileZipTest, SingleEntryIsNeverLargerThanWhatMemoryMayHold) {
    const std::string zip =
        WriteZip({DeflatedEntry("iTunesArtwork", std::string(limits::kZipEntryBytes.value + 1, '\0'))});
    EXPECT_EQ(ExtractEntryToFile(zip, "iTunesArtwork", Out("icon").string()), -1);
    EXPECT_EQ(ExtractEntry(zip, "iTunesArtwork", Out().string()), -4);
    EXPECT_TRUE(fs::is_empty(Out()));
}

TEST_F(HostileZipTest, ClaimOfAHugeSizeCostsNothing) {
    ZipBuilderEntry entry = DeflatedEntry("a", "small");
    entry.claimed_size = 0xFFFFFFF0;
    const std::string zip = WriteZip({entry});
    EXPECT_EQ(ExtractEntryToFile(zip, "a", Out("icon").string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("icon")), "small");
    EXPECT_EQ(UnzipAll(zip, Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("a")), "small");
}

TEST_F(HostileZipTest, TruncatedDataEndTheFileEarly) {
    std::string content;
    for (int i = 0; i < 20000; ++i)
        content += std::to_string(i * 7919 % 10007);
    ZipBuilderEntry entry = DeflatedEntry("a", content);
    entry.data.resize(entry.data.size() / 2);
    const std::string zip = WriteZip({entry, StoredEntry("b", "whole")});
    EXPECT_EQ(UnzipAll(zip, Out().string()), 0);
    EXPECT_TRUE(content.starts_with(ReadWholeFile(Out("a"))));
    EXPECT_GT(fs::file_size(Out("a")), 0U);
    EXPECT_EQ(ReadWholeFile(Out("b")), "whole");
    EXPECT_EQ(ExtractEntryToFile(zip, "a", Out("icon").string()), -1);
    EXPECT_FALSE(fs::exists(Out("icon")));
}

TEST_F(HostileZipTest, WrongChecksumStillGivesTheBytes) {
    ZipBuilderEntry entry = DeflatedEntry("a", "picture");
    entry.crc ^= 1;
    const std::string zip = WriteZip({entry});
    EXPECT_EQ(ExtractEntryToFile(zip, "a", Out("icon").string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("icon")), "picture");
    EXPECT_EQ(UnzipAll(zip, Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(Out("a")), "picture");
}

TEST_F(HostileZipTest, HundredThousandEntriesAreTooMany) {
    std::vector<ZipBuilderEntry> entries(100000, StoredEntry("d/", ""));
    entries.back() = StoredEntry("last", "");
    const std::string path = WriteZip(entries);
    EXPECT_EQ(UnzipAll(path, Out().string()), -3);
    EXPECT_FALSE(fs::exists(Out("last")));
    EXPECT_EQ(FindEntryByRegex(OpenZipForRead(path).get(), "last"), std::nullopt);
    entries.erase(entries.begin(), entries.end() - static_cast<std::ptrdiff_t>(limits::kZipEntries.value));
    EXPECT_EQ(UnzipAll(WriteZip(entries), Out().string()), 0) << "as many as are allowed";
    EXPECT_TRUE(fs::exists(Out("last")));
}

TEST_F(HostileZipTest, OfTwoEntriesWithOneNameTheLaterStays) {
    const std::string zip =
        WriteZip({StoredEntry("a", "first"), StoredEntry("a", "second"), StoredEntry("a/b", "")});
    EXPECT_EQ(UnzipAll(zip, Out().string()), -3) << "a file is no folder";
    EXPECT_EQ(ReadWholeFile(Out("a")), "second");
}

TEST_F(HostileZipTest, OverlongNameIsCut) {
    const std::string name =
        std::string(100, 'a') + "/" + std::string(100, 'b') + "/" + std::string(100, 'c');
    EXPECT_EQ(UnzipAll(WriteZip({StoredEntry(name, "cut")}), Out().string()), 0);
    EXPECT_EQ(ReadWholeFile(Out(name.substr(0, limits::kZipNameBytes.value))), "cut");
}

TEST_F(HostileZipTest, PatternThatExplodesIsGivenUp) {
    // Short enough for each name to end by itself after a million steps, were there no limit for one.
    const std::vector<ZipBuilderEntry> entries(20000, StoredEntry(std::string(20, 'a') + "!", ""));
    const std::string zip = WriteZip(entries);
    EXPECT_EQ(ExtractEntry(zip, "(a+)+", Out().string()), -2);
    EXPECT_EQ(ExtractEntry(zip, "(?:a?){20}a{20}", Out().string()), -2);
    EXPECT_EQ(ExtractEntry(zip, std::string(100000, '('), Out().string()), -2);
}

TEST_F(HostileZipTest, PipeIsNeverOpenedAsAnArchive) {
    const fs::path pipe = folder_.path() / "a.epub";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(OpenZipForRead(pipe.string()));
}

// Each byte of a small archive in turn is changed or the archive ends there: whatever is read, nothing is
// written outside the target folder.
TEST_F(HostileZipTest, AnyDamagedByteIsHarmless) {
    const std::string whole =
        BuildZip({StoredEntry("d/", ""), DeflatedEntry("d/a.txt", "some text, some text"),
                  StoredEntry("../b", "refused")});
    const auto unpack = [&](const std::string &bytes) {
        const std::string zip = folder_.Write("a.zip", bytes).string();
        EXPECT_THAT(UnzipAll(zip, Out().string(), {Bytes(1 << 16), Bytes(1 << 16)}),
                    ::testing::AnyOf(0, -2, -3));
        const ZipReadHandle handle = OpenZipForRead(zip);
        if (handle && LocateZipEntry(handle.get(), "d/a.txt")) {
            EXPECT_LE(ReadCurrentZipEntry(handle.get(), Bytes(1 << 16)).value_or("").size(), 1U << 16);
        }
        EXPECT_EQ(EntriesOutside(), 0U);
    };
    for (size_t i = 0; i < whole.size(); ++i) {
        SCOPED_TRACE(i);
        unpack(whole.substr(0, i));
        for (const char value : {'\xFF', static_cast<char>(whole[i] ^ 1)}) {
            std::string damaged = whole;
            damaged[i] = value;
            unpack(damaged);
        }
    }
}

}  // namespace
