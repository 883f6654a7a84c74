#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"
#include "tests/platform/windows/folder_contents.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;
using Contents = std::map<std::string, std::string>;

constexpr FILEOP_FLAGS kMoveFlags =
    FOF_SILENT | FOF_RENAMEONCOLLISION | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR;
constexpr FILEOP_FLAGS kDeleteFlags = FOF_SILENT | FOF_NOCONFIRMATION;

std::wstring List(const std::string &path) {
    return Utf8ToWide(path) + L'\0';
}

int Move(const std::string &from, const fs::path &to, FILEOP_FLAGS flags = kMoveFlags) {
    const std::wstring sources = List(from);
    const std::wstring target = List(to.string());
    SHFILEOPSTRUCTW operation = {nullptr, FO_MOVE, sources.c_str(), target.c_str(),
                                 flags,   FALSE,   nullptr,         nullptr};
    return SHFileOperationW(&operation);
}

int Delete(const std::string &path, FILEOP_FLAGS flags = kDeleteFlags) {
    const std::wstring sources = List(path);
    SHFILEOPSTRUCTW operation = {nullptr, FO_DELETE, sources.c_str(), nullptr,
                                 flags,   FALSE,     nullptr,         nullptr};
    return SHFileOperationW(&operation);
}

// Two folders to merge, with collisions of a file, of a folder, and of names that differ in case and normal
// form.
struct Merge {
    TempFolder place;
    fs::path from = place.path() / "from";
    fs::path to = place.path() / "to";

    Merge() {
        place.Write("from/song.mp3", "song of from");
        place.Write("from/Cover.JPG", "cover of from");
        place.Write("from/caf\xC3\xA9", "coffee of from");
        place.Write("from/.hidden", "hidden");
        place.Write("from/name \xFF", "no UTF-8");
        place.Write("from/album/disc/one.mp3", "one");
        place.Write("from/album/two.mp3", "two");
        fs::create_directory(from / "empty");
        fs::create_symlink("../elsewhere", from / "link");
        fs::create_directory_symlink("..", from / "album" / "cycle");
        place.Write("to/song.mp3", "song of to");
        place.Write("to/song (2).mp3", "second song of to");
        place.Write("to/cover.jpg", "cover of to");
        place.Write("to/cafe\xCC\x81", "coffee of to");
        place.Write("to/album/three.mp3", "three");
    }

    int Run() const { return Move(from.string() + "\\*", to); }
};

const Contents kMerged = {
    {"song.mp3", "song of to"},
    {"song (2).mp3", "second song of to"},
    {"song (3).mp3", "song of from"},
    {"cover.jpg", "cover of to"},
    {"Cover (2).JPG", "cover of from"},
    {"cafe\xCC\x81", "coffee of to"},
    {"caf\xC3\xA9 (2)", "coffee of from"},
    {".hidden", "hidden"},
    {"name \xFF", "no UTF-8"},
    {"album", "/"},
    {"album/three.mp3", "three"},
    {"album (2)", "/"},
    {"album (2)/two.mp3", "two"},
    {"album (2)/disc", "/"},
    {"album (2)/disc/one.mp3", "one"},
    {"album (2)/cycle", "-> .."},
    {"empty", "/"},
    {"link", "-> ../elsewhere"},
};

TEST(ShellMove, MergesFoldersWithoutReplacingAnything) {
    const Merge merge;
    EXPECT_EQ(merge.Run(), 0);
    EXPECT_EQ(FolderContents(merge.to), kMerged);
    EXPECT_TRUE(fs::is_empty(merge.from));
}

TEST(ShellMove, GivesTheSameResultAcrossFileSystemsAndOnOnesWithoutRenameFlags) {
    {
        const Merge merge;
        const FoldersAreFileSystems separated;
        EXPECT_EQ(merge.Run(), 0);
        EXPECT_EQ(FolderContents(merge.to), kMerged);
        EXPECT_TRUE(fs::is_empty(merge.from));
    }
    const Merge merge;
    const RenameFlagsUnknown unknown;
    EXPECT_EQ(merge.Run(), 0);
    EXPECT_EQ(FolderContents(merge.to), kMerged);
    EXPECT_TRUE(fs::is_empty(merge.from));
}

// The device of a second file system that is usually there, else nothing.
std::optional<fs::path> OtherFileSystem(const fs::path &here) {
    const fs::path other = "/dev/shm";
    struct stat left;
    struct stat right;
    if (stat(here.c_str(), &left) != 0 || stat(other.c_str(), &right) != 0) return std::nullopt;
    return left.st_dev == right.st_dev ? std::nullopt : std::optional(other);
}

TEST(ShellMove, KeepsTimesAndPermissionsOnAnotherFileSystem) {
    const Merge merge;
    const std::optional<fs::path> other = OtherFileSystem(merge.place.path());
    if (!other) GTEST_SKIP() << "there is no second file system";
    const fs::path target = *other / merge.place.path().filename();
    fs::create_directory(target);
    const fs::file_time_type time = fs::file_time_type::clock::now() - std::chrono::hours(1000);
    for (const char *name : {"song.mp3", "album"}) {
        fs::permissions(merge.from / name, fs::perms{0750});
        fs::last_write_time(merge.from / name, time);
    }
    const Contents before = FolderContents(merge.from);
    EXPECT_EQ(Move(merge.from.string() + "\\*", target), 0);
    EXPECT_EQ(FolderContents(target), before);
    EXPECT_TRUE(fs::is_empty(merge.from));
    for (const char *name : {"song.mp3", "album"}) {
        EXPECT_EQ(fs::status(target / name).permissions(), fs::perms{0750}) << name;
        EXPECT_EQ(fs::last_write_time(target / name), time) << name;
    }
    fs::remove_all(target);
}

