#include "host/library_session.h"

#include "host/host_error.h"
#include "host/library_failure.h"
#include "host/text.h"

namespace velmarhost {
MediaStream::~MediaStream() {
    driver_->close_stream(stream_);
}

int32_t MediaStream::Read(char *buffer, int32_t size) {
    return driver_->read_stream(stream_, buffer, size);
}

bool MediaStream::SeekFromStart(int64_t offset) {
    return driver_->seek_stream(stream_, offset, 0) == 0;
}

LibrarySession::LibrarySession(const std::string &driver_file, const LibraryChoice &choice, bool show_log)
    : log_(show_log), driver_(LoadDriverModule(driver_file)), environment_(choice) {
    const int32_t result = driver_.initialize(nullptr, nullptr, 0, &library_);
    if (result != 0) throw HostError(ExitCode::kLibrary, ExplainLibraryFailure(choice, log_, result));
}

LibrarySession::~LibrarySession() {
    driver_.uninitialize(library_);
}

std::optional<Node> LibrarySession::Open(const std::string &path) const {
    DriverPath *handle = nullptr;
    if (driver_.open_path(library_, 0, path.c_str(), &handle) != 0 || handle == nullptr) return std::nullopt;
    return std::make_optional<Node>(driver_, handle);
}

std::unique_ptr<MediaStream> LibrarySession::OpenStream(const std::string &path, StreamFailure &failure) {
    log_.Clear();
    DriverStream *stream = nullptr;
    const int32_t result = driver_.open_stream(library_, 0, path.c_str(), &stream);
    if (result == 0 && stream != nullptr) return std::make_unique<MediaStream>(driver_, stream);
    failure = {result, log_.LastWords()};
    return nullptr;
}

void LibrarySession::StartCopies(CopyProgressCallback progress, void *context, int32_t chunk_bytes) {
    driver_.start_copy(library_, 0, progress, context, chunk_bytes);
}

int32_t LibrarySession::Copy(const std::string &path, const CopySourceInfo &source, std::string &last_words) {
    log_.Clear();
    const int32_t result = driver_.copy_path(library_, 0, path.c_str(), &source);
    last_words = log_.LastWords();
    return result;
}

void LibrarySession::FinishCopies() {
    driver_.finish_copy(library_, 0);
}

std::string LibrarySession::Location(const Node &node) const {
    return environment_.TellLocation(node.Attribute("location"));
}

std::vector<std::pair<std::string, std::string>> LibrarySession::Attributes(const Node &node) const {
    std::vector<std::pair<std::string, std::string>> attributes;
    for (const auto &[key, value] : node.Attributes()) {
        attributes.emplace_back(key,
                                key == "location" ? environment_.TellLocation(value) : std::string(value));
    }
    return attributes;
}

std::string CleanPath(std::string_view path) {
    return std::string(StripCharacters(path, "/"));
}

}  // namespace velmarhost
