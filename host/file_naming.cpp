#include "host/file_naming.h"

#include <algorithm>
#include <array>

#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::size_t kLongestExtension = 12;  // with its dot
constexpr std::string_view kForbidden = "<>:\"/\\|?*";

bool IsPlainExtension(std::string_view extension) {
    if (extension.size() < 2 || extension.size() > kLongestExtension || extension[0] != '.') return false;
    return std::all_of(extension.begin() + 1, extension.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '-';
    });
}

std::string ReplaceForbidden(std::string_view text) {
    std::string safe;
    for (std::size_t i = 0; i < text.size();) {
        const DecodedCharacter character = DecodeUtf8(text, i);
        const bool forbidden =
            IsHarmful(character.code) || kForbidden.find(text[i]) != std::string_view::npos;
        safe += forbidden ? "_" : text.substr(i, character.length);
        i += character.length;
    }
    return safe;
}

// Names that Windows takes for devices, whatever follows their first dot.
bool IsDeviceName(std::string_view stem) {
    constexpr std::array<std::string_view, 6> kDevices = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    // The superscript digits count as well.
    constexpr std::array<std::string_view, 13> kPorts = {"0", "1", "2", "3", "4", "5", "6",
                                                         "7", "8", "9", "¹", "²", "³"};
    const std::string folded = FoldCase(StripCharacters(stem.substr(0, stem.find('.')), " "));
    if (std::find(kDevices.begin(), kDevices.end(), folded) != kDevices.end()) return true;
    if (!folded.starts_with("com") && !folded.starts_with("lpt")) return false;
    return std::find(kPorts.begin(), kPorts.end(), std::string_view(folded).substr(3)) != kPorts.end();
}

std::string_view StripEnd(std::string_view text) {
    while (text.ends_with('.') || text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

// The part of the stem that leaves room for the rest of the name.
std::string CutStem(const std::string &stem, std::size_t rest) {
    return std::string(StripEnd(CutAtCharacter(stem, kLongestFileName - rest)));
}

std::size_t ExtensionStart(std::string_view name) {
    return std::min(name.rfind('.'), name.size());
}

}  // namespace

FileName MakeSafe(FileName name) {
    if (!IsPlainExtension(name.extension)) {
        name.stem += name.extension;
        name.extension.clear();
    }
    std::string stem = ReplaceForbidden(StripCharacters(name.stem, " "));
    if (stem.starts_with('.')) stem[0] = '_';
    stem = CutStem(stem, name.extension.size());
    if (stem.empty() || IsDeviceName(stem)) stem = CutStem("_" + stem, name.extension.size());
    return {stem, name.extension};
}

std::string ExtensionOfPath(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::string_view file = separator == std::string_view::npos ? path : path.substr(separator + 1);
    const std::string_view extension = file.substr(ExtensionStart(file));
    return IsPlainExtension(extension) ? std::string(extension) : std::string();
}

FileName TitleFileName(const Node &node, std::string_view tree_name) {
    const std::string title = NodeTitle(node);
    if (title.empty()) return TreeFileName(tree_name);
    // The name in the tree has the extension too, but cut to four letters.
    const std::string_view location = node.Attribute("location");
    return {title, ExtensionOfPath(location.empty() ? tree_name : location)};
}

FileName TreeFileName(std::string_view tree_name) {
    const std::size_t dot = ExtensionStart(tree_name);
    return {std::string(tree_name.substr(0, dot)), std::string(tree_name.substr(dot))};
}

std::string FolderNames::Take(const FileName &wanted) {
    const FileName safe = MakeSafe(wanted);
    std::size_t &last_number = last_numbers_[FoldCase(safe.Whole())];
    if (last_number++ == 0) return safe.Whole();
    for (;; ++last_number) {
        const std::string number = " (" + std::to_string(last_number) + ")";
        const std::string stem = CutStem(safe.stem, number.size() + safe.extension.size());
        std::string numbered = stem + number + safe.extension;
        if (last_numbers_.try_emplace(FoldCase(numbered), 1).second) return numbered;
    }
}

bool FolderNames::TakeAll(const std::string &stem, std::span<const std::string_view> extensions) {
    const auto folded = [&stem](std::string_view extension) {
        return FoldCase(stem + std::string(extension));
    };
    const bool taken = std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return last_numbers_.contains(folded(extension));
    });
    if (taken) return false;
    for (const std::string_view extension : extensions)
        last_numbers_.emplace(folded(extension), 1);
    return true;
}

std::string FolderNames::TakeStem(const std::string &wanted, std::span<const std::string_view> extensions) {
    std::size_t longest = 0;
    for (const std::string_view extension : extensions)
        longest = std::max(longest, extension.size());
    std::size_t &last_number = last_stem_numbers_[FoldCase(wanted)];
    while (true) {
        ++last_number;
        const std::string number = last_number == 1 ? "" : " (" + std::to_string(last_number) + ")";
        std::string stem = CutStem(wanted, number.size() + longest) + number;
        if (TakeAll(stem, extensions)) return stem;
    }
}

}  // namespace velmarhost
