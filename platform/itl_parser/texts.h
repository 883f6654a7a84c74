// Data objects, "hohm": texts and other data of any length that belong to a track or a list.
//
//   offset 0x04  u32  length of the header
//          0x08  u32  length of the object
//          0x0C  u32  type of the object
//
// and behind the header, in an object with a text:
//
//          0x00  u32  encoding
//          0x04  u32  length of the text in bytes
//          0x10       the text, without a terminator
#ifndef PLATFORM_ITL_PARSER_TEXTS_H
#define PLATFORM_ITL_PARSER_TEXTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/itl_parser/kept_memory.h"
#include "platform/itl_parser/record_cursor.h"

namespace itl_parser {

constexpr RecordKind kDataObject = {Tag("hohm"), 16, 16, true};

inline uint32_t TypeOf(const Record &object) {
    return object.fields.U32(0x0C);
}

// Reads texts to UTF-8, each once, and keeps them.
class TextReader {
  public:
    TextReader(RecordCursor &cursor, KeptMemory &memory) : cursor_(cursor), memory_(memory) {}

    // The text of an object at whose start the cursor is; `same` is one that it may be again. Empty when the
    // object holds no text. Control characters stay.
    std::optional<std::string_view> Read(const Record &object, std::string_view same);

    // All that an object holds, in Base64.
    std::optional<std::string_view> ReadAsBase64(const Record &object);

  private:
    std::optional<std::string_view> Decode(uint32_t encoding, std::string_view bytes);
    std::string_view DecodeUtf16(std::string_view bytes);
    std::string_view DecodeLatin1(std::string_view bytes);

    RecordCursor &cursor_;
    KeptMemory &memory_;
    std::string room_;
};

}  // namespace itl_parser

#endif
