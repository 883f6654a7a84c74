#include "host/system.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "host/host_error.h"

namespace velmarhost {
namespace {

constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP};

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Gives the signal its usual effect, so that a shell sees the true cause of the end.
void EndBySignal(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
}

}  // namespace

std::filesystem::path ExecutableFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

void *LoadModule(const std::string &file, std::string &error) {
    void *module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        const char *reason = dlerror();
        error = reason != nullptr ? reason : "unknown reason";
    }
    return module;
}

void *FindModuleSymbol(void *module, const char *name) {
    return dlsym(module, name);
}

bool IsTerminal(Stream stream) {
    constexpr std::array kDescriptors = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    return isatty(kDescriptors.at(static_cast<std::size_t>(stream))) == 1;
}

int TerminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

void SetEnvironment(const std::string &name, const std::string &value) {
    setenv(name.c_str(), value.c_str(), 1);
}

std::filesystem::path MakePrivateFolder() {
    std::error_code error;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
    std::string pattern = (parent / "velmarhost-XXXXXX").string();
    if (error || mkdtemp(pattern.data()) == nullptr) {
        throw HostError(ExitCode::kLibrary, "no temporary folder could be made in \"" + parent.string() +
                                                "\". Set TMPDIR to a folder that you may write to.");
    }
    return pattern;
}

std::optional<uint64_t> RemainingInput() {
    struct stat status {};
    if (fstat(STDIN_FILENO, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    const off_t position = lseek(STDIN_FILENO, 0, SEEK_CUR);
    return position < 0 || position > status.st_size ? 0 : static_cast<uint64_t>(status.st_size - position);
}

void WatchSignals(bool (*clean_up)(int signal)) {
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kEndingSignals) {
        if (!IsIgnored(signal)) sigaddset(&set, signal);
    }
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    // The thread lives as long as the process; nothing waits for it.
    std::thread([set, clean_up] {
        int signal = 0;
        do {
            if (sigwait(&set, &signal) != 0) return;
        } while (!clean_up(signal));
        EndBySignal(signal);
    }).detach();
}

void EndAsSignaled(int signal) {
    EndBySignal(signal);
    constexpr int kSignalBase = 128;  // as shells tell of a process that a signal ended
    std::_Exit(kSignalBase + signal);
}

void EndAsBrokenPipe() {
    EndBySignal(SIGPIPE);
    std::_Exit(
        static_cast<int>(ExitCode::kIncomplete));  // only reached where the signal cannot end the process
}

}  // namespace velmarhost
