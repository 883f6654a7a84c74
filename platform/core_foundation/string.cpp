#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/heap_object.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/limits.h"

namespace core_foundation {

namespace {

class StringObject : public HeapObject {
  public:
    explicit StringObject(std::string_view characters)
        : HeapObject(ValueType::kString), storage_(characters) {
        text = storage_.c_str();
        length = static_cast<uint32_t>(storage_.size());
        if (IsAscii(storage_)) flags |= kAscii;
    }

    void MakeConstant() { flags |= kConstant; }

  private:
    std::string storage_;
};

// Constant strings by their text, for the life of the process.
struct ConstantStrings {
    std::mutex mutex;
    std::unordered_map<std::string_view, std::unique_ptr<StringObject>> by_text;
};

ConstantStrings &TheConstantStrings() {
    static auto *const constants =
        new ConstantStrings;  // never destroyed: static objects may hold its strings
    return *constants;
}

}  // namespace

}  // namespace core_foundation

using namespace core_foundation;

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding) {
    if (text == nullptr) return nullptr;
    const auto *bytes = reinterpret_cast<const UInt8 *>(text);
    return CFStringCreateWithBytes(allocator, bytes, static_cast<CFIndex>(std::strlen(text)), encoding,
                                   false);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8 *bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean) {
    if (encoding != kCFStringEncodingUTF8 || count < 0 || (bytes == nullptr && count > 0)) return nullptr;
    const std::string_view text(reinterpret_cast<const char *>(bytes), static_cast<size_t>(count));
    if (limits::kListBytes.IsPassedBy(text.size())) return nullptr;
    return ToReference<CFStringRef>(new StringObject(text));
}

CFStringRef __CFStringMakeConstantString(const char *literal) {
    ConstantStrings &constants = TheConstantStrings();
    const std::lock_guard lock(constants.mutex);
    const auto found = constants.by_text.find(literal);
    if (found != constants.by_text.end()) return ToReference<CFStringRef>(found->second.get());
    auto constant = std::make_unique<StringObject>(literal);
    constant->MakeConstant();
    const auto reference = ToReference<CFStringRef>(constant.get());
    constants.by_text[TextOf(*constant)] = std::move(constant);
    return reference;
}

CFIndex CFStringGetLength(CFStringRef string) {
    if (string == nullptr) return 0;
    const Value &value = *ToValue(string);
    return static_cast<CFIndex>(Has(value, kAscii) ? value.length : Utf16Length(TextOf(value)));
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    if (encoding != kCFStringEncodingUTF8) return -1;
    return length * static_cast<CFIndex>(kMaxUtf8PerUnit);
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex buffer_size, CFStringEncoding encoding) {
    const char *text = CFStringGetCStringPtr(string, encoding);
    if (text == nullptr || buffer == nullptr || buffer_size < 0) return false;
    const size_t size = size_t{ToValue(string)->length} + 1;
    if (size > static_cast<size_t>(buffer_size)) return false;
    std::memcpy(buffer, text, size);
    return true;
}

const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding) {
    return string == nullptr || encoding != kCFStringEncodingUTF8 ? nullptr : ToValue(string)->text;
}
