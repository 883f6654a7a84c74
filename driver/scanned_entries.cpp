#include "driver/scanned_entries.h"

#include <utility>

#include "driver/attributes.h"
#include "driver/library_driver.h"
#include "driver/path_lookup.h"

namespace {

// The record of an entry, if what was read of its file is kept.
ScannedFiles::iterator FindRecord(const DriverPath *entry) {
    ScannedFiles &files = entry->owner->scanned_files;
    const auto location = FindAttribute(entry, "location");
    const auto found = location ? files.find(std::string(*location)) : files.end();
    return found != files.end() && found->second.entry == entry ? found : files.end();
}

void RemoveEntry(DriverPath *parent, int32_t index) {
    DriverPath *entry = ChildAt(parent, index);
    ScannedFiles &files = entry->owner->scanned_files;
    const auto record = FindRecord(entry);
    if (record == files.end() || IsOpenBelow(entry)) {
        if (record != files.end()) files.erase(record);
        DropChild(parent, index);
    } else {
        record->second.waiting = DetachChild(parent, index);
    }
}

void RemoveScannedChildren(DriverPath *parent) {
    for (int32_t i = ChildCount(parent) - 1; i >= 0; --i) {
        const DriverPath *child = ChildAt(parent, i);
        if (child != nullptr && child->from_folder_scan != 0) RemoveEntry(parent, i);
    }
}

}  // namespace

LoosePath CreateScannedEntry(LibraryDriver *driver, int32_t kind, int32_t category, int32_t subcategory) {
    LoosePath entry = CreateDriverPath(driver, kind, category, subcategory);
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

void KeepEntry(DriverPath *entry, const std::string &location, const FileStamp &stamp) {
    entry->owner->scanned_files.insert_or_assign(location, ScannedFile{entry, stamp, nullptr});
}

LoosePath TakeKeptEntry(LibraryDriver *driver, const std::string &location, const FileStamp &stamp) {
    const auto found = driver->scanned_files.find(location);
    if (found == driver->scanned_files.end() || found->second.waiting == nullptr ||
        found->second.stamp != stamp)
        return nullptr;
    LoosePath entry = std::move(found->second.waiting);
    driver->scanned_files.erase(found);
    return entry;
}

void ReleaseKeptEntries(LibraryDriver *driver) {
    std::erase_if(driver->scanned_files, [](const auto &file) { return file.second.waiting != nullptr; });
}
