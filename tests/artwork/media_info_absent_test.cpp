// Machines on which MediaInfo is missing, or is not what it should be. This program has its own loader of
// libraries in the place of the system's.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "artwork/local_file.h"
#include "artwork/media_info.h"
#include "fixtures/media_files.h"
#include "platform/windows/windows_api.h"
#include "tests/artwork/thumb_tree.h"

namespace {

// What the loader knows: nothing, or a library without one of the entry points.
bool has_library = false;
int loads = 0;
int frees = 0;

void NeverCalled() {
    ADD_FAILURE() << "called";
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR) {
    ++loads;
    return has_library ? reinterpret_cast<HMODULE>(&has_library) : nullptr;
}
FARPROC GetProcAddress(HMODULE, LPCSTR name) {
    return std::string_view(name) == "MediaInfo_Close" ? nullptr : NeverCalled;
}
BOOL FreeLibrary(HMODULE) {
    ++frees;
    return TRUE;
}

TEST(MediaInfoAbsent, OnlyTheDurationIsLostAndTheNextFileTriesAgain) {
    for (int file = 1; file <= 4; ++file) {
        has_library = file > 2;
        ThumbTree tree;
        EXPECT_EQ(ImportLocalFile(&tree.driver, tree.Write("a.wav", WavFile(1))), 0);
        EXPECT_EQ(FindAttribute(ChildAt(tree.music, 0), "duration"), std::nullopt);
        EXPECT_EQ(loads, 2 * file);
        EXPECT_EQ(frees, has_library ? 2 * (file - 2) : 0);
    }
    using namespace media_info;
    EXPECT_EQ(MediaInfoFile().Get(kGeneralStream, 0, L"Duration", kText, kByName),
              L"Unable to load MediaInfo.dll");
}
