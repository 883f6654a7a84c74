// The preference file is the user's: whatever fails while its flag byte is rewritten, it is whole afterwards.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "library/preferences.h"
#include "tests/platform/windows/faulty_system_calls.h"
#include "tests/platform/windows/folder_contents.h"
#include "tests/support/collected_log.h"
#include "tests/support/preference_file.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_folder.h"

namespace {

class PreferenceFaults : public testing::Test {
  protected:
    // A preference file whose flag is not set, alone in its folder.
    void Reset() {
        PreferenceFile preferences;
        preferences.library_xml = "C:\\Library.xml";
        preferences.block_length = kPreferenceFlagIndex + 1;
        preferences.flag_byte = 0;
        std::filesystem::remove_all(folder_.path() / "AppData");
        path_ = preferences.WriteUnder(folder_.path() / "AppData");
    }
    // All files of the preference file's folder.
    std::map<std::string, std::string> Files() const { return FolderContents(path_.parent_path()); }

    TempFolder folder_;
    ScopedEnvironment app_data_{"APPDATA", folder_.path() / "AppData"};
    CollectedLog log_;
    std::filesystem::path path_;
};

TEST_F(PreferenceFaults, AFaultAtAnyCallLeavesTheOldFileOrTheNewOne) {
    Reset();
    const auto before = Files();
    ReadLibraryPreferences();
    const auto after = Files();
    ASSERT_NE(before, after);
    int replaced = 0;
    int kept = 0;
    bool hit = true;
    for (int call = 1; hit; ++call) {
        Reset();
        {
            const FaultInjection injection(Fault::kFail, call);
            ReadLibraryPreferences();
            hit = injection.WasHit();
        }
        const auto files = Files();
        EXPECT_TRUE(files == before || files == after) << "call " << call;
        ++(files == after ? replaced : kept);
    }
    EXPECT_GE(kept, 4) << "the faults do not reach the calls";
    EXPECT_GE(replaced, 1) << "without a fault the file is new";
}

TEST_F(PreferenceFaults, TheEndOfTheProcessAtAnyCallDoesSoToo) {
    Reset();
    const std::string before = ReadWholeFile(path_);
    ReadLibraryPreferences();
    const std::string after = ReadWholeFile(path_);
    bool died = true;
    int call = 0;
    while (died) {
        Reset();
        const pid_t child = fork();
        ++call;
        if (child == 0) {
            const FaultInjection injection(Fault::kDie, call);
            ReadLibraryPreferences();
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        died = WEXITSTATUS(status) == 0;
        const std::string bytes = ReadWholeFile(path_);
        EXPECT_TRUE(bytes == before || bytes == after) << "call " << call;
        EXPECT_TRUE(died || bytes == after);
    }
    EXPECT_GE(call, 6);
}

}  // namespace
