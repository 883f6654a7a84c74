#include <exception>
#include <optional>
#include <string>

#include "host/cleanup.h"
#include "host/commands.h"
#include "host/host_error.h"
#include "host/library_session.h"
#include "host/options.h"
#include "host/output.h"
#include "host/system.h"

namespace velmarhost {
namespace {

ExitCode RunCommand(const Options &options, LibrarySession &session, Output &output) {
    switch (options.command) {
        case Command::kTree:
            return RunTree(options, session, output);
        case Command::kLs:
            return RunLs(options, session, output);
        case Command::kStat:
            return RunStat(options, session, output);
        case Command::kCat:
            return RunCat(options, session, output);
        case Command::kThumb:
            return RunThumb(options, session, output);
        case Command::kGet:
            return RunGet(options, session, output);
        case Command::kAdd:
            return RunAdd(options, session, output);
    }
    return ExitCode::kUsage;
}

ExitCode Run(int argument_count, char **arguments) {
    const std::optional<Options> options = ParseOptions(argument_count, arguments);
    if (!options) return ExitCode::kOk;
    LibrarySession session(options->driver, options->library, options->verbose);
    Output output(WantsColor(options->color));
    try {
        const ExitCode code = RunCommand(*options, session, output);
        output.Flush();
        return code;
    } catch (const HostError &) {
        output.Flush();  // what came before the error is good
        throw;
    }
}

// Everything that a run made is gone when this returns.
ExitCode RunAndExplain(int argument_count, char **arguments) {
    try {
        return Run(argument_count, arguments);
    } catch (const HostError &error) {
        PrintMessage(std::string("velmarhost: ") + error.what());
        return error.code();
    } catch (const OutputClosed &) {
        throw;
    } catch (const Interrupted &) {
        throw;
    } catch (const std::exception &error) {
        PrintMessage(std::string("velmarhost: ") + error.what());
        return ExitCode::kIncomplete;
    }
}

}  // namespace
}  // namespace velmarhost

int main(int argument_count, char **arguments) {
    velmarhost::WatchSignals(&velmarhost::CleanUpAtSignal);
    try {
        return static_cast<int>(velmarhost::RunAndExplain(argument_count, arguments));
    } catch (const velmarhost::OutputClosed &) {
        velmarhost::EndAsBrokenPipe();
    } catch (const velmarhost::Interrupted &interrupted) {
        velmarhost::EndAsSignaled(interrupted.signal());
    }
}
