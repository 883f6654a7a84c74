// Tells the three forms apart and hands the bytes to the reader or the list to the writer.

#include <memory>
#include <new>

#include "platform/core_foundation/binary_format.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/file_stream.h"
#include "platform/core_foundation/reader.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/core_foundation/writer.h"
#include "platform/limits.h"

namespace core_foundation {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF", kLittleEndianMark = "\xFF\xFE",
                           kBigEndianMark = "\xFE\xFF";

enum class Encoding { kUtf8, kUtf16LittleEndian, kUtf16BigEndian };

// By the mark, or else by where the zero byte of the first character stands: it is ASCII in every list.
Encoding EncodingOf(std::string_view bytes) {
    if (bytes.starts_with(kLittleEndianMark)) return Encoding::kUtf16LittleEndian;
    if (bytes.starts_with(kBigEndianMark)) return Encoding::kUtf16BigEndian;
    if (bytes.size() < 2 || (bytes[0] == '\0') == (bytes[1] == '\0')) return Encoding::kUtf8;
    return bytes[0] == '\0' ? Encoding::kUtf16BigEndian : Encoding::kUtf16LittleEndian;
}

struct ReadResult {
    std::optional<Value> root;
    CFPropertyListFormat format;
};

ReadResult ReadText(InputWindow &window, Document &document, const DictionaryWatch *watch) {
    if (window.view().starts_with(kUtf8Mark)) window.Skip(kUtf8Mark.size());
    if (LooksLikeXml(TrimSpace(window.view())))
        return {ReadXml(window, document, watch), kCFPropertyListXMLFormat_v1_0};
    if (!window.ReadAll()) return {};
    if (limits::kOldStyleBytes.IsPassedBy(window.view().size())) return {};
    return {ReadOldStyle(window.view(), document), kCFPropertyListOpenStepFormat};
}

ReadResult ReadUtf16(InputWindow &window, bool big_endian, Document &document) {
    if (!window.ReadAll()) return {};
    const size_t units = window.view().size() / 2;
    const MemoryBlock converted(units * kMaxUtf8PerUnit + 1);
    if (!converted) return {};
    const char *end = Utf16ToUtf8(window.begin(), units, big_endian, converted.data());
    MemorySource source({converted.data(), static_cast<size_t>(end - converted.data())});
    InputWindow text(source);
    return text.Begin() ? ReadText(text, document, nullptr) : ReadResult{};
}

ReadResult ReadAny(InputWindow &window, Document &document, const DictionaryWatch *watch) {
    if (!window.Begin()) return {};
    if (window.view().starts_with(kBinaryMagic)) {
        if (!window.ReadAll()) return {};
        return {ReadBinary(window.view(), document), kCFPropertyListBinaryFormat_v1_0};
    }
    const Encoding encoding = EncodingOf(window.view());
    if (encoding == Encoding::kUtf8) return ReadText(window, document, watch);
    return ReadUtf16(window, encoding == Encoding::kUtf16BigEndian, document);
}

// Memory may run out at any place of a list that is hostile or huge; that is one more list that cannot be
// read.
CFPropertyListRef ReadList(ByteSource &source, CFPropertyListFormat *format,
                           const DictionaryWatch *watch = nullptr) {
    std::unique_ptr<Document> document;
    try {
        document = std::make_unique<Document>();
        InputWindow window(source);
        const ReadResult result = ReadAny(window, *document, watch);
        if (result.root) {
            if (format != nullptr) *format = result.format;
            return Document::Publish(std::move(document), *result.root);
        }
    } catch (const std::bad_alloc &) {
        // As below.
    }
    if (watch != nullptr) watch->on_failure();
    return nullptr;
}

// False without memory too: what has been written until then is no list.
bool WriteAs(CFPropertyListFormat format, const Value &root, std::string &out) try {
    switch (format) {
        case kCFPropertyListXMLFormat_v1_0:
            return WriteXml(root, out);
        case kCFPropertyListBinaryFormat_v1_0:
            return WriteBinary(root, out);
        case kCFPropertyListOpenStepFormat:
            return WriteOldStyle(root, out);
        default:
            return false;
    }
} catch (const std::bad_alloc &) {
    return false;
}

void ClearError(CFErrorRef *error) {
    if (error != nullptr) *error = nullptr;
}

ByteSource &SourceOf(CFReadStreamRef stream) {
    return static_cast<ReadStream &>(*const_cast<Value *>(ToValue(stream)));
}

}  // namespace

CFPropertyListRef ReadWatchedList(CFReadStreamRef stream, const DictionaryWatch &watch) {
    return stream == nullptr ? nullptr : ReadList(SourceOf(stream), nullptr, &watch);
}

}  // namespace core_foundation

using namespace core_foundation;

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data, CFOptionFlags,
                                               CFPropertyListFormat *format, CFErrorRef *error) {
    ClearError(error);
    if (data == nullptr) return nullptr;
    const Value &record = *ToValue(data);
    MemorySource source({reinterpret_cast<const char *>(record.bytes), record.length});
    return ReadList(source, format);
}

CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef, CFReadStreamRef stream, CFIndex length,
                                                 CFOptionFlags, CFPropertyListFormat *format,
                                                 CFErrorRef *error) {
    ClearError(error);
    if (stream == nullptr || length < 0) return nullptr;
    ByteSource &source = SourceOf(stream);
    if (length == 0) return ReadList(source, format);
    LimitedSource limited(source, static_cast<size_t>(length));
    return ReadList(limited, format);
}

CFIndex CFPropertyListWrite(CFPropertyListRef list, CFWriteStreamRef stream, CFPropertyListFormat format,
                            CFOptionFlags, CFErrorRef *error) {
    ClearError(error);
    if (stream == nullptr) return 0;
    auto *writer = static_cast<WriteStream *>(const_cast<Value *>(ToValue(stream)));
    std::string bytes;
    if (list == nullptr || !WriteAs(format, *ToValue(list), bytes)) {
        writer->Discard();  // a target that exists is worth more than an empty file
        return 0;
    }
    return writer->Write(bytes) ? static_cast<CFIndex>(bytes.size()) : 0;
}
