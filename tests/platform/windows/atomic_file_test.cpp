#include "platform/windows/atomic_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "tests/platform/windows/folder_contents.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;
using Contents = std::map<std::string, std::string>;

const std::string kOld = "the old bytes";
const std::string kNew = std::string(300, 'n') + "end";

bool ReplaceFile(const fs::path &path) {
    std::optional<AtomicFile> file = AtomicFile::Create(path.string());
    if (!file) return false;
    return file->Write(kNew.data(), 5) && file->Write(kNew.data() + 5, kNew.size() - 5) && file->Commit();
}

// The three kinds of target, each in a folder of its own.
struct Target {
    const char *name;
    std::function<fs::path(const TempFolder &)> make;
    std::string file;  // the one whose bytes change
};

const Target kTargets[] = {
    {"existing", [](const TempFolder &folder) { return folder.Write("prefs.xml", kOld); }, "prefs.xml"},
    {"absent", [](const TempFolder &folder) { return folder.path() / "prefs.xml"; }, "prefs.xml"},
    {"link",
     [](const TempFolder &folder) {
         folder.Write("real/kept.xml", kOld);
         fs::create_symlink("real/kept.xml", folder.path() / "middle");
         fs::create_symlink("middle", folder.path() / "prefs.xml");
         return folder.path() / "prefs.xml";
     },
     "real/kept.xml"},
};

Contents After(Contents before, const Target &target) {
    before[target.file] = kNew;
    return before;
}

TEST(AtomicFile, ReplacesEachKindOfTarget) {
    for (const Target &target : kTargets) {
        const TempFolder folder;
        const fs::path path = target.make(folder);
        const Contents before = FolderContents(folder.path());
        ASSERT_TRUE(ReplaceFile(path)) << target.name;
        EXPECT_EQ(FolderContents(folder.path()), After(before, target)) << target.name;
    }
}

TEST(AtomicFile, AFaultAtAnyCallLeavesTheOldFileOrTheNewOne) {
    for (const Target &target : kTargets) {
        int call = 0;
        for (bool hit = true; hit;) {
            const TempFolder folder;
            const fs::path path = target.make(folder);
            const Contents before = FolderContents(folder.path());
            bool replaced = false;
            {
                const FaultInjection injection({}, ++call);
                replaced = ReplaceFile(path);
                hit = injection.WasHit();
            }
            EXPECT_EQ(FolderContents(folder.path()), replaced ? After(before, target) : before)
                << target.name << ", call " << call;
        }
        EXPECT_GE(call, 9) << target.name << ": the faults do not reach the calls";
    }
}

TEST(AtomicFile, TheEndOfTheProcessAtAnyCallLeavesTheOldFileOrTheNewOne) {
    for (const Target &target : kTargets) {
        int call = 0;
        for (bool died = true; died;) {
            const TempFolder folder;
            const fs::path path = target.make(folder);
            const Contents before = FolderContents(folder.path());
            const pid_t child = fork();
            ++call;
            if (child == 0) {
                const FaultInjection injection({FaultKind::kDeath}, call);
                ReplaceFile(path);
                _exit(1);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            died = WEXITSTATUS(status) == 0;
            Contents after = FolderContents(folder.path());
            std::erase_if(after,
                          [](const auto &item) { return item.first.find(".tmp-") != std::string::npos; });
            EXPECT_TRUE(after == before || after == After(before, target))
                << target.name << ", call " << call;
            EXPECT_TRUE(died || after == After(before, target)) << target.name;
        }
        EXPECT_GE(call, 9) << target.name;
    }
}

// How many single calls can meet a fault without harm to the replacement.
int CountHarmlessFaults(const Fault &fault) {
    int harmless = 0;
    int call = 0;
    for (bool hit = true; hit;) {
        const TempFolder folder;
        const fs::path path = folder.Write("prefs.xml", kOld);
        const FaultInjection injection(fault, ++call);
        const bool replaced = ReplaceFile(path);
        hit = injection.WasHit();
        EXPECT_EQ(FolderContents(folder.path()), (Contents{{"prefs.xml", replaced ? kNew : kOld}})) << call;
        harmless += replaced && hit ? 1 : 0;
    }
    return harmless;
}

TEST(AtomicFile, InterruptedCallsAndShortWritesAreContinued) {
    // Those that may wait, and so be interrupted: three opens and closes, two writes, two flushes.
    EXPECT_GE(CountHarmlessFaults({FaultKind::kError, EINTR}), 8);
    // No other call knows what a short write is.
    EXPECT_GE(CountHarmlessFaults({FaultKind::kShort}), 12);
}

TEST(AtomicFile, WithoutACommitNothingChanges) {
    const TempFolder folder;
    const fs::path path = folder.Write("prefs.xml", kOld);
    {
        std::optional<AtomicFile> file = AtomicFile::Create(path.string());
        ASSERT_TRUE(file && file->Write("x", 1));
        AtomicFile moved = std::move(*file);
        EXPECT_TRUE(moved.Write("y", 1));
    }
    EXPECT_EQ(FolderContents(folder.path()), (Contents{{"prefs.xml", kOld}}));
}

TEST(AtomicFile, KeepsTheModeOfTheOldFileAndTakesTheUsualOneForANewFile) {
    const TempFolder folder;
    const fs::path old = folder.Write("old", kOld);
    fs::permissions(old, fs::perms{0640});
    const fs::path plain = folder.Write("plain", kOld);
    ASSERT_TRUE(ReplaceFile(old));
    const fs::path fresh = folder.path() / "fresh";
    ASSERT_TRUE(ReplaceFile(fresh));
    EXPECT_EQ(fs::status(old).permissions(), fs::perms{0640});
    EXPECT_EQ(fs::status(fresh).permissions(), fs::status(plain).permissions());
}

TEST(AtomicFile, RefusesWhatIsNoPlainFile) {
    const TempFolder folder;
    fs::create_directory(folder.path() / "folder");
    fs::create_symlink("loop", folder.path() / "loop");
    EXPECT_FALSE(AtomicFile::Create((folder.path() / "folder").string()));
    EXPECT_FALSE(AtomicFile::Create((folder.path() / "loop").string()));
    EXPECT_FALSE(AtomicFile::Create((folder.path() / "a?b").string()));
    EXPECT_FALSE(AtomicFile::Create((folder.path() / "absent" / "file").string()));
    EXPECT_FALSE(AtomicFile::Create((folder.path() / std::string(5000, 'x')).string()));
    EXPECT_FALSE(AtomicFile::Create(""));
    ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(AtomicFile::Create((folder.path() / "pipe").string()));
}

TEST(AtomicFile, ReplacesTheFileOfAnotherSpelling) {
    const TempFolder folder;
    folder.Write("Apple Computer/iTunesPrefs.xml", kOld);
    ASSERT_TRUE(ReplaceFile(folder.path().string() + "\\apple computer\\ITUNESPREFS.XML"));
    EXPECT_EQ(FolderContents(folder.path()),
              (Contents{{"Apple Computer", "/"}, {"Apple Computer/iTunesPrefs.xml", kNew}}));
}

}  // namespace
