#include "host/library_file.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <string_view>

#include "host/host_error.h"
#include "host/text.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHeadBytes = 512;

[[noreturn]] void Refuse(const fs::path &file, const std::string &words) {
    throw HostError(ExitCode::kLibrary, "\"" + file.string() + "\" " + words);
}

[[noreturn]] void RefuseFolder(const fs::path &folder) {
    for (const char *name :
         {"iTunes Library.xml", "iTunes Music Library.xml", "Library.xml", "iTunes Library.itl"}) {
        std::error_code ignored;
        if (fs::is_regular_file(folder / name, ignored)) {
            Refuse(folder, "is a folder. Name the library file in it: --library \"" +
                               (folder / name).string() + "\"");
        }
    }
    Refuse(
        folder,
        "is a folder without a library file. Look for a file named \"iTunes Library.xml\" or \"iTunes Music "
        "Library.xml\" and name that.");
}

std::string ReadHead(const fs::path &file) {
    std::array<char, kHeadBytes> bytes{};
    std::ifstream stream(file, std::ios::binary);
    if (!stream) Refuse(file, "cannot be read. Check who may read it.");
    stream.read(bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(stream.gcount())};
}

bool StartsAsXml(std::string_view head) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (head.starts_with(kByteOrderMark)) head.remove_prefix(kByteOrderMark.size());
    const std::string_view text = head.substr(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
    return text.starts_with("<?xml") || text.starts_with("<!") || text.starts_with("<plist");
}

bool StartsAsOtherPlist(std::string_view head) {
    return head.starts_with("bplist") || head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF");
}

}  // namespace

LibraryFormat ExamineLibraryFile(const fs::path &file) {
    std::error_code ignored;
    if (!fs::exists(file, ignored)) Refuse(file, "does not exist. Check the name that follows --library.");
    if (fs::is_directory(file, ignored)) RefuseFolder(file);
    const std::string head = ReadHead(file);
    if (head.starts_with("\x1F\x8B")) Refuse(file, "is packed. Unpack it first with: gunzip --keep FILE");
    if (head.starts_with("PK"))
        Refuse(file, "is a zip archive. Unpack it first and name the library file in it.");
    if (StartsAsXml(head)) return LibraryFormat::kXml;
    if (StartsAsOtherPlist(head)) return LibraryFormat::kOtherPlist;
    if (head.starts_with("hdfm")) return LibraryFormat::kItl;
    Refuse(
        file,
        "is no iTunes library: neither a property list nor an .itl file. In iTunes, File > Library > Export "
        "Library writes one.");
}

}  // namespace velmarhost
