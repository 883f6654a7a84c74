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

// While one lives, a signal that would end the program only asks for a stop: for work that has to be brought
// to an end in its own way. One at a time.
class StopRequest {
  public:
    StopRequest();
    ~StopRequest() { Release(); }
    StopRequest(const StopRequest &) = delete;
    StopRequest &operator=(const StopRequest &) = delete;

    // From here on signals end the program at once again.
    void Release();
    // The first signal that came before the release; 0 for none.
    int signal() const;
};

// What happens at a signal: a StopRequest takes it and the answer is false. Otherwise every living
// ScratchPath is removed from the disk, no new one comes into being (a thread that makes one waits for the
// end of the process), and the answer is true: the process is to end.
bool CleanUpAtSignal(int signal);

}  // namespace velmarhost

#endif
