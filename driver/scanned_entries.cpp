#include "driver/scanned_entries.h"

#include "driver/library_driver.h"
#include "driver/path_lookup.h"

namespace {

void RemoveScannedChildren(DriverPath *parent) {
    for (int32_t i = ChildCount(parent) - 1; i >= 0; --i) {
        const DriverPath *child = ChildAt(parent, i);
        if (child != nullptr && child->from_folder_scan != 0) DropChild(parent, i);
    }
}

}  // namespace

DriverPath *CreateScannedEntry(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory) {
    DriverPath *entry = CreateDriverPath(driver, kind, category, subcategory);
    entry->from_folder_scan = 1;
    return entry;
}

DriverPath *EnsureCategoryPath(LibraryDriver *driver, const char *name, int32_t category,
                               int32_t subcategory) {
    DriverPath *root = FindCategoryPath(driver, subcategory);
    if (root != nullptr) return root;
    return CreateCategoryPath(driver, name, node_kind::kFolder, category, subcategory);
}

int32_t TakeScannedId(LibraryDriver *driver) {
    return driver->next_scanned_id++;
}

void RemoveScannedEntries(LibraryDriver *driver) {
    const DriverPath *library = GetLibraryRoot(driver);
    if (library != nullptr) {
        for (int32_t i = ChildCount(library) - 1; i >= 0; --i)
            RemoveScannedChildren(ChildAt(library, i));
    }
    driver->next_scanned_id = kFirstScannedId;
}
