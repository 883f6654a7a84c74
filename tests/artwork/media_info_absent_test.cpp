// Machines on which MediaInfo is missing, or is not what it should be. This program has its own loader of
// libraries in the place of the system's.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "artwork/local_file.h"
#include "artwork/media_info.h"
#include "platform/windows/windows_api.h"
#include "tests/artwork/thumb_tree.h"
#include "tests/support/media_files.h"

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

namespace {

std::string ImportedDuration() {
    ThumbTree tree;
    EXPECT_EQ(ImportLocalFile(&tree.driver, tree.Write("a.wav", WavFile(1))), 0);
    return ThumbTree::Text(ChildAt(tree.music, 0), "duration");
}

TEST(MediaInfoAbsent, OnlyTheDurationIsLostAndTheNextFileTriesAgain) {
    for (const bool lacking : {false, true}) {
        has_library = lacking;
        loads = frees = 0;
        EXPECT_EQ(ImportedDuration(), "(none)");
        EXPECT_EQ(loads, 2);
        EXPECT_EQ(frees, lacking ? 2 : 0);
        EXPECT_EQ(ImportedDuration(), "(none)");
        EXPECT_EQ(loads, 4);
    }
    EXPECT_EQ(MediaInfoFile().Get(media_info::kGeneralStream, 0, L"Duration", media_info::kText,
                                  media_info::kByName),
              L"Unable to load MediaInfo.dll");
}

}  // namespace
