#include "driver/copied_file.h"

#include <cstdio>

#include "content/path_text.h"
#include "platform/windows/native_path.h"
#include "platform/windows/windows_api.h"

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

bool CopiedFile::Write(std::string_view bytes) {
    return std::fwrite(bytes.data(), 1, bytes.size(), file_.handle.get()) == bytes.size();
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
