#include "driver/copied_file.h"

#include <algorithm>
#include <cstdio>

#include "content/path_text.h"
#include "platform/windows/file_transfer.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

namespace {

// The system puts what it is given at once into one run of memory, and finding long runs is slow: writes of
// 1 MiB have taken four times as long as these.
constexpr size_t kLargestWrite = 128 << 10;

// Less than this is written faster than it is moved.
constexpr size_t kSmallestTransfer = 64 << 10;

}  // namespace

std::optional<CopiedFile> CopiedFile::Create(const CopyTarget &target) {
    // Whatever a source is called, its copy lies in the folder.
    if (!IsWindowsFileName(target.name)) return std::nullopt;
    auto file = CreateUniqueFile(Utf8ToWide(target.Path()));
    if (!file) return std::nullopt;
    // Bytes that the host is told of are not to fail later.
    std::setvbuf(file->handle.get(), nullptr, _IONBF, 0);
    return CopiedFile(std::move(*file));
}

std::string CopiedFile::Path() const {
    return WideToUtf8(file_.path);
}

size_t CopiedFile::TakeFrom(const FileHandle &source, size_t count) {
    return count < kSmallestTransfer ? 0 : TransferBytes(source.get(), file_.handle.get(), count);
}

bool CopiedFile::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t count = std::min(bytes.size(), kLargestWrite);
        if (std::fwrite(bytes.data(), 1, count, file_.handle.get()) != count) return false;
        bytes.remove_prefix(count);
    }
    return true;
}

bool CopiedFile::Keep() {
    const bool complete = file_.handle.Close();
    if (!complete) RemoveFileQuietly(file_.path);
    return complete;
}

void CopiedFile::Drop() {
    if (!file_.handle) return;
    file_.handle.Close();
    RemoveFileQuietly(file_.path);
}
