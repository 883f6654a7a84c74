#include "content/zip_extract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <tuple>

#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "content/zip_entry_path.h"
#include "fixtures/temp_folder.h"
#include "fixtures/zip_builder.h"
#include "platform/limits.h"
#include "tests/support/collected_log.h"
#include "tests/support/folder_contents.h"

namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

class ZipExtractTest : public ::testing::Test {
  protected:
    ZipExtractTest() { fs::create_directory(Out()); }
    std::string WriteZip(const std::vector<ZipBuilderEntry> &entries) const {
        return folder_.Write("a.zip", BuildZip(entries)).string();
    }
    int32_t Unzip(const std::vector<ZipBuilderEntry> &entries,
                  const ExtractLimits &limits = kBookLimits) const {
        return UnzipAll(WriteZip(entries), Out().string(), limits);
    }
    fs::path Out(const std::string &name = "") const { return folder_.path() / "out" / name; }
    Files Unpacked() const {
        Files files = FolderContents(Out());
        std::erase_if(files, [](const auto &file) { return file.second == "/"; });
        return files;
    }
    // The entry as a file of its own.
    std::string Extracted(const std::string &zip, const std::string &name) const {
        const fs::path target = folder_.Write("target", "old");
        return ExtractEntryToFile(zip, name, target.string()) == 0 ? ReadWholeFile(target) : "failed";
    }

    TempFolder folder_;
    CollectedLog log_;
};

TEST_F(ZipExtractTest, EntriesAreFoundByPatternOrExactName) {
    const std::string zip = WriteZip({StoredEntry("\xFFnot UTF-8", ""), StoredEntry("o/coverXjpg", "loose"),
                                      DeflatedEntry("o/cover.jpg", "exact"), StoredEntry("x/O/cover.jpg", ""),
                                      StoredEntry("a(b", ""), StoredEntry("y", "")});
    const std::string longest = "[" + std::string(limits::kPatternBytes.value - 4, 'y') + "]";
    const std::pair<std::string, int32_t> rows[] = {{"O\\cover.jpg", 0}, {"cover.jpg", -2},
                                                    {"o/cover", -2},     {"a(b", -2},
                                                    {longest, 0},        {longest + "?", -2}};
    for (const auto &[pattern, result] : rows)
        EXPECT_EQ(ExtractEntry(zip, pattern, Out().string()), result) << pattern.substr(0, 20);
    EXPECT_EQ(Unpacked(), (Files{{"o/coverXjpg", "loose"}, {"y", ""}}));
    EXPECT_EQ(Extracted(zip, "O/COVER.jpg"), "exact");
    EXPECT_EQ(Extracted(zip, "o/cover"), "failed");
    EXPECT_EQ(ExtractEntryToFile(zip, "y", Out("none/y").string()), -1);
    EXPECT_EQ(Extracted(zip + "x", "y"), "failed");
    EXPECT_EQ(ExtractEntry(zip + "x", "y", Out().string()), -1);
    const ZipReadHandle handle = OpenZipForRead(zip);
    EXPECT_EQ(FindEntryByRegex(handle.get(), "^O/[^/]+[.]jpg$"), "o/cover.jpg");
    EXPECT_EQ(ReadCurrentZipEntry(handle.get(), limits::kZipEntryBytes), "exact");
    EXPECT_EQ(FindEntryByRegex(handle.get(), "cover"), std::nullopt) << "begins at the first character";
    EXPECT_EQ(FindEntryByRegex(handle.get(), "O/"), "o/coverXjpg") << "and ends anywhere";
    // Short enough for each name to end by itself after a million steps, were there no limit for one.
    const std::vector<ZipBuilderEntry> costly(20000, StoredEntry(std::string(20, 'a') + "!", ""));
    EXPECT_EQ(ExtractEntry(WriteZip(costly), "(a+)+", Out().string()), -2);
}

