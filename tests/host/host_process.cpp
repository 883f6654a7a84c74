#include "tests/host/host_process.h"

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace {

namespace fs = std::filesystem;

int Create(const fs::path &file) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0) throw std::runtime_error("no file for the streams");
    return descriptor;
}

std::vector<char *> Pointers(std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int ExitCode(pid_t process) {
    int status = 0;
    if (waitpid(process, &status, 0) != process) throw std::runtime_error("no process to wait for");
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string ReadUntilClosed(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(descriptor, buffer.data(), buffer.size())) > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

HostProcess::HostProcess() {
    fs::create_directories(folder() / "tmp");
    Set("TMPDIR", (folder() / "tmp").string());
    Set("HOME", (folder() / "home").string());
    Set("TERM", "xterm");
    Set("TZ", "UTC");
    Set("PATH", "/usr/bin:/bin");
}

pid_t HostProcess::Spawn(const std::vector<std::string> &arguments, int output, int errors) {
    std::vector<std::string> words = {VELMARHOST_PROGRAM, "--driver", FAKE_DRIVER_MODULE};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables;
    for (const auto &[name, value] : environment_)
        variables.emplace_back(name).append("=").append(value);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    if (input_ >= 0) posix_spawn_file_actions_adddup2(&actions, input_, STDIN_FILENO);
    // A test runner in the background has its interrupts ignored, and a child inherits that.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        sigaddset(&signals, signal);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    pid_t process = 0;
    const int failure = posix_spawn(&process, VELMARHOST_PROGRAM, &actions, &attributes,
                                    Pointers(words).data(), Pointers(variables).data());
    if (const int input = std::exchange(input_, -1); input >= 0) close(input);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("velmarhost could not be started");
    return process;
}

pid_t HostProcess::Start(const std::vector<std::string> &arguments) {
    const int output = Create(folder() / "output");
    const int errors = Create(folder() / "errors");
    const pid_t process = Spawn(arguments, output, errors);
    close(output);
    close(errors);
    return process;
}

HostResult HostProcess::Wait(pid_t process) {
    const int code = ExitCode(process);
    return {code, ReadWholeFile(folder() / "output"), ReadWholeFile(folder() / "errors")};
}

HostResult HostProcess::Run(const std::vector<std::string> &arguments) {
    return Wait(Start(arguments));
}

HostResult HostProcess::RunOnTerminal(const std::vector<std::string> &arguments, unsigned short columns) {
    int master = 0;
    int slave = 0;
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 25;
    if (openpty(&master, &slave, nullptr, nullptr, &size) != 0) throw std::runtime_error("no terminal");
    const pid_t process = Spawn(arguments, slave, slave);
    close(slave);
    const std::string shown = ReadUntilClosed(master);
    close(master);
    return {ExitCode(process), shown, {}};
}

std::size_t HostProcess::LeftBehind() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder() / "tmp"), {}));
}