// The bytes of all files that are not under a temporary name.
std::vector<std::string> AllBytes(const Contents &contents) {
    std::vector<std::string> bytes;
    for (const auto &[name, value] : contents) {
        if (value != "/" && name.find(".tmp-") == std::string::npos) bytes.push_back(value);
    }
    std::sort(bytes.begin(), bytes.end());
    return bytes;
}

void ExpectNothingLost(const Merge &merge, int result, const std::string &where) {
    const Contents whole = FolderContents(merge.place.path());
    for (const auto &[name, value] : whole)
        EXPECT_EQ(name.find(".tmp-"), std::string::npos) << where << ": " << name;
    std::vector<std::string> expected = AllBytes(FolderContents(Merge().place.path()));
    const std::vector<std::string> found = AllBytes(whole);
    EXPECT_TRUE(std::includes(found.begin(), found.end(), expected.begin(), expected.end())) << where;
    EXPECT_TRUE(result != 0 || fs::is_empty(merge.from)) << where;
}

TEST(ShellMove, AFaultAtAnyCallLosesNothing) {
    for (const bool across : {false, true}) {
        int call = 0;
        for (bool hit = true; hit;) {
            const Merge merge;
            int result = 0;
            {
                const std::unique_ptr<FoldersAreFileSystems> separated(across ? new FoldersAreFileSystems
                                                                              : nullptr);
                const FaultInjection injection({}, ++call);
                result = merge.Run();
                hit = injection.WasHit();
            }
            ExpectNothingLost(merge, result, (across ? "across, call " : "call ") + std::to_string(call));
        }
        EXPECT_GE(call, across ? 60 : 8);
    }
}

TEST(ShellMove, AnEntryThatCannotBeCopiedStaysWhole) {
    const Merge merge;
    ASSERT_EQ(mkfifo((merge.from / "album" / "pipe").c_str(), 0600), 0);
    const FoldersAreFileSystems separated;
    EXPECT_NE(merge.Run(), 0);
    EXPECT_EQ(ReadWholeFile(merge.from / "album" / "disc" / "one.mp3"), "one");
    EXPECT_FALSE(fs::exists(merge.to / "album (2)"));
    EXPECT_EQ(ReadWholeFile(merge.to / "song (3).mp3"), "song of from");
}

TEST(ShellMove, RefusesTakenNamesUnlessToldToRename) {
    const Merge merge;
    EXPECT_EQ(Move((merge.from / "song.mp3").string(), merge.to, FOF_SILENT),
              static_cast<int>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(ReadWholeFile(merge.from / "song.mp3"), "song of from");
    EXPECT_EQ(ReadWholeFile(merge.to / "song.mp3"), "song of to");
}

TEST(ShellMove, RefusesAFolderIntoItselfOrBelowItself) {
    const Merge merge;
    const Contents before = FolderContents(merge.place.path());
    EXPECT_NE(Move(merge.from.string() + "\\*", merge.from), 0);
    EXPECT_NE(Move(merge.from.string(), merge.from / "album"), 0);
    EXPECT_EQ(FolderContents(merge.place.path()), before);
}

TEST(ShellMove, SourcesThatAreNotThere) {
    const Merge merge;
    EXPECT_EQ(Move((merge.from / "absent").string() + "\\*", merge.to),
              static_cast<int>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Move((merge.from / "absent").string(), merge.to), static_cast<int>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Move((merge.from / "empty").string() + "\\*", merge.to), 0);
    EXPECT_NE(Move("", merge.to), 0);
}

TEST(ShellDelete, RemovesATreeAndLeavesWhatLinksLeadTo) {
    const Merge merge;
    fs::create_directory_symlink(merge.to, merge.from / "album" / "outside");
    const Contents kept = FolderContents(merge.to);
    EXPECT_EQ(Delete(merge.from.string()), 0);
    EXPECT_FALSE(fs::exists(merge.from));
    EXPECT_EQ(FolderContents(merge.to), kept);
}

TEST(ShellDelete, TakesALinkForItself) {
    const Merge merge;
    const fs::path link = merge.place.path() / "link";
    fs::create_directory_symlink("to", link);
    EXPECT_EQ(Delete(link.string()), 0);
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_TRUE(fs::exists(merge.to / "song.mp3"));
}

TEST(ShellDelete, GoesOnPastWhatCannotBeRemoved) {
    const Merge merge;
    const FaultInjection injection({}, 20);
    EXPECT_NE(Delete(merge.from.string()), 0);
    EXPECT_LE(FolderContents(merge.from).size(), 4U);
}

TEST(ShellDelete, RefusesDrivesRecyclingAndWhatIsNotThere) {
    const Merge merge;
    EXPECT_EQ(Delete("\\"), static_cast<int>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Delete("Q:\\"), static_cast<int>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Delete((merge.from / "absent").string()), static_cast<int>(ERROR_FILE_NOT_FOUND));
    EXPECT_NE(Delete(merge.from.string(), kDeleteFlags | FOF_ALLOWUNDO), 0);
    EXPECT_TRUE(fs::exists(merge.from / "song.mp3"));
}

TEST(ShellDelete, AVeryDeepTreeIsRemovedOrReported) {
    const TempFolder folder;
    fs::path deepest = folder.path() / "deep";
    while (deepest.string().size() < 3800)
        deepest /= std::string(200, 'd');
    fs::create_directories(deepest);
    EXPECT_EQ(Delete((folder.path() / "deep").string()), 0);
    EXPECT_NE(Delete((folder.path() / std::string(300, 'n')).string()), 0);
    EXPECT_NE(Delete((deepest / std::string(2000, 'n')).string()), 0);
}

}  // namespace
