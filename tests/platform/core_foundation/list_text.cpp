#include "tests/platform/core_foundation/list_text.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>

#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_walk.h"
#include "tests/support/temp_folder.h"

using core_foundation::ToValue;
using core_foundation::TreeWalk;
using core_foundation::Value;
using core_foundation::ValueType;

namespace {

template <typename... Arguments>
void Print(std::string &out, const char *format, Arguments... arguments) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), format, arguments...);
    out += buffer.data();
}

void AppendQuoted(std::string_view text, std::string &out) {
    out += '"';
    for (const char byte : text) {
        if (byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\') {
            out += byte;
        } else {
            Print(out, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        }
    }
    out += '"';
}

void AppendScalar(const Value &value, std::string &out) {
    switch (value.type) {
        case ValueType::kString:
            AppendQuoted(core_foundation::TextOf(value), out);
            break;
        case ValueType::kNumber:
            if (core_foundation::Has(value, core_foundation::kReal)) {
                Print(out, "r%016llx", static_cast<unsigned long long>(std::bit_cast<uint64_t>(value.real)));
            } else {
                out += "i" + core_foundation::FormatInteger(value);
            }
            break;
        case ValueType::kBoolean:
            out += value.integer != 0 ? 'T' : 'F';
            break;
        case ValueType::kDate:
            Print(out, "d%lld", std::llround(value.real * 1000));
            break;
        case ValueType::kData:
            out += '<';
            for (uint32_t i = 0; i < value.length; ++i)
                Print(out, "%02x", static_cast<unsigned>(value.bytes[i]));
            out += '>';
            break;
        default:
            Print(out, "u%lld", static_cast<long long>(value.integer));
    }
}

}  // namespace

std::string Describe(CFPropertyListRef list) {
    if (list == nullptr) return "null";
    std::string out;
    bool needs_comma = false;
    TreeWalk walk(*ToValue(list));
    while (walk.Next()) {
        const bool is_array = walk.value().type == ValueType::kArray;
        if (walk.event() == TreeWalk::Event::kClose) {
            out += is_array ? ']' : '}';
            needs_comma = true;
            continue;
        }
        if (needs_comma) out += ',';
        if (walk.event() == TreeWalk::Event::kOpen) {
            out += is_array ? '[' : '{';
        } else {
            AppendScalar(walk.value(), out);
        }
        if (walk.event() == TreeWalk::Event::kKey) out += ':';
        needs_comma = walk.event() == TreeWalk::Event::kScalar;
    }
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

namespace {

CFURLRef NewUrl(const std::string &path) {
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8 *>(path.data()),
                                                   static_cast<CFIndex>(path.size()), false);
}

}  // namespace

Owned ReadFile(const std::string &path) {
    const Owned url(NewUrl(path));
    CFReadStreamRef stream =
        CFReadStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(url.get()));
    const Owned owned_stream(stream);
    if (!CFReadStreamOpen(stream)) return nullptr;
    Owned list(CFPropertyListCreateWithStream(kCFAllocatorDefault, stream, 0, 0, nullptr, nullptr));
    CFReadStreamClose(stream);
    return list;
}

bool WriteFile(const std::string &path, CFPropertyListRef list, CFPropertyListFormat format) {
    const Owned url(NewUrl(path));
    CFWriteStreamRef stream =
        CFWriteStreamCreateWithFile(kCFAllocatorDefault, static_cast<CFURLRef>(url.get()));
    const Owned owned_stream(stream);
    if (!CFWriteStreamOpen(stream)) return false;
    const CFIndex written = CFPropertyListWrite(list, stream, format, 0, nullptr);
    CFWriteStreamClose(stream);
    return written > 0;
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
        units += big_endian ? std::string{'\0', byte} : std::string{byte, '\0'};
    return units;
}
