#include "host/private_environment.h"

#include <cstdlib>
#include <fstream>

#include "host/host_error.h"
#include "host/library_file.h"
#include "host/output.h"
#include "host/preference_file.h"
#include "host/relocation.h"
#include "host/system.h"
#include "host/text.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

constexpr const char *kDriveFolderName = "dosdevices";

void RequireFolder(const fs::path &folder, const std::string &option) {
    std::error_code ignored;
    if (fs::is_directory(folder, ignored)) return;
    throw HostError(ExitCode::kUsage,
                    option + ": \"" + folder.string() + "\" is no folder that can be read.");
}

void WriteTextFile(const fs::path &file, const std::string &text) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) throw HostError(ExitCode::kLibrary, "\"" + file.string() + "\" could not be written.");
}

// The driver takes any folder with such a name for the add folder, and merges several into one. It must not
// see the user's.
bool LooksLikeAddFolder(const fs::directory_entry &entry) {
    constexpr std::size_t kShortestName = 12;
    std::error_code ignored;
    const std::string name = entry.path().filename().string();
    return entry.is_directory(ignored) && name.find("iTunes") != std::string::npos &&
           CountCharacters(name) >= kShortestName;
}

// The real add folder of a media folder: one of the names that iTunes and its successor use in English, which
// end so on a Mac, or else the only one whose name may stand for it in another language.
fs::path FindAddFolder(const fs::path &media) {
    std::error_code ignored;
    for (const std::string name : {kAddFolderName, "Automatically Add to Music"}) {
        for (const char *ending : {"", ".localized"}) {
            const fs::path folder = media / (name + ending);
            if (fs::is_directory(folder, ignored)) return folder;
        }
    }
    std::vector<fs::path> candidates;
    for (const fs::directory_entry &entry : fs::directory_iterator(media)) {
        if (LooksLikeAddFolder(entry)) candidates.push_back(entry.path());
    }
    if (candidates.size() == 1) return candidates.front();
    throw HostError(ExitCode::kUsage, "--media: \"" + media.string() + "\" holds no folder \"" +
                                          kAddFolderName +
                                          "\" to add files to. Make one there, or name the media folder of a "
                                          "library that iTunes has opened.");
}

std::string ForwardSlashes(std::string_view path) {
    std::string text(path);
    for (char &character : text) {
        if (character == '\\') character = '/';
    }
    return text;
}

fs::path UserDriveFolder() {
    if (const char *prefix = std::getenv("WINEPREFIX"); prefix != nullptr && *prefix != '\0') {
        return fs::path(prefix) / kDriveFolderName;
    }
    const char *home = std::getenv("HOME");
    return fs::path(home != nullptr ? home : "/") / ".wine" / kDriveFolderName;
}

// "C:=folder" or "c=folder", as the link's name and what it leads to.
std::pair<std::string, fs::path> ParseDrive(const std::string &text) {
    const std::size_t equals = text.find('=');
    std::string drive = FoldCase(text.substr(0, equals));
    if (drive.size() == 1) drive += ':';
    const bool letter = drive.size() == 2 && drive[0] >= 'a' && drive[0] <= 'z' && drive[1] == ':';
    if (equals == std::string::npos || !letter) {
        throw HostError(
            ExitCode::kUsage,
            "--drive wants a letter and a folder, as in --drive C:=/mnt/old-disk, not \"" + text + "\".");
    }
    const fs::path folder = text.substr(equals + 1);
    RequireFolder(folder, "--drive");
    return {drive, fs::canonical(folder)};
}

}  // namespace

PrivateEnvironment::PrivateEnvironment(const LibraryChoice &choice) : folder_(MakePrivateFolder) {
    fs::create_directory(root() / "temp");
    SetEnvironment("TEMP", (root() / "temp").string());
    if (!choice.library.empty()) UseLibrary(choice);
    if (!choice.drives.empty()) UseDrives(choice.drives);
}

void PrivateEnvironment::UseLibrary(const LibraryChoice &choice) {
    fs::create_directories(root() / "library");
    fs::create_directories(root() / "music" / "iTunes");
    fs::create_directories(root() / "media");
    if (!choice.add_files) fs::create_directory(root() / "media" / kAddFolderName);
    if (!choice.media.empty()) {
        RequireFolder(choice.media, "--media");
        media_ = fs::canonical(choice.media);
        if (choice.add_files) LinkAddFolder();
        shown_folders_.emplace_back(root() / "media", media_);
        LinkMedia();
    }
    PlaceLibrary(choice.library);
    WriteTextFile(root() / "settings" / "user-dirs.dirs",
                  "XDG_MUSIC_DIR=\"" + (root() / "music").string() + "\"\n");
    SetEnvironment("XDG_CONFIG_HOME", (root() / "settings").string());
    WriteTextFile(root() / "preferences" / "Apple Computer" / "iTunes" / "iTunesPrefs.xml",
                  PreferenceFileText((root() / "library" / "iTunes Library.xml").string(),
                                     (root() / "media").string()));
    SetEnvironment("APPDATA", (root() / "preferences").string());
}

