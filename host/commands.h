#ifndef HOST_COMMANDS_H
#define HOST_COMMANDS_H

#include "host/host_error.h"
#include "host/library_session.h"
#include "host/options.h"
#include "host/output.h"

namespace velmarhost {

// One function for each command. They write results to `output`, which the caller flushes, and throw
// HostError.
ExitCode RunTree(const Options &options, LibrarySession &session, Output &output);
ExitCode RunLs(const Options &options, LibrarySession &session, Output &output);
ExitCode RunStat(const Options &options, LibrarySession &session, Output &output);
ExitCode RunCat(const Options &options, LibrarySession &session, Output &output);
ExitCode RunThumb(const Options &options, LibrarySession &session, Output &output);
ExitCode RunGet(const Options &options, LibrarySession &session, Output &output);
// Throws Interrupted too, when a signal stopped the copies.
ExitCode RunAdd(const Options &options, LibrarySession &session, Output &output);

}  // namespace velmarhost

#endif
