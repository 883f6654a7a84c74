#include "platform/windows/atomic_file.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "tests/platform/windows/folder_test.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;

const std::string kOld = "the old bytes";
const std::string kNew = std::string(300, 'n') + "end";

bool ReplaceFile(const fs::path &path) {
    std::optional<AtomicFile> file = AtomicFile::Create(path.string());
    if (!file) return false;
    return file->Write(kNew.data(), 5) && file->Write(kNew.data() + 5, kNew.size() - 5) && file->Commit();
}

// The three kinds of target, each in a folder of its own, and the file whose bytes change.
struct Target {
    std::function<void(const TempFolder &)> make;
    std::string file;
};

const Target kTargets[] = {
    {[](const TempFolder &folder) { folder.Write("prefs.xml", kOld); }, "prefs.xml"},
    {[](const TempFolder &) {}, "prefs.xml"},
    {[](const TempFolder &folder) {
         folder.Write("real/kept.xml", kOld);
         fs::create_symlink("real/kept.xml", folder.path() / "middle");
         fs::create_symlink("middle", folder.path() / "prefs.xml");
     },
     "real/kept.xml"},
};

struct Outcome {
    int calls = 0;
    int harmless = 0;  // faults in spite of which the file was replaced
};

// Replaces the file again and again, with the fault at one call after the other, then without; each time it
// is the old one or the new one.
Outcome MeetFaults(const Target &target, const Fault &fault) {
    Outcome outcome;
    for (bool hit = true; hit;) {
        const TempFolder folder;
        target.make(folder);
        const Contents before = FolderContents(folder.path());
        Contents replaced = before;
        replaced[target.file] = kNew;
        ++outcome.calls;
        const pid_t child = fork();
        if (child == 0) {
            const FaultInjection injection(fault, outcome.calls);
            const bool is_replaced = ReplaceFile(folder.path() / "prefs.xml");
            _exit(1 + (is_replaced ? 1 : 0) + (injection.WasHit() ? 2 : 0));
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        const int code = WEXITSTATUS(status);
        const bool died = code == 0;
        hit = died || code > 2;
        outcome.harmless += code == 4 ? 1 : 0;
        Contents after = FolderContents(folder.path());
        if (died)
            std::erase_if(after,
                          [](const auto &item) { return item.first.find(".tmp-") != std::string::npos; });
        EXPECT_TRUE(after == replaced || (after == before && (died || code == 3))) << outcome.calls;
        EXPECT_TRUE(died || (after == replaced) == (code % 2 == 0)) << outcome.calls;
    }
    return outcome;
}

TEST(AtomicFile, AFaultAtAnyCallLeavesTheOldFileOrTheNewOne) {
    for (const Target &target : kTargets) {
        EXPECT_GE(MeetFaults(target, {FaultKind::kError}).calls, 9) << "the faults do not reach the calls";
        EXPECT_GE(MeetFaults(target, {FaultKind::kDeath}).calls, 9);
    }
}

TEST(AtomicFile, InterruptedCallsAndShortWritesAreContinued) {
    // Those that may wait, and so be interrupted: three opens and closes, two writes, two flushes.
    EXPECT_GE(MeetFaults(kTargets[0], {FaultKind::kError, EINTR}).harmless, 8);
    // No other call knows what a short write is.
    EXPECT_GE(MeetFaults(kTargets[0], {FaultKind::kShort}).harmless, 12);
}

class AtomicFileTest : public FolderTest {};

TEST_F(AtomicFileTest, KeepsTheModeAndSpellingOfTheOldFileAndTakesTheUsualModeForANewFile) {
    const fs::path old = folder_.Write("Apple Computer/Old", kOld);
    fs::permissions(old, fs::perms{0640});
    const fs::path plain = folder_.Write("plain", kOld);
    ASSERT_TRUE(ReplaceFile(folder_.path().string() + "\\apple computer\\OLD"));
    ASSERT_TRUE(ReplaceFile(Native("fresh")));
    EXPECT_EQ(fs::status(old).permissions(), fs::perms{0640});
    EXPECT_EQ(fs::status(Native("fresh")).permissions(), fs::status(plain).permissions());
    EXPECT_EQ(All(),
              "Apple Computer=/;Apple Computer/Old=" + kNew + ";fresh=" + kNew + ";plain=" + kOld + ";");
}

TEST_F(AtomicFileTest, RefusesWhatIsNoPlainFile) {
    fs::create_directory(Native("folder"));
    fs::create_symlink("loop", Native("loop"));
    ASSERT_EQ(mkfifo(Native("pipe").c_str(), 0600), 0);
    for (const std::string &name : std::initializer_list<std::string>{"folder", "loop", "pipe", "a?b",
                                                                      "absent/file", std::string(5000, 'x')})
        EXPECT_FALSE(AtomicFile::Create(Native(name))) << name;
    EXPECT_FALSE(AtomicFile::Create(""));
}

}  // namespace
