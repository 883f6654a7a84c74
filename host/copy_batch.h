#ifndef HOST_COPY_BATCH_H
#define HOST_COPY_BATCH_H

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "host/library_session.h"

namespace velmarhost {

// The errors of a copy, as the driver numbers them.
constexpr int32_t kNoSource = 2;
constexpr int32_t kTargetNotMade = 3;
constexpr int32_t kSourceEnded = 5;
constexpr int32_t kTargetFull = 6;

enum class CopyEnd { kAdded, kFailed, kStopped };

struct CopyOutcome {
    CopyEnd end;
    int32_t error;           // the driver's, when the copy failed; 0 where it refused without a number
    uint64_t bytes;          // written
    std::string last_words;  // of the driver's log
};

// One batch of copies into iTunes, finished at the latest at the end of the scope.
class CopyBatch {
  public:
    // Asked before each file and after each piece of it, with the bytes of it so far; false stops the copy,
    // and nothing of the file stays. A file that is whole already is kept.
    using GoOn = std::function<bool(uint64_t bytes)>;

    CopyBatch(LibrarySession &session, GoOn go_on);
    ~CopyBatch() { Finish(); }
    CopyBatch(const CopyBatch &) = delete;
    CopyBatch &operator=(const CopyBatch &) = delete;

    // A file that the driver opens itself and that keeps its name. `bytes` is its size, which is never 0.
    CopyOutcome CopyFile(const std::string &tree_path, const std::string &file, uint64_t bytes);
    // The next bytes of a stream, under a name with an extension.
    CopyOutcome CopyStream(const std::string &tree_path, const std::string &name, std::FILE *stream,
                           uint64_t bytes);
    // Blocks for a second or more; the tree is up to date afterwards.
    void Finish();

  private:
    CopyOutcome Copy(const std::string &tree_path, CopySourceInfo source, uint64_t bytes);
    static int32_t Receive(const CopyProgress *progress, void *batch);
    int32_t Answer(const CopyProgress &progress);

    LibrarySession &session_;
    GoOn go_on_;
    bool open_ = true;
    // Of the running copy.
    uint64_t size_ = 0;
    uint64_t bytes_ = 0;
    int32_t error_ = 0;
    bool finished_ = false;
};

}  // namespace velmarhost

#endif
