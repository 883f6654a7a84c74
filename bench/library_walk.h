#ifndef BENCH_LIBRARY_WALK_H
#define BENCH_LIBRARY_WALK_H

#include <string>
#include <vector>

#include "driver/itunes_driver.h"
#include "fixtures/library_place.h"

// A library that is loaded for a scope, through the exports as a host does it. Throws std::runtime_error.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const LibraryPlace &place);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    // The paths of the children of "library/music".
    std::vector<std::string> MusicPaths() const;
    // Empty when the node has no such attribute.
    std::string Attribute(const std::string &path, const char *key) const;
    // Opens and closes a path.
    void Open(const std::string &path) const;
    // Opens each path of the tree by its text, asks what it has to say, and closes it. Gives their number.
    std::size_t WalkAll() const;
    LibraryDriver *driver() const { return driver_; }

  private:
    LibraryDriver *driver_ = nullptr;
};

#endif
