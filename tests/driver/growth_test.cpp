// Whatever a file holds, reading it takes no more memory than some times its size, and none of it stays. How
// the time grows is for the benchmark to say.
#include <gtest/gtest.h>
#include <malloc.h>

#include "bench/growth_cases.h"
#include "bench/measure.h"
#include "driver/library_driver.h"
#include "driver/rescan.h"
#include "fixtures/artwork_file.h"
#include "fixtures/file_writing.h"
#include "fixtures/generated_library.h"
#include "fixtures/library_place.h"
#include "fixtures/media_files.h"
#include "fixtures/temp_folder.h"
#include "platform/velmar_path/velmar_path.h"

namespace {

// It has memory of its own; then the inputs only have to be read without a fault.
constexpr bool kHasSanitizer = DRIVER_HAS_SANITIZER;

TEST(Growth, MemoryStaysInProportionToTheInput) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    for (const GrowthCase &growth : GrowthCases()) {
        const TempFolder folder;
        const GrowthInput input = growth.make(folder.path(), 2 * growth.size);
        malloc_trim(0);  // what is free here would not count there
        const double allowed = growth.memory_factor * static_cast<double>(input.bytes) + (16 << 20);
        const double peak = MeasureInChild(input.read).peak_bytes;
        EXPECT_TRUE(peak <= allowed || kHasSanitizer) << growth.name << ": " << peak << " of " << allowed;
    }
    SetVelmarLogHandler(nullptr, nullptr);
}

TEST(Growth, AThousandLoadsLeaveNoMemoryBehind) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const TempFolder home;
    const LibraryPlace place = MakeLibraryPlace(home.path());
    GenerateLibrary(place.library_xml, {.tracks = 200, .lists = 5, .items = 20});
    for (const char *name : {"a.mp3", "b.mp3"})
        WriteFile(place.add_folder / name,
                  Mp3File(1, {"Song", "Artist", "Album", "Rock", 1980, 1, PngPicture(8)}));
    const ScopedEnvironmentValues environment(place.environment);
    const auto repeat = [](int count) {
        for (int i = 0; i < count; ++i) {
            LibraryDriver driver;
            Require(CreateLibrary(&driver) == 0, "a library cannot be loaded");
            RescanLocalFolders(&driver);
            DestroyLibrary(&driver);
        }
    };
    const double held =
        MeasureInChild([&] { repeat(1000); }).held_bytes - MeasureInChild([&] { repeat(1); }).held_bytes;
    EXPECT_TRUE(held <= 2 << 20 || kHasSanitizer) << held;
    SetVelmarLogHandler(nullptr, nullptr);
}

}  // namespace
