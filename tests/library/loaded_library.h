#ifndef TESTS_LIBRARY_LOADED_LIBRARY_H
#define TESTS_LIBRARY_LOADED_LIBRARY_H

#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "driver/attributes.h"
#include "driver/library_driver.h"
#include "tests/support/collected_log.h"
#include "tests/support/file_writing.h"
#include "tests/support/library_place.h"
#include "tests/support/library_xml.h"
#include "tests/support/temp_folder.h"

// A library that a test writes, loaded without a host.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const std::function<void(LibraryXml &)> &write) {
        Rewrite(write);
        Load();
    }
    // The only library file of its place, which the driver knows by its name and its ending.
    LoadedLibrary(const std::string &ending, const std::string &bytes) {
        const std::string name = ending == "itl" ? "iTunes Library.itl" : "iTunes Music Library.xml";
        WriteFile(place_.library_xml.parent_path() / name, bytes);
        Load();
    }
    ~LoadedLibrary() { DestroyLibrary(&driver); }
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    // The node that a path text names, or null.
    DriverPath *At(const std::string &path) {
        DriverPath *node = nullptr;
        if (OpenDriverPath(&driver, 0, path.c_str(), &node) == 0) CloseDriverPath(node);
        return node;
    }
    std::vector<std::string> NamesUnder(const std::string &path) {
        std::vector<std::string> names;
        const DriverPath *node = At(path);
        for (int32_t i = 0; node != nullptr && i < ChildCount(node); ++i)
            names.emplace_back(ChildNameAt(node, i));
        return names;
    }

    // Writes a file below the media folder.
    void WriteMedia(const std::string &name, std::string_view bytes) const {
        const auto path = place_.media_folder / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
    }
    // Writes the library XML anew, as iTunes does at any time.
    void Rewrite(const std::function<void(LibraryXml &)> &write) const {
        std::ofstream file(place_.library_xml, std::ios::binary);
        LibraryXml xml(file);
        write(xml);
        xml.Finish();
    }
    void RewriteAs(const std::string &list) const {
        std::ofstream(place_.library_xml, std::ios::binary) << kPropertyListHead << list << kPropertyListTail;
    }

  private:
    void Load() {
        const ScopedEnvironmentValues environment(place_.environment);
        result = CreateLibrary(&driver);
    }

    TempFolder folder_;
    LibraryPlace place_ = MakeLibraryPlace(folder_.path());

  public:
    CollectedLog log;
    LibraryDriver driver;
    int32_t result = 0;
};

// The tracks that most tests want: their ids, and further entries.
inline XmlEntries TrackEntries(const std::string &location, XmlEntries more = {}) {
    if (!location.empty()) more.push_back({"Location", XmlText(location)});
    return more;
}

#endif
