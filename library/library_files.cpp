#include "library/library_files.h"

#include "content/path_text.h"
#include "driver/driver_log.h"
#include "driver/limit_log.h"
#include "library/list_reading.h"
#include "library/my_music.h"
#include "library/preferences.h"
#include "platform/windows/text.h"

namespace {

constexpr int32_t kNoLibraryFile = -999;

// Paths of the user's media are logged in the code page of the system, as iTunes names them there.
std::string AnsiOf(const std::string &text) {
    return AnsiFromWide(Utf8ToWide(text));
}

// Empty without a My Music folder: the default files do not exist then.
std::string InMyMusic(const wchar_t *name) {
    const auto folder = MyMusicFolder();
    return folder ? WideToUtf8(*folder + name) : std::string();
}

std::string XmlPath(const LibraryPreferences &preferences) {
    if (preferences.xml_path) {
        WriteDriverLog("iTunes Library XML: %s", AnsiOf(*preferences.xml_path).c_str());
        return *preferences.xml_path;
    }
    std::string path = InMyMusic(L"\\iTunes\\iTunes Music Library.xml");
    WriteDriverLog("Default iTunes Library XML: %s", AnsiOf(path).c_str());
    return path;
}

int32_t OpenParser(LibraryDriver *driver) {
    const LimitLog limit_log(driver->itl_path);
    auto parser = std::make_unique<ITLParser>(driver->itl_path.c_str());
    if (!parser->isValid()) {
        WriteDriverLog("Open iTunes Library file error!");
        return kNoLibraryFile;
    }
    driver->parser = std::move(parser);
    return 0;
}

}  // namespace

int32_t LoadLibraryFiles(LibraryDriver *driver) {
    const LibraryPreferences preferences = ReadLibraryPreferences();
    driver->add_folder = preferences.media_folder;
    if (driver->add_folder) WriteDriverLog("iTunes Music Folder: %s", AnsiOf(*driver->add_folder).c_str());
    driver->xml_path = XmlPath(preferences);
    driver->itl_path = InMyMusic(L"\\iTunes\\iTunes Library.itl");
    const size_t end = driver->xml_path.rfind('\\');
    // Without a folder of the library no artwork is looked for.
    driver->library_folder = end == std::string::npos ? std::string() : driver->xml_path.substr(0, end);
    driver->library_plist = ReadLibraryList(driver);
    return driver->library_plist ? 0 : OpenParser(driver);
}
