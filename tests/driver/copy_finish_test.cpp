// The end of a batch: the window of iTunes, and the tree.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/driver/fake_windows.h"
#include "tests/library/loaded_library.h"

namespace {

using testing::ElementsAre;

void WriteTracks(LibraryXml &xml, const std::vector<std::string> &ids) {
    for (const std::string &id : ids)
        xml.Track(id, TrackEntries(LocationUrl("/m/" + id + ".mp3")));
}

// A library of one track, whose XML file has got a second since the load.
class FinishedCopy : public testing::Test {
  protected:
    FinishedCopy() {
        library_.Rewrite([](LibraryXml &xml) { WriteTracks(xml, {"1", "2"}); });
        library_.driver.copy_callback = [](const CopyProgress *, void *) { return 0; };
        library_.driver.copy_chunk_size = 77;
    }

    LoadedLibrary library_{[](LibraryXml &xml) { WriteTracks(xml, {"1"}); }};
};

TEST_F(FinishedCopy, WaitsASecondWhereItunesHasNoWindow) {
    const FakeWindows windows;
    EXPECT_EQ(FinishPathCopy(&library_.driver, 0), 0);
    EXPECT_THAT(windows.Calls(), ElementsAre("find iTunes/iTunes", "find ITWindow/iTunes", "sleep 1000"));
    EXPECT_EQ(GetVelmarArraySize(library_.driver.tracks), 1);
    EXPECT_EQ(library_.driver.copy_callback, nullptr);
    EXPECT_EQ(library_.driver.copy_chunk_size, 77);
}

TEST_F(FinishedCopy, ShowsTheWindowAndReadsTheLibraryAgain) {
    for (const bool old_class : {true, false}) {
        const FakeWindows windows({old_class ? L"ITWindow" : L"iTunes"});
        EXPECT_EQ(FinishPathCopy(&library_.driver, 0), 0);
        const std::string name = old_class ? "ITWindow" : "iTunes";
        std::vector<std::string> calls = {"find iTunes/iTunes"};
        if (old_class) calls.emplace_back("find ITWindow/iTunes");
        for (const std::string &call :
             {"front " + name, std::string("sleep 1000"), std::string("front other")})
            calls.push_back(call);
        calls.emplace_back("sleep 2000");
        EXPECT_EQ(windows.Calls(), calls);
        EXPECT_THAT(library_.NamesUnder("library/music"), ElementsAre("2.mp3"));
    }
}

TEST_F(FinishedCopy, ScansTheFoldersInEitherCase) {
    for (const std::vector<std::wstring> &classes : {std::vector<std::wstring>{}, {L"iTunes"}}) {
        const FakeWindows windows(classes);
        const std::string name = std::to_string(classes.size()) + ".m4r";
        library_.WriteMedia("Ringtones/" + name, "tone");
        EXPECT_EQ(FinishPathCopy(&library_.driver, 0), 0);
        EXPECT_THAT(library_.NamesUnder("library/ringtone"), testing::Contains(name));
    }
    EXPECT_EQ(FinishPathCopy(nullptr, 0), -1);
}

}  // namespace