void PrivateEnvironment::LinkAddFolder() {
    const fs::path folder = FindAddFolder(media_);
    fs::create_directory_symlink(folder, root() / "media" / kAddFolderName);
    // In front of the folder that it lies in.
    shown_folders_.emplace(shown_folders_.begin(), root() / "media" / kAddFolderName, folder);
}

void PrivateEnvironment::LinkMedia() {
    for (const fs::directory_entry &entry : fs::directory_iterator(media_)) {
        const fs::path name = entry.path().filename();
        if (LooksLikeAddFolder(entry)) {  // in place of these there is the one of the private folder
            unlinked_media_.push_back(name.string());
        } else {
            fs::create_symlink(entry.path(), root() / "media" / name);
        }
    }
}

void PrivateEnvironment::PlaceLibrary(const fs::path &library) {
    const LibraryFormat format = ExamineLibraryFile(library);
    const fs::path original = fs::canonical(library);
    if (format == LibraryFormat::kItl) {
        fs::create_symlink(original, root() / "music" / "iTunes" / "iTunes Library.itl");
    } else if (format == LibraryFormat::kXml && !media_.empty()) {
        PlaceXml(original, root() / "library" / "iTunes Library.xml");
    } else {
        fs::create_symlink(original, root() / "library" / "iTunes Library.xml");
    }
    if (format != LibraryFormat::kXml && !media_.empty()) {
        PrintMessage(
            "velmarhost: --media: the tracks of this library keep their old places, as only a library in XML "
            "can be told new ones. --drive may help.");
    }
    const fs::path artwork = original.parent_path() / "Album Artwork";
    std::error_code ignored;
    if (!fs::exists(artwork, ignored)) return;
    fs::create_symlink(artwork, root() / "library" / "Album Artwork");
    shown_folders_.emplace_back(root() / "library" / "Album Artwork", artwork);
}

void PrivateEnvironment::PlaceXml(const fs::path &library, const fs::path &target) const {
    std::ifstream source(library, std::ios::binary);
    const std::optional<std::string> old_folder = FindMusicFolder(source);
    if (!old_folder) {
        PrintMessage(
            "velmarhost: --media: the library does not say where its media folder was, so its tracks keep "
            "their old places. --drive may help.");
        fs::create_symlink(library, target);
        return;
    }
    source.clear();
    source.seekg(0);
    std::ofstream copy(target, std::ios::binary);
    // Through the private folder, as the driver knows a file that its folder scans find again by that path.
    // What it must not scan is reached in the real folder.
    CopyRelocated({*old_folder,
                   (root() / "media").string(),
                   {unlinked_media_.begin(), unlinked_media_.end()},
                   media_.string()},
                  source, copy);
    copy.close();
    if (!copy || source.bad()) {
        throw HostError(ExitCode::kLibrary,
                        "the library could not be copied to the temporary folder. Set TMPDIR to a "
                        "folder with more room.");
    }
}

void PrivateEnvironment::UseDrives(const std::vector<std::string> &drives) {
    const fs::path folder = root() / "windows" / kDriveFolderName;
    fs::create_directories(folder);
    for (const std::string &text : drives) {
        const auto [drive, target] = ParseDrive(text);
        std::error_code error;
        fs::create_directory_symlink(target, folder / drive, error);
        if (error) throw HostError(ExitCode::kUsage, "--drive names the drive \"" + drive + "\" twice.");
    }
    std::error_code ignored;
    for (const fs::directory_entry &entry : fs::directory_iterator(UserDriveFolder(), ignored)) {
        // A drive that is there already was named anew by the user.
        fs::create_directory_symlink(fs::absolute(entry.path()), folder / entry.path().filename(), ignored);
    }
    SetEnvironment("WINEPREFIX", (root() / "windows").string());
}

std::string PrivateEnvironment::TellLocation(std::string_view location) const {
    const std::string plain = ForwardSlashes(location);
    // The driver may leave out the separator in front, or double it.
    const std::size_t begin = std::min(plain.find_first_not_of('/'), plain.size());
    for (const auto &[shown, real] : shown_folders_) {
        const std::string start = shown.string().substr(1) + "/";
        if (plain.compare(begin, start.size(), start) == 0) {
            return (real / plain.substr(begin + start.size())).string();
        }
    }
    return std::string(location);
}

}  // namespace velmarhost
