#ifndef PLATFORM_WINDOWS_ATOMIC_FILE_H
#define PLATFORM_WINDOWS_ATOMIC_FILE_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/* Replaces a file as one step: whatever happens, a reader finds the old file whole or the new one complete.
 *
 * The bytes go to a file of a unique name beside the target, which takes the target's place at the commit.
 * The mode of the old file stays, its owner too where the system permits that. A target that is a symbolic
 * link stays one, and the file that it leads to is replaced. An object that is not committed leaves nothing
 * behind. */
class AtomicFile {
  public:
    // Empty if the target's folder takes no new file, or if the target is read-only, no plain file, or has a
    // name that Windows could not hold.
    static std::optional<AtomicFile> Create(std::string_view windows_path);

    AtomicFile(AtomicFile &&other) noexcept;
    AtomicFile &operator=(AtomicFile &&other) noexcept;
    ~AtomicFile();

    // Appends. False if not all bytes could be written; the object can then no longer be committed.
    bool Write(const void *bytes, size_t size);

    // Puts the new file in place once the disk has it. False leaves the old one as it was. To be called once.
    bool Commit();

  private:
    struct State;
    explicit AtomicFile(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

#endif
