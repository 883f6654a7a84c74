#include "platform/core_foundation/file_stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "platform/core_foundation/core_foundation.h"
#include "platform/windows/native_path.h"

namespace core_foundation {

namespace {

// Waits for nothing: the open of a pipe would else block until somebody writes to it.
constexpr int kOpenFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

bool IsRegularFile(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

template <typename Object, typename Reference>
Object *Get(Reference reference) {
    return static_cast<Object *>(const_cast<Value *>(ToValue(reference)));
}

}  // namespace

bool ReadStream::Open() {
    Close();
    descriptor_ = open(NativePath(path_).c_str(), kOpenFlags);
    if (descriptor_ >= 0 && !IsRegularFile(descriptor_)) Close();
    return descriptor_ >= 0;
}

void ReadStream::Close() {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
}

std::optional<size_t> ReadStream::Read(char *buffer, size_t size) {
    constexpr size_t kLargestRead = size_t{1} << 30;
    size_t total = 0;
    while (total < size) {
        const ssize_t count = read(descriptor_, buffer + total, std::min(size - total, kLargestRead));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        total += static_cast<size_t>(count);
    }
    return total;
}

bool WriteStream::Open() {
    file_ = AtomicFile::Create(path_);
    return file_.has_value();
}

bool WriteStream::Write(std::string_view content) {
    if (file_ && !file_->Write(content.data(), content.size())) Discard();
    return file_.has_value();
}

void WriteStream::Close() {
    // The C interface has no place for the result of a close, nor for an exception; a commit that fails, be
    // it for want of memory, leaves the old file.
    try {
        if (file_) static_cast<void>(file_->Commit());
    } catch (const std::bad_alloc &) {
    }
    file_.reset();
}

}  // namespace core_foundation

using namespace core_foundation;

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8 *path, CFIndex length, Boolean) {
    if (path == nullptr || length < 0) return nullptr;
    return ToReference<CFURLRef>(
        new UrlObject({reinterpret_cast<const char *>(path), static_cast<size_t>(length)}));
}

CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef, CFURLRef url) {
    return url == nullptr ? nullptr : ToReference<CFReadStreamRef>(new ReadStream(*Get<UrlObject>(url)));
}

Boolean CFReadStreamOpen(CFReadStreamRef stream) {
    return stream != nullptr && Get<ReadStream>(stream)->Open();
}

void CFReadStreamClose(CFReadStreamRef stream) {
    if (stream != nullptr) Get<ReadStream>(stream)->Close();
}

CFWriteStreamRef CFWriteStreamCreateWithFile(CFAllocatorRef, CFURLRef url) {
    return url == nullptr ? nullptr : ToReference<CFWriteStreamRef>(new WriteStream(*Get<UrlObject>(url)));
}

Boolean CFWriteStreamOpen(CFWriteStreamRef stream) {
    return stream != nullptr && Get<WriteStream>(stream)->Open();
}

void CFWriteStreamClose(CFWriteStreamRef stream) {
    if (stream != nullptr) Get<WriteStream>(stream)->Close();
}