TEST_F(ZipExtractTest, WhatCanBeReadIsUnpackedUpToTheFirstFailure) {
    ZipBuilderEntry encrypted = StoredEntry("secret", "noise"), unknown = StoredEntry("unknown", "noise"),
                    wrong_sum = DeflatedEntry("sum", "picture"), huge = DeflatedEntry("huge", "small");
    encrypted.flags = 1;
    unknown.method = 97;
    wrong_sum.crc ^= 1;
    huge.claimed_size = 0xFFFFFFF0;
    const size_t longest = limits::kZipNameBytes.value;
    const std::string long_name = std::string(200, 'a') + "/" + std::string(100, 'b');
    const std::tuple<std::vector<ZipBuilderEntry>, int32_t, Files, std::string> rows[] = {
        {{StoredEntry("c\\d", "2"), DeflatedEntry("./e//f", "3")}, 0, {{"c/d", "2"}, {"e/f", "3"}}, "2"},
        {{StoredEntry("a", "1"), StoredEntry("a", "2"), StoredEntry("a/b", ""), huge}, -3, {{"a", "2"}}, "1"},
        {{encrypted, unknown, StoredEntry("plain", "text")}, 0, {{"plain", "text"}}, "failed"},
        {{wrong_sum}, 0, {{"sum", "picture"}}, "picture"},
        {{huge}, 0, {{"huge", "small"}}, "small"},
        {{StoredEntry(long_name, "x")}, 0, {{long_name.substr(0, longest), "x"}}, "failed"}};
    for (const auto &[entries, result, files, first_alone] : rows) {
        fs::remove_all(Out());
        EXPECT_EQ(Unzip(entries), result);
        EXPECT_EQ(Unpacked(), files);
        EXPECT_EQ(Extracted(WriteZip(entries), entries[0].name), first_alone);
    }
    EXPECT_THAT(log_.Lines(), testing::ElementsAre("decompress file \"" + WriteZip({}) + "\" failed\n"));
    std::string noise(20000, ' ');
    std::generate(noise.begin(), noise.end(), std::mt19937(1));
    ZipBuilderEntry cut = DeflatedEntry("cut", noise);
    cut.data.resize(cut.data.size() / 2);
    EXPECT_EQ(Unzip({cut, StoredEntry("b", "whole")}), 0);
    EXPECT_TRUE(noise.starts_with(Unpacked()["cut"]) && !Unpacked()["cut"].empty());
    EXPECT_EQ(Unpacked()["b"], "whole");
    EXPECT_EQ(Extracted(WriteZip({cut}), "cut"), "failed");
}

TEST_F(ZipExtractTest, WhatIsThereIsReplacedUnlessItIsAFolderAndNoLinkIsFollowed) {
    const fs::path victim = folder_.Write("outside/victim", "victim");
    folder_.Write("out/a/b", "old and longer");
    folder_.Write("out/a/kept", "kept");
    fs::create_symlink(victim, Out("there"));
    fs::create_symlink(folder_.path() / "outside/made", Out("dangling"));
    EXPECT_EQ(Unzip({StoredEntry("a/", ""), StoredEntry("a/b", "new"), StoredEntry("there", "1"),
                     StoredEntry("dangling", "2")}),
              0);
    const Files unpacked = {{"a/b", "new"}, {"a/kept", "kept"}, {"there", "1"}, {"dangling", "2"}};
    EXPECT_EQ(Unpacked(), unpacked);
    EXPECT_EQ(Unzip({StoredEntry("a", "")}), -3);
    EXPECT_EQ(Unpacked(), unpacked);
    fs::create_directory_symlink(folder_.path() / "outside", Out("link"));
    EXPECT_EQ(Unzip({StoredEntry("link/evil", "evil")}), -3);
    EXPECT_EQ(Unzip({StoredEntry("link/", ""), StoredEntry("link/sub/evil", "evil")}), -3);
    EXPECT_EQ(FolderContents(folder_.path() / "outside"), (Files{{"victim", "victim"}}));
}

