#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/commands.h"
#include "host/suggestion.h"

namespace velmarhost {
namespace {

constexpr int32_t kChunkBytes = 256 * 1024;

HostError CannotOpen(const LibrarySession &session, const std::string &path, const Node &node,
                     const StreamFailure &failure) {
    std::string text = "\"" + path + "\" ";
    if (!node.IsFile()) {
        text += "is a folder. See what is in it with: velmarhost ls \"" + path + "\"";
    } else if (node.Attribute("location").empty()) {
        text += "has no file on this machine: the library does not say where one is";
    } else {
        text += "could not be opened. The library says that it is \"" + session.Location(node) + "\"";
    }
    if (node.IsFile() && !failure.last_words.empty()) text += " (" + failure.last_words + ")";
    return {ExitCode::kIncomplete, text};
}

void WriteStream(MediaStream &stream, int64_t length, const std::string &path, Output &output) {
    std::vector<char> buffer(kChunkBytes);
    while (length > 0) {
        const auto wanted = static_cast<int32_t>(std::min<int64_t>(length, kChunkBytes));
        const int32_t count = stream.Read(buffer.data(), wanted);
        if (count == 0) return;
        if (count < 0 || count > wanted) {
            throw HostError(ExitCode::kIncomplete, "\"" + path + "\" could not be read to its end.");
        }
        output.Raw(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
        length -= count;
    }
}

}  // namespace

ExitCode RunCat(const Options &options, LibrarySession &session, Output &output) {
    const std::string &path = options.paths.front();
    const Node node = OpenOrExplain(session, path);
    StreamFailure failure;
    const std::unique_ptr<MediaStream> stream = session.OpenStream(path, failure);
    if (!stream) throw CannotOpen(session, path, node, failure);
    // A whole file takes any position, and the first read behind its end finds nothing; a thumbnail refuses.
    if (options.offset != 0 && !stream->SeekFromStart(options.offset)) return ExitCode::kOk;
    WriteStream(*stream, options.length.value_or(std::numeric_limits<int64_t>::max()), path, output);
    return ExitCode::kOk;
}

}  // namespace velmarhost
