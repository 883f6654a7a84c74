// Takes an input as the artwork cache file of a track, and reads all its thumbnails as a host does.
#include <string>
#include <vector>

#include "artwork/artwork_file.h"
#include "artwork/thumb_node.h"
#include "driver/scanned_entries.h"
#include "fixtures/artwork_file.h"
#include "fixtures/preference_file.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/tree_check.h"
#include "fuzz/work_folder.h"
#include "tests/driver/tree_fixture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    constexpr size_t kMostImages = 1024;
    static WorkFolder work;
    work.Write("cover.itc", AsText(bytes, size));
    {
        const std::string location = BackslashPath(work.Place() / "cover.itc");
        const auto images = ReadArtworkFile(location);
        Require(!images || images->size() <= kMostImages, "a file has a limited number of pictures");
        BareTree tree;
        tree.driver.library_folder = BackslashPath(work.Place());
        DriverPath *music =
            EnsureCategoryPath(&tree.driver, "music", node_category::kAudio, node_subcategory::kMusic);
        DriverPath *track = AppendChild(
            music, "1.mp3", CreateDriverPath(&tree.driver, node_kind::kFile, node_category::kAudio, 0));
        const DriverPath *thumb = AddThumbNode(track, node_subcategory::kThumbOfTrack, location.c_str());
        CheckTree(&tree.driver, "library/music");
        Require(ChildCount(thumb) == static_cast<int32_t>(images ? images->size() : 0),
                "each picture is a thumbnail");
    }
    work.CheckAndClear();
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    return {ArtworkCacheFile({8}), ArtworkCacheFile({4, 6, 8, 10}),
            ArtworkCacheFile({4, 2}, CachePictures::kRaw)};
}
