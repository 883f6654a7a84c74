// Decodes a file URL and finds the path of this system for a Windows path, and compares both with slower
// readings. The folders that names are looked for in are made once and never changed.
#include <algorithm>
#include <string>
#include <vector>

#include "content/location_url.h"
#include "content/zip_entry_path.h"
#include "fixtures/temp_folder.h"
#include "fuzz/fuzz_target.h"
#include "platform/windows/native_path.h"
#include "platform/windows/path_resolution.h"
#include "platform/windows/text.h"

namespace {

// A drive C: with a few names that differ in case or in normal form, and a link that leads out.
class Drive {
  public:
    Drive() {
        for (const char *name : {"Music/Album/song.mp3", "music/other.mp3", "MUSIC/x", "Bj\xC3\xB6rk/a.mp3",
                                 "Bjo\xCC\x88rk/b.mp3", "a b/c%d.txt", "\xFFraw/file"})
            folder_.Write(std::string("drive/") + name, "");
        std::filesystem::create_directories(folder_.path() / "dosdevices");
        std::filesystem::create_directory_symlink(folder_.path() / "drive", Root());
        std::filesystem::create_directory_symlink("/", folder_.path() / "drive" / "link");
        setenv("WINEPREFIX", folder_.path().c_str(), 1);
    }
    std::string Root() const { return (folder_.path() / "dosdevices" / "c:").string(); }
    std::string Folder() const { return (folder_.path() / "drive").string(); }

  private:
    TempFolder folder_;
};

std::string DecodedSlowly(std::string text) {
    for (const std::string prefix : {"file://localhost/", "file:///"}) {
        if (text.starts_with(prefix)) {
            text.erase(0, prefix.size());
            break;
        }
    }
    std::string path;
    for (size_t i = 0; i < text.size();) {
        if (text[i] != '%') {
            path += text[i++];
        } else if (i + 1 < text.size() && text[i + 1] == '%') {
            path += '%';
            i += 2;
        } else {
            if (i + 2 >= text.size()) break;
            const char byte =
                static_cast<char>(std::strtol(std::string(text, i + 1, 2).c_str(), nullptr, 16) & 0xFF);
            if (byte == '\0') break;
            path += byte;
            i += 3;
        }
    }
    return path;
}

void CheckUrl(const std::string &url) {
    const std::string path = LocationUrlToPath(url);
    Require(path == DecodedSlowly(url), "a URL decodes as it reads");
    std::string room = url;
    const std::string_view in_place = LocationUrlToPath(room, room);
    Require(in_place == path, "a URL decodes in its own room");
    RequireTerminated(in_place);
}

bool HasUpwards(std::string_view path) {
    return ("/" + std::string(path) + "/").find("/../") != std::string::npos;
}

void CheckNativePath(const std::string &windows_path, const Drive &drive) {
    const SpelledPath spelled = SpellNativePath(windows_path);
    const std::string native = NativePath(windows_path);
    const bool is_empty = windows_path.empty() || windows_path[0] == '\0';
    Require(native.empty() == is_empty, "an empty path alone gives an empty one");
    if (is_empty) return;
    Require(native[0] == '/', "a native path begins at the root");
    Require(native.find('\0') == std::string::npos, "a native path has no zero byte");
    Require(native.compare(0, spelled.root_size, spelled.text, 0, spelled.root_size) == 0,
            "a search keeps the root");
    Require(std::count(native.begin(), native.end(), '/') ==
                std::count(spelled.text.begin(), spelled.text.end(), '/'),
            "a search changes names, not their number");
    if (windows_path.starts_with("C:") || windows_path.starts_with("c:")) {
        Require(native.starts_with(drive.Root()), "a path on a drive lies on it");
        Require(!HasUpwards(native), "no path leads out of a drive");
    }
    Require(NativePath(Utf8ToWide(windows_path)) == NativePath(WideToUtf8(Utf8ToWide(windows_path))),
            "wide text gives the same path");
}

void CheckEntryTarget(const std::string &name, const Drive &drive) {
    const auto target = ZipEntryTarget(drive.Folder(), name);
    if (!target) return;
    Require(target->starts_with(drive.Folder()) && !HasUpwards(*target), "an entry lies below its folder");
    Require(!target->starts_with(drive.Folder() + "/link/"), "no entry lies behind a link");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const Drive drive;
    const std::string text(AsText(bytes, size));
    CheckUrl(text);
    CheckNativePath(text, drive);
    CheckNativePath("C:\\" + LocationUrlToPath(text), drive);
    CheckEntryTarget(text, drive);
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    return {"file://localhost/C:/Music/a%20b%25%c3%b6.mp3",
            "file:///music/100%%/%zz",
            "C:\\music\\ALBUM\\..\\album\\Song.MP3",
            "c:/../..\\bj\xC3\xB6rk/.\\B.mp3",
            "\\\\server\\share//x\\",
            "MUSIC/X",
            "C:\\\xFFRAW\\FILE",
            "link/etc/hosts",
            "OEBPS\\images/./cover.png"};
}
