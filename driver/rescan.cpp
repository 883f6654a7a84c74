#include "driver/rescan.h"

#include "artwork/media_folder_walk.h"
#include "artwork/ringtones.h"
#include "content/application_scan.h"
#include "content/book_scan.h"
#include "content/media_folder.h"
#include "driver/scanned_entries.h"

namespace {

// Films lie in folders of their own; files that wait to be added lie side by side.
int32_t ScanMediaFiles(LibraryDriver *driver) {
    const auto media_folder = MediaFolder(driver);
    if (!media_folder) return 0;
    const int32_t movies = WalkMediaFolder(driver, *media_folder + "\\Movies", true);
    return movies + WalkMediaFolder(driver, driver->add_folder, false);
}

}  // namespace

int32_t RescanLocalFolders(LibraryDriver *driver) {
    RemoveScannedEntries(driver);
    int32_t result = ScanToneFolder(driver, "Ringtones");
    result += ScanToneFolder(driver, "Tones");
    result += ScanBooks(driver);
    result += ScanApps(driver);
    result += ScanMediaFiles(driver);
    ReleaseKeptEntries(driver);
    return result;
}
