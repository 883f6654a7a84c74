#include "driver/library_driver.h"

#include "artwork/artwork_scan.h"
#include "content/plist_values.h"
#include "driver/attributes.h"
#include "driver/driver_log.h"
#include "driver/rescan.h"
#include "driver/scanned_entries.h"
#include "driver/startup_thread.h"
#include "library/library_files.h"
#include "library/playlists.h"
#include "library/track_import.h"
#include "platform/windows/windows_api.h"

namespace {

void AddRootAttribute(LibraryDriver *driver, const char *key, const char *plist_key) {
    const auto dictionary = static_cast<CFDictionaryRef>(driver->library_plist.get());
    if (const auto text = PlistValueText(dictionary, plist_key, 0))
        AddAttribute(driver->root, key, text->c_str());
}

void AddFixedChild(LibraryDriver *driver, const char *name, int32_t subcategory) {
    AppendChild(driver->root, name,
                CreateDriverPath(driver, node_kind::kFolder, node_category::kList, subcategory));
}

void CreateRoot(LibraryDriver *driver) {
    driver->root =
        CreateDriverPath(driver, node_kind::kRoot, node_category::kNone, node_subcategory::kNone).release();
    AddAttribute(driver->root, "terminal_type", "iTunes");
    if (driver->parser) {
        AddAttribute(driver->root, "persistent_id", driver->parser->persistentId().c_str());
        AddAttribute(driver->root, "application_version", driver->parser->iTunesVersion().c_str());
    } else {
        AddRootAttribute(driver, "persistent_id", "Library Persistent ID");
        AddRootAttribute(driver, "application_version", "Application Version");
    }
    AddFixedChild(driver, "library", node_subcategory::kLibrary);
    AddFixedChild(driver, "genius", node_subcategory::kGenius);
    AddFixedChild(driver, "playlist", node_subcategory::kPlaylists);
}

// Every host walks to the media under "library": the first walk then costs no more than any other.
void IndexCategoryRoots(LibraryDriver *driver) {
    const DriverPath *library = GetLibraryRoot(driver);
    for (int32_t i = ChildCount(library) - 1; i >= 0; --i)
        IndexChildNames(ChildAt(library, i));
}

// The tree holds all that it wants of the library's list, which is as large as the tree. What stays of it
// tells that there was one.
void ReleaseListContent(LibraryDriver *driver) {
    if (driver->library_plist == nullptr) return;
    driver->library_plist.reset(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
}

}  // namespace

LibraryDriver::LibraryDriver() = default;

LibraryDriver::~LibraryDriver() = default;

int32_t CreateLibrary(LibraryDriver *driver) {
    _tzset();
    const int32_t opened = LoadLibraryFiles(driver);
    if (opened != 0) {
        WriteDriverLog("Open iTunes Library XML file failed.");
        return opened;
    }
    CreateRoot(driver);
    const int32_t loaded = LoadTracks(driver);
    if (loaded < 0) {
        DestroyLibrary(driver);
        return loaded;
    }
    LoadPlaylists(driver);
    ReleaseListContent(driver);
    RescanLocalFolders(driver);
    IndexCategoryRoots(driver);
    return 0;
}

void DestroyLibrary(LibraryDriver *driver) {
    driver->library_plist.reset();
    driver->parser.reset();
    if (driver->tracks != nullptr) ReleaseLooseTracks(driver);
    ReleaseKeptEntries(driver);
    driver->scanned_files.clear();
    ReleaseDriverPath(driver->root);
    for (DriverPath *list : driver->unnamed_lists)
        ReleaseDriverPath(list);
    while (!driver->dropped_paths.empty())
        ReleaseDroppedPath(*driver->dropped_paths.begin());
    if (driver->tracks != nullptr) FreeVelmarArray(driver->tracks);
    FreeAlbumArtworkScan(driver);
    driver->root = nullptr;
    driver->tracks = nullptr;
    driver->unnamed_lists.clear();
    driver->index = {};
}
