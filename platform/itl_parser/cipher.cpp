#include "platform/itl_parser/cipher.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace itl_parser {

namespace {

// The same in every version of iTunes.
constexpr char kKey[] = "BHUILuilfghuila3";
static_assert(sizeof kKey - 1 == AES128_KEY_SIZE);

}  // namespace

DecryptingSource::DecryptingSource(core_foundation::ByteSource &stored, size_t encrypted)
    : stored_(stored), encrypted_left_(encrypted) {
    aes128_set_decrypt_key(&cipher_, reinterpret_cast<const uint8_t *>(kKey));
}

std::optional<size_t> DecryptingSource::Read(char *buffer, size_t size) {
    size_t done = 0;
    while (done < size) {
        const std::optional<size_t> count = ReadSome(buffer + done, size - done);
        if (!count) return std::nullopt;
        if (*count == 0) break;
        done += *count;
    }
    total_ += done;
    return done;
}

std::optional<size_t> DecryptingSource::ReadSome(char *buffer, size_t size) {
    if (block_left_ == 0 && encrypted_left_ == 0) return stored_.Read(buffer, size);
    if (block_left_ == 0 && size >= kCipherBlock) {
        const size_t whole = std::min(size / kCipherBlock * kCipherBlock, encrypted_left_);
        return ReadBlocks(buffer, whole) ? std::make_optional(whole) : std::nullopt;
    }
    if (block_left_ == 0) {
        if (!ReadBlocks(block_.data(), kCipherBlock)) return std::nullopt;
        block_left_ = kCipherBlock;
    }
    const size_t count = std::min(size, block_left_);
    std::memcpy(buffer, block_.data() + kCipherBlock - block_left_, count);
    block_left_ -= count;
    return count;
}

bool DecryptingSource::ReadBlocks(char *buffer, size_t size) {
    if (stored_.Read(buffer, size) != size) return false;
    auto *bytes = reinterpret_cast<uint8_t *>(buffer);
    aes128_decrypt(&cipher_, size, bytes, bytes);
    encrypted_left_ -= size;
    return true;
}

}  // namespace itl_parser
