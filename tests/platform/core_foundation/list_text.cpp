#include "tests/platform/core_foundation/list_text.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>

#include "fixtures/temp_folder.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_walk.h"

using core_foundation::TreeWalk;
using core_foundation::Value;
using core_foundation::ValueType;

namespace {

template <typename Number>
std::string Print(const char *format, Number number) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), format, number);
    return buffer.data();
}

std::string Quoted(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        const bool is_plain = byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
        out += Print(is_plain ? "%c" : "\\x%02x", static_cast<unsigned char>(byte));
    }
    return '"' + out + '"';
}

std::string DescribeScalar(const Value &value) {
    std::string digits;
    switch (value.type) {
        case ValueType::kString:
            return Quoted(core_foundation::TextOf(value));
        case ValueType::kNumber:
            return core_foundation::Has(value, core_foundation::kReal)
                       ? Print("r%016lx", std::bit_cast<uint64_t>(value.real))
                       : "i" + core_foundation::FormatInteger(value);
        case ValueType::kBoolean:
            return value.integer != 0 ? "T" : "F";
        case ValueType::kDate:
            return Print("d%lld", std::llround(value.real * 1000));
        case ValueType::kData:
            for (uint32_t i = 0; i < value.length; ++i)
                digits += Print("%02x", value.bytes[i]);
            return '<' + digits + '>';
        default:
            return "u" + std::to_string(value.integer);
    }
}

Owned NewUrl(const std::string &path) {
    return Owned(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                         reinterpret_cast<const UInt8 *>(path.data()),
                                                         static_cast<CFIndex>(path.size()), false));
}

}  // namespace

std::string Describe(CFPropertyListRef list) {
    if (list == nullptr) return "null";
    std::string out;
    TreeWalk walk(*core_foundation::ToValue(list));
    while (walk.Next()) {
        const bool is_array = walk.value().type == ValueType::kArray;
        if (walk.event() == TreeWalk::Event::kOpen) {
            out += is_array ? "[" : "{";
        } else if (walk.event() == TreeWalk::Event::kClose) {
            if (out.back() == ',') out.pop_back();
            out += is_array ? "]," : "},";
        } else {
            out += DescribeScalar(walk.value()) + (walk.event() == TreeWalk::Event::kKey ? ':' : ',');
        }
    }
    out.pop_back();
    return out;
}

std::string DescribeBytes(std::string_view bytes) {
    return Describe(ReadBytes(bytes).get());
}

Owned ReadBytes(std::string_view bytes, CFPropertyListFormat *format) {
    const Owned data(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                                  static_cast<CFIndex>(bytes.size())));
    return Owned(CFPropertyListCreateWithData(kCFAllocatorDefault, static_cast<CFDataRef>(data.get()),
                                              kCFPropertyListImmutable, format, nullptr));
}

Owned NewReadStream(const std::string &path) {
    const Owned url = NewUrl(path);
    return Owned(CFReadStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(url.get())));
}

Owned ReadFile(const std::string &path) {
    const Owned owned_stream = NewReadStream(path);
    auto *stream = static_cast<CFReadStreamRef>(const_cast<void *>(owned_stream.get()));
    if (!CFReadStreamOpen(stream)) return nullptr;
    Owned list(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, 0, nullptr, nullptr));
    CFReadStreamClose(stream);
    return list;
}

bool WriteFile(const std::string &path, CFPropertyListRef list, CFPropertyListFormat format) {
    const Owned url = NewUrl(path);
    CFWriteStreamRef stream =
        CFWriteStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(url.get()));
    const Owned owned_stream(stream);
    const bool is_written =
        CFWriteStreamOpen(stream) && CFPropertyListWrite(list, stream, format, 0, nullptr) > 0;
    CFWriteStreamClose(stream);
    return is_written;
}

std::string WriteBytes(CFPropertyListRef list, CFPropertyListFormat format) {
    const TempFolder folder;
    const std::string path = folder.path() / "written.plist";
    return WriteFile(path, list, format) ? ReadWholeFile(path) : "";
}

Owned NewString(const std::string &text) {
    return Owned(CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

std::string Utf16(std::string_view text, bool big_endian) {
    std::string units;
    for (const char byte : text)
        (units += big_endian ? '\0' : byte) += big_endian ? byte : '\0';
    return units;
}

std::string Repeat(std::string_view text, size_t count) {
    std::string repeated;
    while (count-- > 0)
        repeated += text;
    return repeated;
}
