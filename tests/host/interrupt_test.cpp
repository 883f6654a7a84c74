// However a run ends, it leaves no temporary file.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include "tests/host/host_process.h"

namespace {

namespace fs = std::filesystem;

bool HoldsPartFile(const fs::path &folder) {
    std::error_code ignored;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == ".part") return true;
    }
    return false;
}

bool WaitForPartFile(const fs::path &folder) {
    for (int i = 0; i < 500; ++i) {
        if (HoldsPartFile(folder)) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

class Interrupt : public testing::TestWithParam<int> {};

TEST_P(Interrupt, RemovesTheHalfFileAndThePrivateFolder) {
    HostProcess host;
    const fs::path target = host.folder() / "target";
    const pid_t process = host.Start({"get", "endless/9.mp3", "--to", target.string()});
    EXPECT_TRUE(WaitForPartFile(target));
    EXPECT_EQ(host.LeftBehind(), 1U) << "the private folder stands while the program runs";
    kill(process, GetParam());
    EXPECT_EQ(host.Wait(process).exit_code, 128 + GetParam());
    EXPECT_TRUE(fs::is_empty(target));
    EXPECT_EQ(host.LeftBehind(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupt, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(BrokenPipe, EndsWithoutAWordAndCleansUp) {
    HostProcess host;
    const std::string command = "TMPDIR='" + (host.folder() / "tmp").string() +
                                "' " VELMARHOST_PROGRAM " --driver " FAKE_DRIVER_MODULE
                                " cat endless/9.mp3 2>'" +
                                (host.folder() / "errors").string() + "' | head -c 100";
    std::FILE *pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string text(200, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), pipe));
    pclose(pipe);
    EXPECT_EQ(text, std::string(100, 'e'));
    EXPECT_EQ(ReadWholeFile(host.folder() / "errors"), "");
    EXPECT_EQ(host.LeftBehind(), 0U);
}

}  // namespace
