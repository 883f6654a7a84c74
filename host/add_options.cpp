#include "host/add_options.h"

#include <algorithm>
#include <filesystem>
#include <string>

#include "host/added_kinds.h"
#include "host/host_error.h"
#include "host/library_session.h"
#include "host/system.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const std::string &words) {
    throw HostError(ExitCode::kUsage, words);
}

bool IsInLibraryFolder(const std::string &path) {
    return path == "library" || path.starts_with("library/");
}

void CheckName(const Options &options) {
    const bool input = std::find(options.paths.begin(), options.paths.end(), "-") != options.paths.end();
    if (options.add_name.empty()) {
        if (input) Refuse("standard input has no name. Give it one, such as --name \"Song.mp3\".");
        return;
    }
    std::error_code ignored;
    if (options.paths.size() > 1 || fs::is_directory(options.paths.front(), ignored))
        Refuse("--name is for a single FILE, and for no folder.");
    if (!TreePathOfKind(options.add_name)) {
        Refuse("--name: \"" + options.add_name +
               "\" ends in no extension that iTunes takes, such as .mp3. See velmarhost add --help");
    }
    if (input && !options.dry_run && IsTerminal(Stream::kInput))
        Refuse("standard input is a terminal. Lead a file or a pipe into it.");
}

}  // namespace

void CompleteAddOptions(Options &options) {
    options.library.add_files = true;
    options.add_to = CleanPath(options.add_to);
    if (!options.library.library.empty() && options.library.media.empty()) {
        Refuse(
            "a library that is opened with --library has no folder to add files to: they would be lost. Name "
            "its "
            "media folder with --media DIR.");
    }
    if (!options.add_to.empty() && !IsInLibraryFolder(options.add_to)) {
        Refuse("--to: files are added to the library alone, such as library/music, not to \"" +
               options.add_to + "\". iTunes puts them into lists.");
    }
    CheckName(options);
}

}  // namespace velmarhost
