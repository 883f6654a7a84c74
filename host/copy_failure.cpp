#include "host/copy_failure.h"

#include <cerrno>
#include <cstring>

#include "host/file_owner.h"
#include "host/text.h"

namespace velmarhost {
namespace {

// The driver tells that it cannot open a source, and not why.
std::string WhyNotOpened(const PlannedCopy &copy) {
    const FileOwner file = OpenToRead(copy.file);
    return file ? "cannot be opened by the driver" : OpenFailure(errno);
}

// The path that the driver names in its log; empty without one.
std::string QuotedPath(const std::string &words) {
    const std::size_t begin = words.find('"');
    const std::size_t end = words.rfind('"');
    return begin < end && end != std::string::npos ? words.substr(begin + 1, end - begin - 1) : std::string();
}

}  // namespace

std::string OpenFailure(int error) {
    return std::string("cannot be opened: ") + std::strerror(error);
}

std::string ExplainFailure(const LibrarySession &session, const PlannedCopy &copy,
                           const CopyOutcome &outcome) {
    switch (outcome.error) {
        case kNoSource:
            return WhyNotOpened(copy);
        case kTargetNotMade:
            return "the file \"" + session.Location(QuotedPath(outcome.last_words)) +
                   "\" could not be made. Check that its folder is there and that you may write to it, or "
                   "give "
                   "another name with --name";
        case kSourceEnded:
            return "ended after " + FormatSize(outcome.bytes) + " of " + FormatSize(copy.bytes) +
                   ". Add it again when nothing else writes to it";
        case kTargetFull:
            return "does not fit: the disk of the folder \"" + std::string(kAddFolderName) +
                   "\" is full. Make room and add it again";
        default:
            return "was refused by the driver" +
                   (outcome.last_words.empty() ? std::string() : ": " + outcome.last_words);
    }
}

}  // namespace velmarhost
