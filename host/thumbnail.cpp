#include "host/thumbnail.h"

#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "host/host_error.h"
#include "host/suggestion.h"

namespace velmarhost {
namespace {

constexpr int32_t kThumbnailCategory = 4;
constexpr int32_t kChunkBytes = 256 * 1024;

HostError CannotRead(const std::string &path, const std::string &text) {
    return {ExitCode::kIncomplete, "\"" + path + "\" " + text};
}

std::string_view LastName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool HasChild(const Node &node, std::string_view name) {
    for (std::size_t i = 0; i < node.ChildCount(); ++i) {
        if (node.ChildName(i) == name) return true;
    }
    return false;
}

std::string ChildNames(const Node &node) {
    std::string names;
    for (std::size_t i = 0; i < node.ChildCount(); ++i)
        names += (i > 0 ? ", " : "") + std::string(node.ChildName(i));
    return names;
}

// `thumbs` is the "thumb" node at `path`. Its children are there, as the walk to it has made them.
std::string ChooseThumbnail(const LibrarySession &session, const Node &thumbs, const std::string &path,
                            std::optional<ThumbnailSize> size) {
    constexpr std::array kFromLargest = {ThumbnailSize::kLarge, ThumbnailSize::kMiddle,
                                         ThumbnailSize::kSmall};
    for (const ThumbnailSize candidate : kFromLargest) {
        const std::string_view name = ThumbnailName(candidate);
        if ((!size || *size == candidate) && HasChild(thumbs, name)) return path + "/" + std::string(name);
    }
    if (thumbs.ChildCount() > 0) {
        throw CannotRead(path, "has no picture of that size. There is: " + ChildNames(thumbs));
    }
    throw CannotRead(path, "holds no picture that could be read. It should come from \"" +
                               session.Location(thumbs) + "\"");
}

std::string FindThumbnail(const LibrarySession &session, const std::string &path,
                          std::optional<ThumbnailSize> size) {
    const Node node = OpenOrExplain(session, path);
    if (node.category() == kThumbnailCategory) {
        if (!node.IsFile()) return ChooseThumbnail(session, node, path, size);
        if (!size || LastName(path) == ThumbnailName(*size)) return path;
        throw HostError(ExitCode::kUsage, "\"" + path + "\" names one size already. Leave --size out.");
    }
    if (!node.IsFile()) {
        throw CannotRead(path, "is a folder, and only files have pictures. See what is in it with: " +
                                   std::string("velmarhost ls -l \"") + path + "\"");
    }
    const std::string folder = path + "/thumb";
    const std::optional<Node> thumbs = session.Open(folder);
    if (!thumbs) throw CannotRead(path, "has no picture. velmarhost ls -l marks files that have one with *");
    return ChooseThumbnail(session, *thumbs, folder, size);
}

// The stream of an icon that the application turns out not to hold is the application itself, of any length.
void RefuseApplication(const std::string &path, std::string_view bytes) {
    constexpr std::string_view kZipMagic = "PK\x03\x04";
    if (bytes.starts_with(kZipMagic)) throw CannotRead(path, "could not be had from its application");
}

std::string ReadAll(MediaStream &stream, const std::string &path) {
    std::vector<char> buffer(kChunkBytes);
    std::string bytes;
    while (bytes.size() <= kMostPictureBytes) {
        const int32_t count = stream.Read(buffer.data(), kChunkBytes);
        if (count == 0) return bytes;
        if (count < 0 || count > kChunkBytes) throw CannotRead(path, "could not be read to its end");
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
        RefuseApplication(path, bytes);
    }
    throw CannotRead(path, "is too large for a picture. velmarhost cat gives its bytes");
}

void CheckLength(const Node &node, const Picture &picture) {
    const int64_t told = node.NumberAttribute("st_size").value_or(0);
    if (picture.bytes.empty()) throw CannotRead(picture.path, "is empty");
    if (static_cast<int64_t>(picture.bytes.size()) >= told) return;
    throw CannotRead(picture.path, "is cut short: it has " + std::to_string(picture.bytes.size()) + " of " +
                                       std::to_string(told) + " bytes. velmarhost cat gives what is there");
}

}  // namespace

std::string_view ThumbnailName(ThumbnailSize size) {
    constexpr std::array<std::string_view, 3> kNames = {"small", "middle", "large"};
    return kNames[static_cast<std::size_t>(size)];
}

bool HasThumbnail(const Node &node) {
    return node.Attribute("media_has_thumb") == "true";
}

Picture ReadThumbnail(LibrarySession &session, const std::string &path, std::optional<ThumbnailSize> size) {
    Picture picture;
    picture.path = FindThumbnail(session, path, size);
    StreamFailure failure{};
    const std::unique_ptr<MediaStream> stream = session.OpenStream(picture.path, failure);
    if (!stream) throw CannotRead(picture.path, "could not be opened (" + failure.last_words + ")");
    picture.bytes = ReadAll(*stream, picture.path);
    // Only the first open of an icon's stream tells its size, so the attributes are read behind it.
    const Node node = OpenOrExplain(session, picture.path);
    picture.type = node.Attribute("thumb_type");
    picture.width = node.NumberAttribute("width");
    picture.height = node.NumberAttribute("height");
    CheckLength(node, picture);
    return picture;
}

}  // namespace velmarhost
