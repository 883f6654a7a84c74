#ifndef TESTS_LIBRARY_LOADED_LIBRARY_H
#define TESTS_LIBRARY_LOADED_LIBRARY_H

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "driver/attributes.h"
#include "driver/library_driver.h"
#include "fixtures/file_writing.h"
#include "fixtures/library_place.h"
#include "fixtures/library_xml.h"
#include "fixtures/temp_folder.h"
#include "tests/driver/open_library.h"
#include "tests/support/collected_log.h"

// The XML file around a root value.
inline std::string ListFile(const std::string &root) {
    return std::string(kPropertyListHead) + root + std::string(kPropertyListTail);
}

// A library that a test writes, loaded without a host.
class LoadedLibrary {
  public:
    using Writer = std::function<void(LibraryXml &)>;

    explicit LoadedLibrary(const Writer &write) : LoadedLibrary("xml", Xml(write)) {}
    // The only library file of its place, which the driver knows by its name and its ending.
    LoadedLibrary(const std::string &ending, const std::string &bytes) {
        const auto itl = place.library_xml.parent_path() / "iTunes Library.itl";
        WriteFile(ending == "itl" ? itl : place.library_xml, bytes);
        const ScopedEnvironmentValues environment(place.environment);
        result = CreateLibrary(&driver);
    }
    ~LoadedLibrary() { DestroyLibrary(&driver); }

    // The node that a path text names, or null, and the names under it.
    DriverPath *At(const std::string &path) { return OpenedPath(&driver, path.c_str()).get(); }
    std::vector<std::string> NamesUnder(const std::string &path) {
        return OpenedPath(&driver, path.c_str()).Names();
    }
    std::vector<const DriverPath *> Tracks() const {
        std::vector<const DriverPath *> tracks;
        void *track = nullptr;
        for (int32_t i = 0; GetVelmarArrayItem(driver.tracks, i, &track) == 0; ++i)
            tracks.push_back(static_cast<DriverPath *>(track));
        return tracks;
    }

    // Writes the library XML anew, as iTunes does at any time.
    void Rewrite(const Writer &write) const { WriteFile(place.library_xml, Xml(write)); }

  private:
    static std::string Xml(const Writer &write) {
        std::ostringstream out;
        LibraryXml xml(out);
        write(xml);
        xml.Finish();
        return out.str();
    }

    TempFolder folder_;

  public:
    LibraryPlace place = MakeLibraryPlace(folder_.path());
    CollectedLog log;
    LibraryDriver driver;
    int32_t result = 0;
};

#endif
