// Adds an input as an application, as a scan does, and reads everything of it that a host can reach: property
// lists through the archive, and the icon. See archive_input.h for inputs.
#include <string>
#include <vector>

#include "content/application.h"
#include "driver/scanned_entries.h"
#include "fixtures/archive_files.h"
#include "fixtures/preference_file.h"
#include "fuzz/archive_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/tree_check.h"
#include "fuzz/work_folder.h"
#include "tests/driver/tree_fixture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static WorkFolder work;
    work.Write("game.ipa", ArchiveOf(AsText(bytes, size)));
    {
        BareTree tree;
        tree.driver.library_folder = BackslashPath(work.Place());
        DriverPath *apps = EnsureCategoryPath(&tree.driver, "app", node_category::kApplication,
                                              node_subcategory::kApplication);
        const std::string location = BackslashPath(work.Place() / "game.ipa");
        const int32_t result = AddLocalApp(apps, location);
        Require(ChildCount(apps) == (result == 0 ? 1 : 0), "only an application is added");
        Require(RemoveOlderAppFiles(&tree.driver, location) == result,
                "both agree on what is an application");
        Require(std::filesystem::exists(work.Place() / "game.ipa"), "the file itself is not an older one");
        CheckTree(&tree.driver, "library/app");
    }
    work.CheckAndClear();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t most, unsigned seed) {
    return MutateArchive(bytes, size, most, seed);
}

std::vector<std::string> FuzzSeeds() {
    const XmlEntries info = {{"CFBundleIdentifier", XmlText("com.example.game")},
                             {"CFBundleDisplayName", XmlText("Game")},
                             {"CFBundleIconFile", XmlText("icon.png")}};
    const XmlEntries metadata = {{"softwareVersionBundleId", XmlText("com.example.game")},
                                 {"bundleDisplayName", XmlText("A Game")},
                                 {"bundleVersion", XmlText("1.2")},
                                 {"genre", XmlText("Games")},
                                 {"softwareIcon57x57URL", XmlText("http://127.0.0.1:1/icon.png")}};
    std::vector<std::string> seeds;
    for (const ApplicationParts &parts :
         {ApplicationParts{.folder = "Game.app", .info = info, .icon_file = "icon.png"},
          ApplicationParts{.folder = "Game.app", .info = info, .metadata = metadata},
          ApplicationParts{.folder = "Game.app",
          .info = info,
          .names = {{"C", "Spiel"}, {"en", "Game"}},
          .artwork_side = 20}}) {
        seeds.push_back(ApplicationFile(parts));
        seeds.push_back(MembersInput(seeds.back()));
    }
    return seeds;
}
