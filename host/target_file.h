#ifndef HOST_TARGET_FILE_H
#define HOST_TARGET_FILE_H

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "host/cleanup.h"
#include "host/file_owner.h"

namespace velmarhost {

// What already stands under a name that a file is to get.
enum class Existing {
    kNothing,
    kSame,  // by its time or size the wanted file, as far as these are known
    kDifferent,
};

Existing LookAtTarget(const std::filesystem::path &target, std::optional<uint64_t> size,
                      std::optional<int64_t> modified);

// A file that comes into being whole or not at all: written under a name of its own in the target's folder,
// then renamed. Without Finish nothing stays. Failures throw std::system_error.
class TargetFile {
  public:
    explicit TargetFile(const std::filesystem::path &folder);
    void Write(std::string_view bytes);
    // Takes the place of a file that has the name already.
    void Finish(const std::filesystem::path &target, std::optional<int64_t> modified);

  private:
    ScratchPath scratch_;
    FileOwner file_;
};

// A whole file at once, in the place of what has the name already. Throws std::system_error.
void WriteWholeFile(const std::filesystem::path &target, std::string_view bytes);

}  // namespace velmarhost

#endif
