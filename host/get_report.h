#ifndef HOST_GET_REPORT_H
#define HOST_GET_REPORT_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_error.h"

namespace velmarhost {

// Counts what became of the files of one get, and tells it in a few lines: the reasons grouped, each with a
// few examples.
class GetReport {
  public:
    void AddGot(uint64_t bytes);
    void AddAlreadyThere() { ++already_there_; }
    // A file whose place in the library is known, but that could not be opened there. Such files are grouped
    // by the folder that they have in common.
    void AddNotFound(const std::string &path, const std::string &location);
    // Pictures beside the files. One that cannot be had is told and is no failure: the file itself is there.
    void AddCover() { ++covers_got_; }
    void AddCoverAlreadyThere() { ++covers_already_there_; }
    void AddCoverLost(const std::string &reason) { covers_lost_.push_back(reason); }
    // Any other reason; `reason` completes a sentence that begins with a number of files.
    void AddProblem(const std::string &reason, const std::string &path);

    ExitCode Result() const {
        return problems_.empty() && lost_.empty() ? ExitCode::kOk : ExitCode::kIncomplete;
    }
    // The lines of the summary, with one about covers if there is anything to tell of them. With `all_paths`
    // every path is named.
    std::vector<std::string> Lines(bool all_paths) const;

  private:
    void AppendCovers(bool all, std::vector<std::string> &lines) const;

    struct Group {
        std::vector<std::string> paths;
        std::string common_folder;
    };

    std::size_t got_ = 0;
    std::size_t already_there_ = 0;
    uint64_t bytes_ = 0;
    std::size_t covers_got_ = 0;
    std::size_t covers_already_there_ = 0;
    std::vector<std::string> covers_lost_;   // sentences
    std::map<std::string, Group> problems_;  // by reason
    std::map<std::string, Group> lost_;      // by the first component of the location
};

// The folder that both paths lie in or name, at either separator.
std::string CommonFolder(std::string_view a, std::string_view b);

}  // namespace velmarhost

#endif
