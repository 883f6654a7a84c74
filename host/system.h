// The host's own thin layer to the system: everything that the C++ library does not offer. No other file of
// this folder calls the system.
#ifndef HOST_SYSTEM_H
#define HOST_SYSTEM_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace velmarhost {

// The folder of the running program; empty when the system does not tell.
std::filesystem::path ExecutableFolder();

// Loads a shared library for the rest of the process. Null on failure, with the loader's own words in
// `error`.
void *LoadModule(const std::string &file, std::string &error);
// Null when the module has no such symbol.
void *FindModuleSymbol(void *module, const char *name);

enum class Stream { kInput, kOutput, kError };
bool IsTerminal(Stream stream);
// Columns of the terminal behind standard error; 80 when unknown.
int TerminalWidth();

// Sets a variable of this process, which the driver reads too.
void SetEnvironment(const std::string &name, const std::string &value);

// A new, empty folder in the system's temporary folder that only this user can enter. Throws HostError.
std::filesystem::path MakePrivateFolder();

// The bytes that are still to be read from standard input, where that is a regular file; empty for pipes and
// all else.
std::optional<uint64_t> RemainingInput();

// From now on a signal that would end the process first runs `clean_up` on a thread of its own, and then, if
// that answers true, ends the process in the way the signal always does. Signals that were ignored at the
// start stay ignored. A write to a closed pipe becomes a failed write. To be called before any other thread
// starts.
void WatchSignals(bool (*clean_up)(int signal));

// Ends the process as the signal would have ended it.
[[noreturn]] void EndAsSignaled(int signal);

// Ends the process as a closed pipe ends any filter.
[[noreturn]] void EndAsBrokenPipe();

}  // namespace velmarhost

#endif
