#ifndef HOST_PRIVATE_ENVIRONMENT_H
#define HOST_PRIVATE_ENVIRONMENT_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/cleanup.h"

namespace velmarhost {

// The folder of the media folder that iTunes takes new files from; in English, and others are known too.
inline constexpr const char *kAddFolderName = "Automatically Add to iTunes";

// Which library to open. Empty texts stand for what the environment of the user says.
struct LibraryChoice {
    std::filesystem::path library;    // a library file, opened as if it were the only one on the machine
    std::filesystem::path media;      // where the media folder of that library is now
    std::vector<std::string> drives;  // "C:=folder"
    bool add_files = false;           // the media folder is to be written to: what is added stays there
};

// What the driver takes for the user's machine, for as long as this object lives: a private folder that holds
// the driver's temporary files and, for a library of the user's choice, a preference file, a media folder of
// links, an empty add folder and the drives. Nothing of the user's own is written to, except where files are
// to be added: then the add folder is a link to the real one. The environment variables of the process point
// there.
//
//   temp/                                         TEMP
//   preferences/Apple Computer/iTunes/...         APPDATA
//   library/iTunes Library.xml                    a link, or a copy with relocated media
//   media/Automatically Add to iTunes/            beside links to the entries of the real media folder
//   music/iTunes/                                 the user's music folder, so that no other library is found
//   settings/user-dirs.dirs                       XDG_CONFIG_HOME, names the music folder
//   windows/dosdevices/c:                         WINEPREFIX
class PrivateEnvironment {
  public:
    // Throws HostError with code kUsage or kLibrary.
    explicit PrivateEnvironment(const LibraryChoice &choice);

    // A location as the user knows it: one inside a private folder of links is told as one in the real
    // folder.
    std::string TellLocation(std::string_view location) const;

  private:
    std::filesystem::path root() const { return folder_.path(); }
    void UseLibrary(const LibraryChoice &choice);
    void LinkMedia();
    void LinkAddFolder();
    void PlaceLibrary(const std::filesystem::path &library);
    void PlaceXml(const std::filesystem::path &library, const std::filesystem::path &target) const;
    void UseDrives(const std::vector<std::string> &drives);

    ScratchPath folder_;
    std::filesystem::path media_;              // the real media folder; empty without one
    std::vector<std::string> unlinked_media_;  // its entries that are not linked
    // Private folders that show a real one, with that one.
    std::vector<std::pair<std::filesystem::path, std::filesystem::path>> shown_folders_;
};

}  // namespace velmarhost

#endif
