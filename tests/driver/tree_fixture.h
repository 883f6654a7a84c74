#ifndef TESTS_DRIVER_TREE_FIXTURE_H
#define TESTS_DRIVER_TREE_FIXTURE_H

#include <string>

#include "driver/attributes.h"
#include "driver/library_driver.h"

// A driver without a library: the root with "library", "genius" and "playlist", and what a test adds.
struct BareTree {
    LibraryDriver driver;

    BareTree() {
        AllocVelmarArray(&driver.tracks);
        driver.root = CreateDriverPath(&driver, node_kind::kRoot, 0, 0).release();
        for (const char *name : {"library", "genius", "playlist"})
            AddList(driver.root, name, "");
    }
    ~BareTree() { DestroyLibrary(&driver); }

    DriverPath *AddList(DriverPath *parent, const std::string &name, const std::string &persistent_id) {
        LoosePath list =
            CreateDriverPath(&driver, node_kind::kFolder, node_category::kList, node_subcategory::kPlaylist);
        if (!persistent_id.empty()) AddAttribute(list.get(), "persistent_id", persistent_id.c_str());
        return AppendChild(parent, name.c_str(), std::move(list));
    }
    DriverPath *AddTrack(const std::string &id, const std::string &persistent_id) {
        DriverPath *track = CreateDriverPath(&driver, node_kind::kFile, 0, 0).release();
        AddAttribute(track, "id", id.c_str());
        if (!persistent_id.empty()) AddAttribute(track, "persistent_id", persistent_id.c_str());
        AddVelmarArrayItem(driver.tracks, track);
        return track;
    }
    static void Hold(DriverPath *list, const std::string &name, DriverPath *track) {
        AppendTrack(list, name.c_str(), track);
        ++track->share_count;
    }
};

#endif
