#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <string>

#include "platform/windows/windows_api.h"
#include "tests/platform/windows/folder_test.h"
#include "tests/support/system_faults.h"

namespace {

constexpr FILEOP_FLAGS kMoveFlags =
    FOF_SILENT | FOF_RENAMEONCOLLISION | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR;
constexpr FILEOP_FLAGS kDeleteFlags = FOF_SILENT | FOF_NOCONFIRMATION;

int Operate(UINT function, const std::string &from, const std::string &to, FILEOP_FLAGS flags) {
    const std::wstring source = Utf8ToWide(from) + L'\0', target = Utf8ToWide(to) + L'\0';
    SHFILEOPSTRUCTW operation = {nullptr, function, source.c_str(), target.c_str(),
                                 flags,   FALSE,    nullptr,        nullptr};
    return SHFileOperationW(&operation);
}

int Delete(const std::string &path, FILEOP_FLAGS flags = kDeleteFlags) {
    return Operate(FO_DELETE, path, "", flags);
}

// Two folders to merge, with collisions of a file, of a folder, and of names that differ in case and normal
// form.
struct Merge {
    TempFolder place;
    fs::path from = place.path() / "from";
    fs::path to = place.path() / "to";

    Merge() {
        for (const auto &[name, bytes] : {std::pair("from/song.mp3", "song of from"),
                                          {"from/Cover.JPG", "cover of from"},
                                          {"from/caf\xC3\xA9", "coffee of from"},
                                          {"from/.hidden", "hidden"},
                                          {"from/name \xFF", "no UTF-8"},
                                          {"from/album/disc/one.mp3", "one"},
                                          {"from/album/two.mp3", "two"},
                                          {"to/song.mp3", "song of to"},
                                          {"to/song (2).mp3", "second song of to"},
                                          {"to/cover.jpg", "cover of to"},
                                          {"to/cafe\xCC\x81", "coffee of to"},
                                          {"to/album/three.mp3", "three"}})
            place.Write(name, bytes);
        fs::create_directory(from / "empty");
        fs::create_symlink("../elsewhere", from / "link");
        fs::create_directory_symlink("..", from / "album" / "cycle");
    }

    int Run() const { return Operate(FO_MOVE, from.string() + "\\*", to.string(), kMoveFlags); }
};

constexpr const char *kMerged =
    ".hidden=hidden;Cover (2).JPG=cover of from;album=/;album (2)=/;album (2)/cycle=-> ..;album (2)/disc=/;"
    "album (2)/disc/one.mp3=one;album (2)/two.mp3=two;album/three.mp3=three;cafe\xCC\x81=coffee of to;"
    "caf\xC3\xA9 (2)=coffee of from;cover.jpg=cover of to;empty=/;link=-> ../elsewhere;"
    "name \xFF=no UTF-8;song (2).mp3=second song of to;song (3).mp3=song of from;song.mp3=song of to;";

TEST(ShellMove, MergesFoldersOnAnySystemAndKeepsTimesAndPermissions) {
    for (const auto &[across, no_rename_flags] : {std::pair(false, false), {true, false}, {false, true}}) {
        const Merge merge;
        const fs::file_time_type time = fs::file_time_type::clock::now() - std::chrono::hours(1000);
        for (const char *name : {"song.mp3", "album"}) {
            fs::permissions(merge.from / name, fs::perms{0750});
            fs::last_write_time(merge.from / name, time);
        }
        {
            std::optional<FoldersAreFileSystems> separated;
            std::optional<RenameFlagsUnknown> unknown;
            if (across) separated.emplace();
            if (no_rename_flags) unknown.emplace();
            EXPECT_EQ(merge.Run(), 0);
        }
        EXPECT_EQ(Listing(merge.to), kMerged);
        EXPECT_TRUE(fs::is_empty(merge.from));
        for (const char *name : {"song (3).mp3", "album (2)"}) {
            EXPECT_EQ(fs::status(merge.to / name).permissions(), fs::perms{0750}) << name;
            EXPECT_EQ(fs::last_write_time(merge.to / name), time) << name;
        }
    }
}

// The bytes of all files and the targets of links.
std::multiset<std::string> AllBytes(const Merge &merge) {
    std::multiset<std::string> bytes;
    for (const auto &[name, value] : FolderContents(merge.place.path())) {
        EXPECT_EQ(name.find(".tmp-"), std::string::npos) << name;
        if (value != "/") bytes.insert(value);
    }
    return bytes;
}

TEST(ShellMove, AFaultAtAnyCallLosesNothing) {
    for (const bool across : {false, true}) {
        int call = 0;
        for (bool hit = true; hit;) {
            SCOPED_TRACE((across ? "across, call " : "call ") + std::to_string(++call));
            const Merge merge;
            const std::multiset<std::string> before = AllBytes(merge);
            int result = 0;
            {
                std::optional<FoldersAreFileSystems> separated;
                if (across) separated.emplace();
                const FaultInjection injection({}, call);
                result = merge.Run();
                hit = injection.WasHit();
            }
            const std::multiset<std::string> after = AllBytes(merge);
            EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
            EXPECT_TRUE(result != 0 || fs::is_empty(merge.from));
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

TEST(ShellOperations, ThatAreRefusedChangeNothing) {
    const Merge merge;
    const std::string from = merge.from.string();
    const std::string before = Listing(merge.place.path());
    const auto move = [](const std::string &source, const fs::path &to, FILEOP_FLAGS flags = kMoveFlags) {
        return Operate(FO_MOVE, source, to.string(), flags);
    };
    EXPECT_EQ(move(from + "/song.mp3", merge.to, FOF_SILENT), static_cast<int>(ERROR_ALREADY_EXISTS));
    EXPECT_TRUE(move(from + "\\*", merge.from) != 0 && move(from, merge.from / "album") != 0)
        << "into itself";
    EXPECT_EQ(move(from + "/absent\\*", merge.to), static_cast<int>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(move(from + "/absent", merge.to), static_cast<int>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(move(from + "/empty\\*", merge.to), 0);
    EXPECT_NE(move("", merge.to), 0);
    for (const char *root : {"\\", "Q:\\"})
        EXPECT_EQ(Delete(root), static_cast<int>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Delete(from + "/absent"), static_cast<int>(ERROR_FILE_NOT_FOUND));
    EXPECT_NE(Delete(from, kDeleteFlags | FOF_ALLOWUNDO), 0);
    EXPECT_EQ(Listing(merge.place.path()), before);
}

TEST(ShellDelete, RemovesATreeAndLeavesWhatLinksLeadTo) {
    const Merge merge;
    fs::create_directory_symlink(merge.to, merge.from / "album" / "outside");
    fs::create_directory_symlink("to", merge.place.path() / "link");
    const std::string kept = Listing(merge.to);
    {
        const FaultInjection injection({}, 20);
        EXPECT_NE(Delete(merge.from.string()), 0);
    }
    EXPECT_LE(FolderContents(merge.from).size(), 4U) << "it goes on past what cannot be removed";
    EXPECT_EQ(Delete(merge.from.string()), 0);
    EXPECT_EQ(Delete((merge.place.path() / "link").string()), 0);
    EXPECT_EQ(Listing(merge.to), kept);
    EXPECT_EQ(std::distance(fs::directory_iterator(merge.place.path()), {}), 1);
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
