// To read the list of a large library takes about as long as to import its tracks. A thread of its own does
// the former; the calling thread imports, so that the host's operations are called by that one alone.
#include "library/list_reading.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "content/file_stamp.h"
#include "content/plist_values.h"
#include "driver/limit_log.h"
#include "library/track_import.h"

namespace {

using core_foundation::WatchedEntry;

// A smaller file is read before a thread has begun.
constexpr int64_t kLeastBytes = int64_t{1} << 20;
constexpr size_t kBatch = 256;
// Less than a track takes, so there is room for all that will come as a rule.
constexpr int64_t kBytesPerTrack = 2048;

using Batch = std::vector<WatchedEntry>;

// Entries on their way from the thread that reads to the one that imports. They stay here to the end.
class EntryQueue {
  public:
    // The reader's side. A batch is handed over when it is full.
    void Push(const WatchedEntry &entry) {
        if (!filling_) {
            filling_ = std::make_unique<Batch>();
            filling_->reserve(kBatch);
        }
        filling_->push_back(entry);
        if (filling_->size() == kBatch) HandOver();
    }
    void End() {
        try {
            if (filling_) HandOver();
        } catch (const std::bad_alloc &) {
            // The entries that are missing are noticed in the end.
        }
        const std::lock_guard lock(mutex_);
        has_ended_ = true;
        changed_.notify_all();
    }
    // Nothing that was handed over is looked at after this.
    void AwaitLeave() {
        std::unique_lock lock(mutex_);
        is_void_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return has_left_; });
    }

    // The importer's side. Null at the end.
    const Batch *Next() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return taken_ < batches_.size() || has_ended_ || is_void_; });
        return is_void_ || taken_ == batches_.size() ? nullptr : batches_[taken_++].get();
    }
    void Leave() {
        const std::lock_guard lock(mutex_);
        has_left_ = true;
        changed_.notify_all();
    }
    // When both have ended.
    const std::vector<std::unique_ptr<Batch>> &batches() const { return batches_; }

  private:
    void HandOver() {
        const std::lock_guard lock(mutex_);
        batches_.push_back(std::move(filling_));
        changed_.notify_all();
    }

    std::unique_ptr<Batch> filling_;  // the reader's alone

    std::mutex mutex_;  // guards the rest
    std::condition_variable changed_;
    std::vector<std::unique_ptr<Batch>> batches_;
    size_t taken_ = 0;
    bool has_ended_ = false;
    bool is_void_ = false;  // the list cannot be read
    bool has_left_ = false;
};

// The reading of a file on a thread of its own.
class ListReading {
  public:
    // Throws std::system_error when there is no thread to be had.
    explicit ListReading(PropertyListFile &file) : thread_([this, &file] { Read(file); }) {}
    ~ListReading() {
        queue_.Leave();
        if (thread_.joinable()) thread_.join();
    }
    ListReading(const ListReading &) = delete;
    ListReading &operator=(const ListReading &) = delete;

    EntryQueue &queue() { return queue_; }

    CFOwner Finish() {
        queue_.Leave();
        thread_.join();
        if (limit_.name != nullptr) limit_.Hit();
        return std::move(list_);
    }

  private:
    void Read(PropertyListFile &file) {
        list_ = file.Read({"Tracks", [this](const WatchedEntry &entry) { queue_.Push(entry); },
                           [this] { queue_.AwaitLeave(); }});
        limit_ = TakeHitLimit();
        queue_.End();
    }

    EntryQueue queue_;
    CFOwner list_;
    Limit limit_ = {nullptr, 0};
    std::thread thread_;  // the last, as it uses the others
};

void ImportEntries(LibraryDriver *driver, EntryQueue &queue) {
    TrackImportRoom room;
    std::string id_room;
    while (const Batch *batch = queue.Next()) {
        for (const WatchedEntry &entry : *batch) {
            if (const auto id = PlistText(entry.key, 0, id_room))
                CreateTrack(driver, id->data(), &entry.value, room);
        }
    }
}

// A track that is no dictionary has not been told of, and a key that comes twice has one entry in the end.
bool AreAllTracks(const EntryQueue &queue, CFTypeRef list) {
    const void *tracks = PlistValue(list, "Tracks");
    if (!IsDictionary(tracks)) return false;
    TrackImportRoom entries;
    ReadEntries(static_cast<CFDictionaryRef>(tracks), entries);
    size_t at = 0;
    for (const auto &batch : queue.batches()) {
        for (const WatchedEntry &entry : *batch) {
            if (at == entries.keys.size() || !entry.Is(entries.keys[at], entries.values[at])) return false;
            ++at;
        }
    }
    return at == entries.keys.size();
}

void DiscardTracks(LibraryDriver *driver) {
    ReleaseLooseTracks(driver);
    FreeVelmarArray(driver->tracks);
    driver->tracks = nullptr;
    driver->index = {};
}

}  // namespace

CFOwner ReadLibraryList(LibraryDriver *driver) {
    const LimitLog limit_log(driver->xml_path);
    PropertyListFile file(driver->xml_path);
    if (!file.IsOpen()) return nullptr;
    const int64_t size = SizeOfFile(driver->xml_path).value_or(0);
    if (size < kLeastBytes) return file.Read();
    std::optional<ListReading> reading;
    try {
        reading.emplace(file);
    } catch (const std::system_error &) {
        return file.Read();
    }
    AllocVelmarArray(&driver->tracks);
    driver->index.track_numbers.Reserve(static_cast<size_t>(size / kBytesPerTrack));
    ImportEntries(driver, reading->queue());
    CFOwner list = reading->Finish();
    if (!AreAllTracks(reading->queue(), list.get())) DiscardTracks(driver);
    return list;
}
