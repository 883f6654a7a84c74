#include "platform/windows/atomic_file.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "tests/platform/windows/folder_test.h"
#include "tests/support/system_faults.h"

namespace {

const std::string kOld = "the old bytes", kNew = std::string(300, 'n') + "end";

bool ReplaceFile(const fs::path &path) {
    std::optional<AtomicFile> file = AtomicFile::Create(path.string());
    return file && file->Write(kNew.data(), 5) && file->Write(kNew.data() + 5, kNew.size() - 5) &&
           file->Commit();
}

// The file whose bytes change, which may be the end of a chain of links from "prefs.xml".
struct Target {
    std::string file;
    bool exists;

    void Make(const TempFolder &folder) const {
        if (exists) folder.Write(file, kOld);
        if (file == "prefs.xml") return;
        fs::create_symlink(file, folder.path() / "middle");
        fs::create_symlink("middle", folder.path() / "prefs.xml");
    }
};

const Target kTargets[] = {{"prefs.xml", true}, {"prefs.xml", false}, {"real/kept.xml", true}};

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
        target.Make(folder);
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
        const auto is_rest = [](const auto &item) { return item.first.find(".tmp-") != std::string::npos; };
        if (died) std::erase_if(after, is_rest);
        EXPECT_TRUE(after == replaced || (after == before && (died || code == 3))) << outcome.calls;
        EXPECT_TRUE(died || (after == replaced) == (code % 2 == 0)) << outcome.calls;
    }
    return outcome;
}

TEST(AtomicFile, AFaultAtAnyCallLeavesTheOldFileOrTheNewOne) {
    for (const Target &target : kTargets) {
        for (const FaultKind kind : {FaultKind::kError, FaultKind::kDeath})
            EXPECT_GE(MeetFaults(target, {kind}).calls, 9) << "the faults do not reach the calls";
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
