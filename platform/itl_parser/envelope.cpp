#include "platform/itl_parser/envelope.h"

#include <algorithm>

#include "platform/itl_parser/cipher.h"

namespace itl_parser {

namespace {

constexpr std::string_view kMark = "hdfm";
constexpr size_t kVersionRoom = 0x1F;

enum Encryption : uint8_t { kPlain = 0, kWholeBody = 1, kFirstPart = 2 };

// Empty for a mode that no known version writes.
std::optional<uint32_t> EncryptedLength(uint8_t mode, uint32_t body_length, uint32_t first_part) {
    switch (mode) {
        case kPlain:
            return 0;
        case kWholeBody:
            return body_length / kCipherBlock * kCipherBlock;
        case kFirstPart:
            return std::min(body_length, first_part) / kCipherBlock * kCipherBlock;
        default:
            return std::nullopt;
    }
}

std::optional<std::string> ReadVersion(std::string_view bytes) {
    const size_t length = static_cast<uint8_t>(bytes[0x10]);
    if (length > kVersionRoom) return std::nullopt;
    const std::string_view version = bytes.substr(0x11, length);
    const bool is_ascii =
        std::all_of(version.begin(), version.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
    return is_ascii ? std::make_optional<std::string>(version) : std::nullopt;
}

}  // namespace

std::optional<Envelope> ReadEnvelope(std::string_view bytes, uint64_t file_length) {
    if (bytes.size() < kEnvelopeBytes || !bytes.starts_with(kMark)) return std::nullopt;
    const auto u8 = [bytes](size_t offset) { return static_cast<uint8_t>(bytes[offset]); };
    const auto u32 = [bytes](size_t offset) { return LoadU32(bytes.data() + offset, ByteOrder::kBig); };
    Envelope envelope;
    envelope.header_length = u32(0x04);
    if (u32(0x08) != file_length || envelope.header_length < kEnvelopeBytes ||
        envelope.header_length > file_length) {
        return std::nullopt;
    }
    envelope.body_length = u32(0x08) - envelope.header_length;
    const auto encrypted = EncryptedLength(u8(0x41), envelope.body_length, u32(0x5C));
    auto version = ReadVersion(bytes);
    if (!encrypted || !version) return std::nullopt;
    envelope.encrypted_length = *encrypted;
    envelope.version = std::move(*version);
    envelope.is_compressed = u8(0x43) != 0;
    envelope.order = u8(0x52) == 0 ? ByteOrder::kBig : ByteOrder::kLittle;
    envelope.section_count = u32(0x30);
    envelope.persistent_id = LoadNumber(bytes.data() + 0x34, 8, ByteOrder::kBig);
    return envelope;
}

}  // namespace itl_parser
