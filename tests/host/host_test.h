// Runs velmarhost as a user does, from a shell, in a folder with the sample library and nothing of the real
// user's.
#ifndef TESTS_HOST_HOST_TEST_H
#define TESTS_HOST_HOST_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "fixtures/sample_library.h"
#include "fixtures/temp_folder.h"

struct HostResult {
    int exit_code;  // 128 and the signal's number for a process that a signal ended
    std::string output;
    std::string errors;
};

// The paths of all files below a folder.
std::set<std::string> FilesBelow(const std::filesystem::path &folder);

// Every run must close what it opened in the driver and leave no temporary file. In the library some names
// are ones that a terminal or a file system does not take.
class HostTest : public testing::Test {
  protected:
    HostTest();

    // A line for the shell, where `host` is velmarhost with the watched driver.
    HostResult Shell(const std::string &line);
    HostResult Run(const std::string &arguments) { return Shell("host " + arguments); }
    // What a terminal shows of both output streams.
    std::string OnTerminal(const std::string &arguments, int columns = 80);
    // Sends the signal when a file whose name has the pattern is there, and once more.
    HostResult Interrupt(const std::string &arguments, const std::string &folder, const std::string &pattern,
                         int signal);
    // Arguments with their exit code and words that are written. A failure goes to standard error alone.
    using Runs = std::vector<std::tuple<std::string, int, std::string>>;
    void Expect(const Runs &runs);

    void Set(const std::string &name, const std::string &value);
    // Replaces a text in the library, wherever it stands.
    void Rename(const std::string &old_text, const std::string &new_text);

    TempFolder folder_;
    const std::string path_ = folder_.path().string() + "/";
    const LibraryPlace place_ = MakeSampleLibrary(folder_.path(), PathStyle::kWindows);
    std::string library_xml_ = ReadWholeFile(place_.library_xml);
    std::string environment_;
};

#endif
