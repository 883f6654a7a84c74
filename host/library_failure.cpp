#include "host/library_failure.h"

#include "host/library_file.h"

namespace velmarhost {
namespace {

// What the driver logs of the XML file that it tries first.
constexpr std::string_view kXmlLine = "iTunes Library XML: ";

constexpr const char *kTick =
    "iTunes writes the library as XML, newer versions only while \"Share iTunes Library XML with other "
    "applications\" is ticked in its Preferences > Advanced";

std::string OwnLibrary(const DriverLog &log) {
    std::string text = "no iTunes library could be read for this user. Looked for the XML file";
    if (const std::string xml = log.TextBehind(kXmlLine); !xml.empty()) text += " \"" + xml + "\"";
    return text + " and for \"iTunes\\iTunes Library.itl\" in the music folder. " + kTick +
           ". A library in another place is opened with --library FILE.";
}

std::string NamedLibrary(const std::filesystem::path &file) {
    const std::string name = "\"" + file.string() + "\"";
    if (ExamineLibraryFile(file) != LibraryFormat::kItl)
        return name + " could not be opened as an iTunes library.";
    return name +
           " could not be read: it is damaged or cut short, or written by a version of iTunes that is " +
           "not known here. " + kTick + ": name that file instead.";
}

std::string WithoutAddFolder() {
    return std::string("the media folder of the library has no folder \"") + kAddFolderName +
           "\". Start iTunes once, which makes it, or make it yourself.";
}

// What is wrong, and what to do next.
std::string Advice(const LibraryChoice &choice, const DriverLog &log) {
    if (log.LastWords().find(kAddFolderName) != std::string::npos) return WithoutAddFolder();
    return choice.library.empty() ? OwnLibrary(log) : NamedLibrary(choice.library);
}

}  // namespace

std::string ExplainLibraryFailure(const LibraryChoice &choice, const DriverLog &log, int32_t result) {
    std::string text = Advice(choice, log);
    text += " (The driver gave " + std::to_string(result);
    if (const std::string words = log.LastWords(); !words.empty()) text += ": " + words;
    return text + ". -v shows all that it said.)";
}

}  // namespace velmarhost
