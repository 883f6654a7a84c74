#include "platform/itl_parser/texts.h"

#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/limits.h"

namespace itl_parser {

namespace {

constexpr size_t kTextStart = 16;

// Which of them iTunes takes depends on the text, and for some on the version.
enum Encoding : uint32_t {
    kOneByte = 0,     // locations; all texts of the first versions
    kUtf16 = 1,       // in the byte order of the body
    kOneByteUrl = 2,  // locations
    kCodePoints = 3,  // of U+0000 to U+00FF
};

}  // namespace

std::optional<std::string_view> TextReader::Read(const Record &object, std::string_view same) {
    const uint64_t payload = object.end - object.header_end;
    if (payload < kTextStart || !cursor_.MoveTo(object.header_end)) return std::nullopt;
    const char *start = cursor_.Peek(kTextStart);
    if (start == nullptr) return std::nullopt;
    const uint32_t encoding = LoadU32(start, cursor_.order());
    const uint32_t length = LoadU32(start + 4, cursor_.order());
    if (length > payload - kTextStart || limits::kItlTextBytes.IsPassedBy(length)) return std::nullopt;
    start = cursor_.Peek(kTextStart + length);
    if (start == nullptr) return std::nullopt;
    const auto text = Decode(encoding, {start + kTextStart, length});
    return text ? std::make_optional(memory_.Keep(*text, same)) : std::nullopt;
}

std::optional<std::string_view> TextReader::ReadAsBase64(const Record &object) {
    const uint64_t payload = object.end - object.header_end;
    if (limits::kItlTextBytes.IsPassedBy(payload) || !cursor_.MoveTo(object.header_end)) return std::nullopt;
    const char *bytes = cursor_.Peek(payload);
    if (bytes == nullptr) return std::nullopt;
    room_.clear();
    core_foundation::AppendBase64(reinterpret_cast<const uint8_t *>(bytes), payload, room_);
    return memory_.Keep(room_, {});
}

std::optional<std::string_view> TextReader::Decode(uint32_t encoding, std::string_view bytes) {
    switch (encoding) {
        case kUtf16:
            return DecodeUtf16(bytes);
        case kCodePoints:
            return DecodeLatin1(bytes);
        case kOneByte:
        case kOneByteUrl:
            // Beyond ASCII nothing tells the character set. UTF-8 that is not meant as such is rare.
            return core_foundation::IsUtf8(bytes) ? bytes : DecodeLatin1(bytes);
        default:
            return std::nullopt;
    }
}

std::string_view TextReader::DecodeUtf16(std::string_view bytes) {
    const size_t units = bytes.size() / 2;
    room_.resize(units * core_foundation::kMaxUtf8PerUnit);
    const char *end =
        core_foundation::Utf16ToUtf8(bytes.data(), units, cursor_.order() == ByteOrder::kBig, room_.data());
    return {room_.data(), static_cast<size_t>(end - room_.data())};
}

std::string_view TextReader::DecodeLatin1(std::string_view bytes) {
    if (core_foundation::IsAscii(bytes)) return bytes;
    constexpr size_t kLongestCharacter = 2;
    room_.resize(bytes.size() * kLongestCharacter);
    char *out = room_.data();
    for (const char byte : bytes)
        out = core_foundation::WriteUtf8(static_cast<uint8_t>(byte), out);
    return {room_.data(), static_cast<size_t>(out - room_.data())};
}

}  // namespace itl_parser
