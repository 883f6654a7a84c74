#ifndef DRIVER_COPIED_FILE_H
#define DRIVER_COPIED_FILE_H

#include <optional>
#include <string>
#include <string_view>

#include "driver/copy_target.h"
#include "driver/unique_file.h"

// The file that a copy writes, under the name that it will have. Its end deletes it unless it was kept, so
// nothing half-written remains.
class CopiedFile {
  public:
    // Empty if the target's name is none that a file in its folder can have, or if no file can be made.
    static std::optional<CopiedFile> Create(const CopyTarget &target);

    CopiedFile(CopiedFile &&other) noexcept = default;
    CopiedFile &operator=(CopiedFile &&other) = delete;
    ~CopiedFile() { Drop(); }

    // UTF-8.
    std::string Path() const;
    // Takes bytes straight from a file that is open without a buffer, and says how many. It may be none for
    // any reason; reading and writing them tells which.
    size_t TakeFrom(const FileHandle &source, size_t count);
    // False when the system takes fewer bytes.
    bool Write(std::string_view bytes);
    // Both close the file. Keep gives false, and deletes it, when the system refuses the last of its bytes
    // only now.
    bool Keep();
    void Drop();

  private:
    explicit CopiedFile(UniqueFile file) : file_(std::move(file)) {}

    UniqueFile file_;
};

#endif
