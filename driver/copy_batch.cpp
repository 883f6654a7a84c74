#include "driver/copy_batch.h"

#include <optional>
#include <string>

#include "content/application.h"
#include "content/path_text.h"
#include "driver/book_copy.h"
#include "driver/copied_file.h"
#include "driver/copy_source.h"
#include "driver/copy_target.h"
#include "driver/driver_log.h"
#include "driver/library_driver.h"
#include "platform/windows/windows_api.h"

namespace {

enum CopyState : int32_t { kStarting = 0, kCopying = 1, kFinished = 2, kFailed = 3 };

enum CopyError : int32_t { kNoSource = 2, kNoTarget = 3, kSourceEnded = 5, kTargetFull = 6 };

// Answers of the callback that stop a copy.
constexpr int32_t kStopWithFailure = -1;
constexpr int32_t kStop = 2;

// What the host is told, and what it answered last.
struct ProgressReport {
    CopyProgressCallback callback = nullptr;
    void *context = nullptr;
    CopyProgress progress = {};
    int32_t result = 0;

    void Send(CopyState state) {
        progress.copy_state = state;
        if (callback != nullptr) result = callback(&progress, context);
    }
    void Fail(CopyError error) {
        progress.copy_error = error;
        Send(kFailed);
    }
    bool IsStopped() const { return result == kStopWithFailure || result == kStop; }
};

// Copies the next piece, from file to file inside the system where that can be done.
std::optional<CopyError> CopyPiece(CopySource &source, CopiedFile &file) {
    if (source.IsLocalFile()) {
        const size_t moved = file.TakeFrom(source.file, NextPiece(source));
        source.position += static_cast<int64_t>(moved);
        if (moved != 0) return std::nullopt;
    }
    const std::string_view bytes = ReadCopySource(source);
    if (bytes.empty()) return kSourceEnded;
    if (!file.Write(bytes)) return kTargetFull;
    return std::nullopt;
}

// True when all bytes are in the file.
bool CopyBytes(CopySource &source, CopiedFile &file, ProgressReport &report) {
    while (source.position < source.size) {
        if (const auto error = CopyPiece(source, file)) {
            report.Fail(*error);
            return false;
        }
        report.progress.bytes_copied = source.position;
        report.Send(kCopying);
        if (report.IsStopped()) break;
    }
    return source.position >= source.size;
}

void WriteFile(CopySource &source, CopiedFile &file, ProgressReport &report) {
    if (!CopyBytes(source, file, report)) {
        file.Drop();
    } else if (!file.Keep() && !report.IsStopped()) {
        report.Fail(kTargetFull);
    }
}

void FollowUp(LibraryDriver *driver, const char *path_text, const CopySourceInfo &source,
              const std::string &file) {
    CatalogueCopy(path_text, source, file);
    const std::string extension(ExtensionOfPath(file));
    if (_stricmp(extension.c_str(), ".ipa") == 0) RemoveOlderAppFiles(driver, file);
}

}  // namespace

int32_t CopyIntoITunes(LibraryDriver *driver, const char *path_text, const CopySourceInfo &info) {
    ProgressReport report{driver->copy_callback, driver->copy_context};
    report.progress.copy_tag = info.copy_tag;
    report.Send(kStarting);
    if (report.IsStopped()) return report.result;

    const CopyTarget target = ChooseCopyTarget(driver, path_text, info);
    const int32_t chunk = driver->copy_chunk_size < 1 ? kDefaultCopyChunkSize : driver->copy_chunk_size;
    auto source = OpenCopySource(info, CopySourceSize(info), chunk);
    if (!source) {
        report.result = -1;
        report.Fail(kNoSource);
        return report.result;
    }
    auto file = CopiedFile::Create(target);
    if (!file) {
        WriteDriverLog("Open file \"%s\" failed", target.Path().c_str());
        report.Fail(kNoTarget);
        return report.result;
    }
    WriteFile(*source, *file, report);
    // The source is closed before what follows looks at files.
    source.reset();
    FollowUp(driver, path_text, info, file->Path());
    if (report.result == 0) report.Send(kFinished);
    return report.result;
}
