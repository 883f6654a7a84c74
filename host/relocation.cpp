#include "host/relocation.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "host/file_url.h"
#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::string_view kStringTag = "string>";
constexpr std::string_view kBlanks = " \t\r\n";

// Both operations below look at the file as pieces that each begin behind a "<": "key>Location", "/key>",
// "string>file://localhost/...". This watch tells which piece holds the text that belongs to one key.
class KeyWatch {
  public:
    explicit KeyWatch(std::string_view key) : key_piece_("key>" + std::string(key)) {}

    bool IsValue(std::string_view piece) {
        const State state = state_;
        state_ = State::kElsewhere;
        if (piece == key_piece_) {
            state_ = State::kInKey;
        } else if (state == State::kInKey && StripCharacters(piece, kBlanks) == "/key>") {
            state_ = State::kBehindKey;
        }
        return state == State::kBehindKey && piece.starts_with(kStringTag);
    }

  private:
    enum class State { kElsewhere, kInKey, kBehindKey };

    std::string key_piece_;
    State state_ = State::kElsewhere;
};

std::string WithoutFinalSlashes(std::string path) {
    while (path.ends_with('/'))
        path.pop_back();
    return path;
}

char LowerAscii(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

// Both systems that a library comes from take no notice of letter case, and neither did the program that
// wrote it.
bool StartsWithFolder(std::string_view path, std::string_view folder) {
    if (path.size() <= folder.size() || path[folder.size()] != '/') return false;
    return std::equal(folder.begin(), folder.end(), path.begin(),
                      [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

}  // namespace

std::optional<std::string> FindMusicFolder(std::istream &library) {
    KeyWatch watch("Music Folder");
    std::string piece;
    while (std::getline(library, piece, '<')) {
        if (!watch.IsValue(piece)) continue;
        std::optional<std::string> folder = DecodeFileUrl(piece.substr(kStringTag.size()));
        if (folder) folder = WithoutFinalSlashes(*std::move(folder));
        return folder;
    }
    return std::nullopt;
}

std::optional<std::string> RelocateLocation(const Relocation &relocation, std::string_view xml_text) {
    const std::optional<std::string> path = DecodeFileUrl(xml_text);
    if (!path || !StartsWithFolder(*path, relocation.old_folder)) return std::nullopt;
    const std::string rest = path->substr(relocation.old_folder.size());
    const std::string entry = rest.substr(1, rest.find('/', 1) - 1);
    const bool exception = relocation.exceptions.contains(entry);
    return EncodeFileUrl((exception ? relocation.exception_folder : relocation.new_folder) + rest);
}

std::size_t CopyRelocated(const Relocation &relocation, std::istream &library, std::ostream &copy) {
    KeyWatch watch("Location");
    std::size_t changed = 0;
    std::string piece;
    while (std::getline(library, piece, '<')) {
        if (watch.IsValue(piece)) {
            const auto value = std::string_view(piece).substr(kStringTag.size());
            if (const auto relocated = RelocateLocation(relocation, value)) {
                piece = std::string(kStringTag) + *relocated;
                ++changed;
            }
        }
        copy.write(piece.data(), static_cast<std::streamsize>(piece.size()));
        if (!library.eof()) copy.put('<');
    }
    return changed;
}

}  // namespace velmarhost
