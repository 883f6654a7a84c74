#ifndef TESTS_SUPPORT_PREFERENCE_FILE_H
#define TESTS_SUPPORT_PREFERENCE_FILE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The preferences of iTunes, as far as the driver reads them. What is empty is left out of the file.
struct PreferenceFile {
    // Windows paths, "\music\iTunes Media"; see BackslashPath.
    std::optional<std::string> media_folder;
    std::optional<std::string> library_xml;
    // The opaque block: its length in bytes, and the byte that the driver sets where the block reaches that
    // far.
    std::optional<std::size_t> block_length;
    char flag_byte = 1;

    std::string Xml() const;
    // Writes the file where the driver looks for it under this folder, the value of APPDATA, and gives its
    // path.
    std::filesystem::path WriteUnder(const std::filesystem::path &app_data) const;
};

// The index of the flag byte in the opaque block.
inline constexpr std::size_t kPreferenceFlagIndex = 14479;

// An absolute path of this system as the preferences hold it: with backslashes, which are what the driver
// looks for when it cuts a folder off.
std::string BackslashPath(const std::filesystem::path &path);

// UTF-16LE without mark and terminator. Throws std::invalid_argument for text that is not UTF-8.
std::string Utf16Bytes(std::string_view utf8);

#endif
