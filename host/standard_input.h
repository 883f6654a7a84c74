#ifndef HOST_STANDARD_INPUT_H
#define HOST_STANDARD_INPUT_H

#include <cstdint>
#include <cstdio>
#include <memory>

#include "host/cleanup.h"
#include "host/file_owner.h"

namespace velmarhost {

// Standard input as a file with a known size: as it is where it is a regular file, otherwise read to its end
// into a temporary file, which only the room on the disk limits.
class MeasuredInput {
  public:
    // Throws HostError with code kIncomplete.
    MeasuredInput();

    std::FILE *stream() const { return copy_ ? copy_.get() : stdin; }
    uint64_t bytes() const { return bytes_; }

  private:
    void Spool();

    std::unique_ptr<ScratchPath> folder_;
    FileOwner copy_;
    uint64_t bytes_ = 0;
};

}  // namespace velmarhost

#endif
