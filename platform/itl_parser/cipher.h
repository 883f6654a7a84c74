#ifndef PLATFORM_ITL_PARSER_CIPHER_H
#define PLATFORM_ITL_PARSER_CIPHER_H

#include <nettle/aes.h>

#include <array>
#include <cstddef>
#include <optional>

#include "platform/core_foundation/byte_source.h"

namespace itl_parser {

constexpr size_t kCipherBlock = AES_BLOCK_SIZE;

// The body of a file in plain: its first `encrypted` bytes, which are whole blocks of AES-128, are decrypted,
// the rest passes.
class DecryptingSource : public core_foundation::ByteSource {
  public:
    DecryptingSource(core_foundation::ByteSource &stored, size_t encrypted);

    // Fails too when the encrypted part has no end.
    std::optional<size_t> Read(char *buffer, size_t size) override;

    // Bytes that were given out.
    size_t total() const { return total_; }

  private:
    std::optional<size_t> ReadSome(char *buffer, size_t size);
    bool ReadBlocks(char *buffer, size_t size);

    core_foundation::ByteSource &stored_;
    size_t encrypted_left_;
    size_t total_ = 0;
    aes128_ctx cipher_;
    // The block of which a reader has asked for a part.
    std::array<char, kCipherBlock> block_{};
    size_t block_left_ = 0;
};

}  // namespace itl_parser

#endif
