#include "driver/unique_file.h"

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "content/glib_owner.h"
#include "content/path_text.h"
#include "driver/text_index.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr uint32_t kNumberLimit = 1000000;

// So many names are tried one by one before the folder is read as a whole.
constexpr uint32_t kFewNumbers = 16;

enum class Probe { kFree, kTaken, kFailed };

struct NumberedName {
    std::wstring stem;
    std::wstring extension;  // from the last dot of the path on, empty without one

    std::wstring With(uint32_t number) const { return stem + std::to_wstring(number) + extension; }
};

NumberedName SplitName(const std::wstring &path) {
    const size_t dot = std::min(path.rfind(L'.'), path.size());
    return {path.substr(0, dot), path.substr(dot)};
}

// The number between a stem and an extension, in plain decimal; 0 for a name of another form.
uint32_t NumberIn(std::string_view name, std::string_view stem, std::string_view extension) {
    if (name.size() <= stem.size() + extension.size()) return 0;
    const std::string_view digits = name.substr(stem.size(), name.size() - stem.size() - extension.size());
    if (digits.front() == '0' || !EqualFolded(name.substr(0, stem.size()), stem) ||
        !EqualFolded(name.substr(name.size() - extension.size()), extension))
        return 0;
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool is_plain = error == std::errc() && end == digits.data() + digits.size();
    return is_plain && number < kNumberLimit ? number : 0;
}

// Numbers that are surely taken, by one look at the folder. A name that the system takes for the same though
// it is spelled otherwise is not among them; the walk meets that one itself.
std::vector<bool> TakenNumbers(const NumberedName &name) {
    std::vector<bool> taken(kNumberLimit);
    const std::string stem = WideToUtf8(name.stem);
    const std::string extension = WideToUtf8(name.extension);
    const std::string folder = DirectoryOfPath(stem).value_or("");
    const std::string_view stem_name = std::string_view(stem).substr(folder.size() + 1);
    const GDirOwner directory(g_dir_open(NativePath(folder).c_str(), 0, nullptr));
    while (const char *entry = directory ? g_dir_read_name(directory.get()) : nullptr)
        taken[NumberIn(entry, stem_name, extension)] = true;
    return taken;
}

// The first name that `probe` finds free. What counts is the state of the folder at this call: a number that
// was taken at the last copy may be free again, so nothing is kept between two calls. Instead of one question
// to the system for each taken number, which would make the ten-thousandth copy of a name cost ten thousand,
// the folder is read once; only numbers that were not seen there are asked for. Behind a probe that makes a
// file no memory is needed.
template <typename Prober>
std::optional<std::wstring> FirstFreeName(std::wstring path, Prober probe) {
    Probe outcome = probe(path);
    if (outcome == Probe::kFree) return path;
    const NumberedName name = SplitName(path);
    if (name.stem.find(L'\\') == std::wstring::npos) return std::nullopt;
    std::vector<bool> seen;
    for (uint32_t number = 1; number < kNumberLimit && outcome == Probe::kTaken; ++number) {
        if (number == kFewNumbers) seen = TakenNumbers(name);
        if (!seen.empty() && seen[number]) continue;
        std::wstring candidate = name.With(number);
        outcome = probe(candidate);
        if (outcome == Probe::kFree) return candidate;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::wstring> UniqueFileName(const std::wstring &path) {
    return FirstFreeName(path, [](const std::wstring &candidate) {
        if (_waccess(candidate.c_str(), 0) == 0) return Probe::kTaken;
        return errno == ENOENT ? Probe::kFree : Probe::kFailed;
    });
}

std::optional<UniqueFile> CreateUniqueFile(const std::wstring &path) {
    UniqueFile file;
    // The question whether a name is free and the making of the file are one step of the system.
    const auto found = FirstFreeName(path, [&file](const std::wstring &candidate) {
        file.handle = FileHandle(candidate, L"wbx");
        if (file.handle) return Probe::kFree;
        return errno == EEXIST ? Probe::kTaken : Probe::kFailed;
    });
    if (!found) return std::nullopt;
    file.path = std::move(*found);
    return file;
}
