#include "host/copy_batch.h"

#include <memory>
#include <utility>

namespace velmarhost {
namespace {

// Large enough that calls cost nothing, small enough for a bar that moves and a stop that comes soon.
constexpr int32_t kChunkBytes = 1024 * 1024;

constexpr int32_t kHostStream = 0;
constexpr int32_t kLocalFile = 1;

// CopyProgress::copy_state.
constexpr int32_t kStarting = 0;
constexpr int32_t kFinished = 2;
constexpr int32_t kFailed = 3;

// Answers to the driver. What it gets back to an error is not 0, as it would report the copy as finished
// then.
constexpr int32_t kGoOn = 0;
constexpr int32_t kEndFailed = -1;
constexpr int32_t kStop = 2;

struct AttributeRelease {
    void operator()(VelmarAttribute *attribute) const { FreeVelmarAttribute(attribute); }
};
using AttributeOwner = std::unique_ptr<VelmarAttribute, AttributeRelease>;

// What the driver reads of a stream: its name without the extension, which it takes from the location.
AttributeOwner StreamAttributes(const std::string &name, uint64_t bytes) {
    VelmarAttribute *attributes = nullptr;
    AllocVelmarAttribute(&attributes);
    AddVelmarAttributeItem(attributes, "name", name.substr(0, name.rfind('.')).c_str());
    AddVelmarAttributeItem(attributes, "location", name.c_str());
    AddVelmarAttributeItem(attributes, "st_size", std::to_string(bytes).c_str());
    return AttributeOwner(attributes);
}

int32_t ReadStream(void *stream, void *buffer, int32_t count) {
    if (count <= 0) return 0;
    return static_cast<int32_t>(
        std::fread(buffer, 1, static_cast<std::size_t>(count), static_cast<std::FILE *>(stream)));
}

}  // namespace

CopyBatch::CopyBatch(LibrarySession &session, GoOn go_on) : session_(session), go_on_(std::move(go_on)) {
    session_.StartCopies(&CopyBatch::Receive, this, kChunkBytes);
}

void CopyBatch::Finish() {
    if (std::exchange(open_, false)) session_.FinishCopies();
}

CopyOutcome CopyBatch::CopyFile(const std::string &tree_path, const std::string &file, uint64_t bytes) {
    CopySourceInfo source{};
    source.source_type = kLocalFile;
    source.source_path = file.c_str();
    return Copy(tree_path, source, bytes);
}

CopyOutcome CopyBatch::CopyStream(const std::string &tree_path, const std::string &name, std::FILE *stream,
                                  uint64_t bytes) {
    const AttributeOwner attributes = StreamAttributes(name, bytes);
    CopySourceInfo source{};
    source.source.attributes = attributes.get();
    source.source_type = kHostStream;
    source.source_handle = stream;
    source.source_path = name.c_str();  // tells the kind
    source.read_function = &ReadStream;
    return Copy(tree_path, source, bytes);
}

CopyOutcome CopyBatch::Copy(const std::string &tree_path, CopySourceInfo source, uint64_t bytes) {
    source.source_size = static_cast<int64_t>(bytes);
    size_ = bytes;
    bytes_ = 0;
    error_ = 0;
    finished_ = false;
    CopyOutcome outcome{};
    const int32_t result = session_.Copy(tree_path, source, outcome.last_words);
    outcome.error = error_;
    outcome.bytes = bytes_;
    outcome.end = finished_ ? CopyEnd::kAdded : result == kStop ? CopyEnd::kStopped : CopyEnd::kFailed;
    return outcome;
}

int32_t CopyBatch::Receive(const CopyProgress *progress, void *batch) {
    return static_cast<CopyBatch *>(batch)->Answer(*progress);
}

int32_t CopyBatch::Answer(const CopyProgress &progress) {
    if (progress.copy_state == kFailed) {
        error_ = progress.copy_error;
        return kEndFailed;
    }
    if (progress.copy_state == kFinished) {
        finished_ = true;
        return kGoOn;
    }
    bytes_ = static_cast<uint64_t>(progress.bytes_copied);
    const bool go_on = go_on_(bytes_);
    // Behind the last byte a stop would keep the file and leave open whether it is whole.
    const bool whole = progress.copy_state != kStarting && bytes_ >= size_;
    return go_on || whole ? kGoOn : kStop;
}

}  // namespace velmarhost
