#ifndef HOST_LIBRARY_SESSION_H
#define HOST_LIBRARY_SESSION_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/driver_log.h"
#include "host/driver_module.h"
#include "host/node.h"
#include "host/private_environment.h"

namespace velmarhost {

// An open file of the library; closed at the end of the scope.
class MediaStream {
  public:
    MediaStream(const DriverModule &driver, DriverStream *stream) : driver_(&driver), stream_(stream) {}
    ~MediaStream();
    MediaStream(const MediaStream &) = delete;
    MediaStream &operator=(const MediaStream &) = delete;

    // Fills up to `size` bytes and gives their number: 0 at the end, negative for a failure.
    int32_t Read(char *buffer, int32_t size);
    // False when the position lies outside the file.
    bool SeekFromStart(int64_t offset);

  private:
    const DriverModule *driver_;
    DriverStream *stream_;
};

// What a stream could not be opened for.
struct StreamFailure {
    int32_t result;          // the driver's
    std::string last_words;  // of its log
};

// One opened library: the driver, its environment and its log.
class LibrarySession {
  public:
    // Blocks until the whole library is loaded. Throws HostError.
    LibrarySession(const std::string &driver_file, const LibraryChoice &choice, bool show_log);
    ~LibrarySession();
    LibrarySession(const LibrarySession &) = delete;
    LibrarySession &operator=(const LibrarySession &) = delete;

    // Empty when nothing has this path.
    std::optional<Node> Open(const std::string &path) const;
    // Null on failure, and then `failure` is filled.
    std::unique_ptr<MediaStream> OpenStream(const std::string &path, StreamFailure &failure);

    // A batch of copies into iTunes, as the exports of the driver offer it. `progress` is called on this
    // thread, within Copy.
    void StartCopies(CopyProgressCallback progress, void *context, int32_t chunk_bytes);
    // The driver's result; `last_words` is what it logged meanwhile.
    int32_t Copy(const std::string &path, const CopySourceInfo &source, std::string &last_words);
    // Blocks for a second or more. Nodes that are open stay valid; what they show may be out of date.
    void FinishCopies();

    // The attributes of a node as a user wants to see them.
    std::string Location(const Node &node) const;
    std::string Location(std::string_view location) const { return environment_.TellLocation(location); }
    std::vector<std::pair<std::string, std::string>> Attributes(const Node &node) const;

  private:
    // In the order of their life: the log outlasts all calls, the environment outlasts the library.
    DriverLog log_;
    DriverModule driver_;
    PrivateEnvironment environment_;
    LibraryDriver *library_ = nullptr;
};

// The path without separators at its ends, which a user may well type.
std::string CleanPath(std::string_view path);

}  // namespace velmarhost

#endif