TEST_F(ZipExtractTest, OtherThingsAreNoArchivesAndSlippingNamesAreRefused) {
    ASSERT_EQ(mkfifo((folder_.path() / "a.zip").c_str(), 0600), 0);
    for (const char *name : {"a.zip", "gone", ""})
        EXPECT_EQ(UnzipAll((folder_.path() / name).string(), Out().string()), -2) << name;
    fs::remove(folder_.path() / "a.zip");
    EXPECT_EQ(Unzip({}), 0);
    for (const char *name : {"../evil", "a\\..\\..\\evil", "/evil", "//host/share/evil", "C:evil",
                             "a/.../evil", "../", "", "a/b:stream", "a\nb", "what?"})
        EXPECT_EQ(Unzip({StoredEntry(name, "evil")}), -3) << name;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 2) << "the archive and its target";
    EXPECT_TRUE(fs::is_empty(Out()));
}

// Every name up to a length over the characters that matter, read as Windows and as other systems would read
// it.
TEST_F(ZipExtractTest, NoNameLeadsOutOfTheFolder) {
    const fs::path root = "/no/such/root";
    std::function<void(const std::string &)> check = [&](const std::string &name) {
        if (const auto target = ZipEntryTarget(root.string(), name)) {
            const fs::path inside = fs::path(*target).lexically_relative(root);
            EXPECT_NE(*inside.begin(), "..") << name;
            EXPECT_EQ(inside, inside.lexically_normal()) << name;
            for (const std::string part : inside) {
                EXPECT_TRUE(part == "." || part.find_first_not_of(". ") != std::string::npos) << name;
                EXPECT_EQ(part.find_first_of("\\:"), std::string::npos) << name;
            }
        }
        if (name.size() == 5) return;
        for (const char character : {'a', '.', '/', '\\', ' ', ':'})
            check(name + character);
    };
    check("");
}

TEST_F(ZipExtractTest, BombStopsAtEachLimit) {
    const std::string zeros(limits::kZipFreeBytes, '\0');
    const ZipBuilderEntry bomb = DeflatedEntry("1", zeros);
    const Limit whole{"bytes", zeros.size()}, less{"bytes", zeros.size() - 1},
        twice{"bytes", 2 * zeros.size()};
    EXPECT_EQ(Unzip({bomb}, {less, whole}), -3);
    EXPECT_EQ(Unzip({bomb, StoredEntry("2", "")}, {whole, less}), -3);
    EXPECT_EQ(Unpacked(), Files());
    EXPECT_EQ(Unzip({bomb, bomb}, {whole, twice}), -3) << "for its expansion";
    EXPECT_EQ(Unzip({bomb, StoredEntry("1", zeros)}, {whole, twice}), 0);
    EXPECT_EQ(Unzip({bomb, StoredEntry("2", "x")}, {whole, whole}), -3);
    EXPECT_EQ(Unzip({DeflatedEntry("3", zeros + '\0')}), -3) << "more than the archive's size allows";
    EXPECT_EQ(Unpacked(), (Files{{"1", zeros}}));
    const ZipReadHandle handle = OpenZipForRead(WriteZip({bomb}));
    ASSERT_TRUE(LocateZipEntry(handle.get(), "1"));
    EXPECT_EQ(ReadCurrentZipEntry(handle.get(), less), std::nullopt);
    EXPECT_EQ(ReadCurrentZipEntry(handle.get(), whole), zeros);
    const std::string zip =
        WriteZip({DeflatedEntry("4", std::string(limits::kZipEntryBytes.value + 1, '\0'))});
    EXPECT_EQ(Extracted(zip, "4"), "failed");
    EXPECT_EQ(ExtractEntry(zip, "4", Out().string()), -4);
    EXPECT_FALSE(fs::exists(Out("4")));
}

TEST_F(ZipExtractTest, EntriesAreReadUpToTheirLimit) {
    std::vector<ZipBuilderEntry> entries(limits::kZipEntries.value, StoredEntry("d/", ""));
    entries.push_back(StoredEntry("last", ""));
    EXPECT_EQ(Unzip(entries), -3);
    EXPECT_EQ(FindEntryByRegex(OpenZipForRead(WriteZip(entries)).get(), "last"), std::nullopt);
    EXPECT_EQ(Unpacked(), Files());
    entries.erase(entries.begin());
    EXPECT_EQ(Unzip(entries), 0);
    EXPECT_EQ(Unpacked(), (Files{{"last", ""}}));
}

}  // namespace
