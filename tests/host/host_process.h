// Runs velmarhost as a user does: another process with its own environment and streams.
#ifndef TESTS_HOST_HOST_PROCESS_H
#define TESTS_HOST_HOST_PROCESS_H

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

struct HostResult {
    int exit_code;  // 128 and the signal's number for a process that a signal ended, as shells tell it
    std::string output;
    std::string errors;
};

// The sandbox of one test: its temporary files and its home lie in a folder of the test's own.
class HostProcess {
  public:
    HostProcess();

    // Runs to the end with the fake driver.
    HostResult Run(const std::vector<std::string> &arguments);
    // The same with a terminal of so many columns behind both output streams; all that it shows is in
    // `output`.
    HostResult RunOnTerminal(const std::vector<std::string> &arguments, unsigned short columns);

    // Starts and does not wait. One at a time.
    pid_t Start(const std::vector<std::string> &arguments);
    HostResult Wait(pid_t process);

    // What the next run has for its standard input; closed then.
    void SetInput(int descriptor) { input_ = descriptor; }
    void Set(const std::string &name, const std::string &value) { environment_[name] = value; }
    const std::filesystem::path &folder() const { return folder_.path(); }
    const TempFolder &files() const { return folder_; }
    // What stands in the temporary folder, which a finished run leaves empty.
    std::size_t LeftBehind() const;

  private:
    pid_t Spawn(const std::vector<std::string> &arguments, int output, int errors);

    TempFolder folder_;
    std::map<std::string, std::string> environment_;
    int input_ = -1;
};

#endif
