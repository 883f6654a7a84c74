// Loading a library from "iTunes Library.itl" against loading the same library from its XML, and the reader
// of the .itl file alone. They take turns, each time in a process of its own, after one round that only warms
// the files up.

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "bench/library_walk.h"
#include "bench/measure.h"
#include "driver/itunes_driver.h"
#include "fixtures/library_place.h"
#include "fixtures/temp_folder.h"
#include "platform/itl_parser/itl_parser.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 7;

// A user's place whose library is one file; for an .itl file there is none in XML.
class LibraryUser {
  public:
    explicit LibraryUser(const fs::path &library)
        : place_(MakeLibraryPlace(home_.path(), PathStyle::kNative,
                                  library.extension() == ".itl" ? fs::path() : library)) {
        if (library.extension() == ".itl")
            fs::create_symlink(library, place_.library_xml.parent_path() / "iTunes Library.itl");
    }

    Cost Load() const {
        const ScopedEnvironmentValues environment(place_.environment);
        LibraryDriver *driver = nullptr;
        return MeasureInChild(
            [&] {
                Require(InitializeDriverPath(nullptr, nullptr, 0, &driver) == 0,
                        "the driver cannot load the library");
            },
            [&] { Require(UninitializeDriverPath(driver) == 0, "the driver cannot release the library"); });
    }

  private:
    TempFolder home_;
    LibraryPlace place_;
};

void Parse(const std::string &path) {
    const ITLParser parser(path.c_str());
    Require(parser.isValid(), "the file is not valid");
}

void Run(const fs::path &itl_file, const fs::path &xml_file) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const LibraryUser itl_user(itl_file);
    const LibraryUser xml_user(xml_file);
    Costs itl;
    Costs xml;
    Costs parse;
    for (int round = -1; round < kRounds; ++round) {
        const Cost itl_cost = itl_user.Load();
        const Cost xml_cost = xml_user.Load();
        const Cost parse_cost = MeasureInChild([&] { Parse(itl_file.string()); });
        if (round < 0) continue;
        itl.Add(itl_cost);
        xml.Add(xml_cost);
        parse.Add(parse_cost);
    }
    std::cout << "library of " << fs::file_size(itl_file) / (1 << 20) << " MiB as .itl and "
              << fs::file_size(xml_file) / (1 << 20) << " MiB as XML; medians of " << kRounds
              << " rounds (min to max)\n";
    PrintCosts("load", ".itl / XML", itl, xml);
    PrintCosts("the .itl file alone against a load of the XML,", ".itl / XML", parse, xml);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: itl-bench LIBRARY_ITL LIBRARY_XML\n";
        return 2;
    }
    try {
        Run(fs::absolute(argv[1]), fs::absolute(argv[2]));
    } catch (const std::exception &error) {
        std::cerr << "itl-bench: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
