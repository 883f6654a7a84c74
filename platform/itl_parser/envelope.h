// The head of the file, which is never encrypted and big-endian in every version:
//
//   offset 0x00  4 bytes   "hdfm"
//          0x04  u32       length of this header; the body begins behind it
//          0x08  u32       length of the file
//          0x10  u8, text  length of the version, and the version in ASCII
//          0x30  u32       number of sections in the body
//          0x34  u64       persistent id of the library
//          0x41  u8        encryption of the body: 0 none, 1 all of it, 2 the first part
//          0x43  u8        0: the body is not compressed
//          0x52  u8        0: the body is big-endian
//          0x5C  u32       for encryption 2: how many bytes of the body are encrypted at most
#ifndef PLATFORM_ITL_PARSER_ENVELOPE_H
#define PLATFORM_ITL_PARSER_ENVELOPE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/itl_parser/byte_order.h"

namespace itl_parser {

// What is read of the header; every file has more.
constexpr size_t kEnvelopeBytes = 0x60;

struct Envelope {
    uint32_t header_length = 0;
    uint32_t body_length = 0;
    uint32_t encrypted_length = 0;  // from the start of the body, whole cipher blocks
    bool is_compressed = false;
    ByteOrder order = ByteOrder::kBig;
    uint32_t section_count = 0;
    uint64_t persistent_id = 0;
    std::string version;
};

// Reads the first kEnvelopeBytes of a file of a known length. Empty when they do not stand at the head of
// such a file.
std::optional<Envelope> ReadEnvelope(std::string_view bytes, uint64_t file_length);

}  // namespace itl_parser

#endif
