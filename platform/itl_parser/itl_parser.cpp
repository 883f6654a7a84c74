#include "platform/itl_parser/itl_parser.h"

#include <cstdio>

#include "platform/itl_parser/library_content.h"
#include "platform/itl_parser/library_reader.h"
#include "platform/windows/file_handle.h"

namespace {

using itl_parser::LibraryContent;

class FileSource : public core_foundation::ByteSource {
  public:
    explicit FileSource(const char *path) : file_(path, L"rb") {
        // Whoever reads asks for large pieces.
        if (file_) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
    }

    // Negative when there is no such file. Goes back to its start.
    int64_t Length() {
        if (!file_ || _fseeki64(file_.get(), 0, SEEK_END) != 0) return -1;
        const int64_t length = _ftelli64(file_.get());
        return _fseeki64(file_.get(), 0, SEEK_SET) == 0 ? length : -1;
    }

    std::optional<size_t> Read(char *buffer, size_t size) override {
        const size_t count = std::fread(buffer, 1, size, file_.get());
        return count < size && std::ferror(file_.get()) != 0 ? std::nullopt : std::make_optional(count);
    }

  private:
    FileHandle file_;
};

bool ReadFile(const char *path, LibraryContent &content) {
    FileSource file(path);
    const int64_t length = file.Length();
    return length >= 0 && itl_parser::ReadLibrary(file, static_cast<uint64_t>(length), content);
}

}  // namespace

ITLParser::ITLParser(const char *path) : content_(std::make_unique<LibraryContent>()) {
    valid_ = ReadFile(path, *content_);
    if (!valid_) content_ = std::make_unique<LibraryContent>();
}

ITLParser::~ITLParser() = default;

const std::string &ITLParser::persistentId() const {
    return content_->persistent_id;
}

const std::string &ITLParser::iTunesVersion() const {
    return content_->version;
}

const std::vector<Track *> &ITLParser::tracks() const {
    return content_->tracks;
}

const std::vector<Playlist *> &ITLParser::playlists() const {
    return content_->playlists;
}
