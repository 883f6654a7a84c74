#ifndef HOST_CLEANUP_H
#define HOST_CLEANUP_H

#include <filesystem>
#include <functional>

namespace velmarhost {

// A file or folder that must not outlive the program, however that ends: removed with all its content at the
// end of the scope, or by RemoveScratch when a signal ends the process.
class ScratchPath {
  public:
    // `make` chooses the path and may create what stands there; no signal comes between that and its entry in
    // the list of things to remove.
    explicit ScratchPath(const std::function<std::filesystem::path()> &make);
    ~ScratchPath();
    ScratchPath(const ScratchPath &) = delete;
    ScratchPath &operator=(const ScratchPath &) = delete;

    const std::filesystem::path &path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// Removes every living ScratchPath from the disk, and lets no new one come into being: a thread that makes
// one waits for the end of the process. Called once, when a signal ends it.
void RemoveScratch();

}  // namespace velmarhost

#endif
