// Builds property-list values through the CoreFoundation names as the input decides, compares dictionaries
// with a map, and writes the whole in each form: what is read back must be the same values.
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"
#include "platform/core_foundation/cf_owner.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/core_foundation/value.h"
#include "platform/core_foundation/writer.h"

namespace {

using core_foundation::ToValue;

constexpr int kDeepest = 12;
constexpr size_t kMostValues = 400;

// The old-style form knows texts, data and containers only.
enum class Kinds { kAll, kOldStyle };

// What is not UTF-8 stands for its Latin-1 letters, since only UTF-8 can be kept exactly in every form.
std::string ChooseText(Choices &choices) {
    std::string bytes = choices.Text();
    if (core_foundation::IsUtf8(bytes)) return bytes;
    std::string text;
    for (const char byte : bytes) {
        char letter[4];
        text.append(letter, core_foundation::WriteUtf8(static_cast<unsigned char>(byte), letter));
    }
    return text;
}

CFOwner MakeText(const std::string &text) {
    return CFOwner(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(text.data()),
                                           static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, 0));
}

CFOwner MakeNumber(Choices &choices) {
    const auto number = static_cast<int64_t>(choices.Number(8));
    return CFOwner(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &number));
}

CFOwner MakeReal(Choices &choices) {
    const auto number = static_cast<double>(static_cast<int64_t>(choices.Number(8))) / 1024;
    const double real = std::ldexp(number, static_cast<int>(choices.Number(1)) - 128);
    return CFOwner(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &real));
}

// Whole seconds of about a thousand years, since the text form has no others.
CFOwner MakeDate(Choices &choices) {
    const auto seconds = static_cast<int64_t>(choices.Number(5)) >> 6;
    return CFOwner(CFDateCreate(kCFAllocatorDefault, static_cast<double>(seconds)));
}

// Built in one go, or by replacing a part.
CFOwner MakeData(Choices &choices) {
    const std::string bytes = choices.Text();
    CFOwner data(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                              static_cast<CFIndex>(bytes.size())));
    if (!choices.Flag()) return data;
    const size_t start = choices.Below(bytes.size() + 1);
    const size_t length = choices.Below(bytes.size() - start + 1);
    const std::string part = choices.Text();
    auto *const changed = static_cast<CFMutableDataRef>(const_cast<void *>(data.get()));
    CFDataReplaceBytes(changed, CFRangeMake(static_cast<CFIndex>(start), static_cast<CFIndex>(length)),
                       reinterpret_cast<const UInt8 *>(part.data()), static_cast<CFIndex>(part.size()));
    const std::string expected = std::string(bytes).replace(start, length, part);
    Require(CFDataGetLength(changed) == static_cast<CFIndex>(expected.size()) &&
                expected == AsText(CFDataGetBytePtr(changed), expected.size()),
            "data has the bytes that were put into it");
    return data;
}

class Builder {
  public:
    Builder(Choices &choices, Kinds kinds) : choices_(choices), kinds_(kinds) {}

    CFOwner Value(int depth = 0) {
        enum { kText, kData, kArray, kDictionary, kNumber, kReal, kDate, kFlag, kCount };
        const size_t kind = choices_.Below(kinds_ == Kinds::kAll ? size_t{kCount} : size_t{kNumber});
        const bool room = depth < kDeepest && ++values_ < kMostValues;
        switch (kind) {
            case kData:
                return MakeData(choices_);
            case kArray:
                return room ? Array(depth) : MakeText("");
            case kDictionary:
                return room ? Dictionary(depth) : MakeText("");
            case kNumber:
                return MakeNumber(choices_);
            case kReal:
                return MakeReal(choices_);
            case kDate:
                return MakeDate(choices_);
            case kFlag:
                return CFOwner(CFRetain(choices_.Flag() ? kCFBooleanTrue : kCFBooleanFalse));
            default:
                return MakeText(ChooseText(choices_));
        }
    }

  private:
    CFOwner Array(int depth) {
        CFOwner array(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
        auto *const items = static_cast<CFMutableArrayRef>(const_cast<void *>(array.get()));
        for (size_t count = choices_.Below(8); count > 0 && !choices_.AtEnd(); --count)
            CFArrayAppendValue(items, Value(depth + 1).get());
        return array;
    }

    CFOwner Dictionary(int depth) {
        CFOwner dictionary(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                     &kCFTypeDictionaryValueCallBacks));
        auto *const pairs = static_cast<CFMutableDictionaryRef>(const_cast<void *>(dictionary.get()));
        std::map<std::string, const void *> expected;
        for (size_t count = choices_.Below(64); count > 0 && !choices_.AtEnd(); --count) {
            const std::string text =
                choices_.Flag() ? ChooseText(choices_) : std::to_string(choices_.Number(1));
            const CFOwner key = MakeText(text);
            if (choices_.Below(8) == 7) {
                CFDictionaryRemoveValue(pairs, key.get());
                expected.erase(text);
            } else {
                const CFOwner value = Value(depth + 1);
                CFDictionaryAddValue(pairs, key.get(), value.get());
                expected.emplace(text, value.get());
            }
        }
        Compare(pairs, expected);
        return dictionary;
    }

    static void Compare(CFDictionaryRef pairs, const std::map<std::string, const void *> &expected) {
        Require(CFDictionaryGetCount(pairs) == static_cast<CFIndex>(expected.size()),
                "a dictionary has as many pairs as a map");
        for (const auto &[text, value] : expected)
            Require(CFDictionaryGetValue(pairs, MakeText(text).get()) == value, "a key finds its value");
    }

    Choices &choices_;
    Kinds kinds_;
    size_t values_ = 0;
};

void CheckRoundTrip(CFTypeRef list, bool (*write)(const core_foundation::Value &root, std::string &out)) {
    std::string written;
    Require(write(*ToValue(list), written), "these values can be written");
    const CFOwner data(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(written.data()),
                                    static_cast<CFIndex>(written.size())));
    const CFOwner copy(CFPropertyListCreateWithData(kCFAllocatorDefault, static_cast<CFDataRef>(data.get()),
                                                    kCFPropertyListImmutable, nullptr, nullptr));
    Require(copy != nullptr && CFEqual(list, copy.get()), "what is read is what was written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    Choices choices(AsText(bytes, size));
    const Kinds kinds = choices.Flag() ? Kinds::kAll : Kinds::kOldStyle;
    const CFOwner list = Builder(choices, kinds).Value();
    CheckRoundTrip(list.get(), core_foundation::WriteBinary);
    CheckRoundTrip(list.get(), core_foundation::WriteXml);
    if (kinds == Kinds::kOldStyle) CheckRoundTrip(list.get(), core_foundation::WriteOldStyle);
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    for (const char first : {'\0', '\1'}) {
        std::string seed(1, first);
        seed += "\3\x3F";
        for (int i = 0; i < 2000; ++i)
            seed += static_cast<char>(i * i * 31 >> 3);
        seeds.push_back(seed);
    }
    return seeds;
}
