#include "platform/core_foundation/xml_text.h"

#include <array>
#include <cstdint>

#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/utf_text.h"

namespace core_foundation {

namespace {

constexpr std::string_view kCommentBegin = "<!--", kCommentEnd = "-->";
constexpr std::string_view kInstructionBegin = "<?", kInstructionEnd = "?>";
constexpr std::string_view kCdataBegin = "<![CDATA[", kCdataEnd = "]]>";

struct Entity {
    std::string_view spelling;
    char byte;
};
constexpr Entity kEntities[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};

std::string_view Between(const char *begin, const char *end) {
    return {begin, static_cast<size_t>(end - begin)};
}

// The place behind `mark`, or null.
const char *FindBehind(const char *begin, const char *limit, std::string_view mark) {
    const size_t found = Between(begin, limit).find(mark);
    return found == std::string_view::npos ? nullptr : begin + found + mark.size();
}

// The place behind an end tag, "</name" and space and ">", or null.
const char *BehindEndTag(const char *tag, std::string_view name, const char *limit) {
    if (!Between(tag + 2, limit).starts_with(name)) return nullptr;
    const char *tail = tag + 2 + name.size();
    while (tail != limit && IsSpace(*tail))
        ++tail;
    return *tail == '>' ? tail + 1 : nullptr;
}

}  // namespace

const char *SkipXmlComment(const char *markup, const char *limit) {
    const std::string_view rest = Between(markup, limit);
    if (rest.starts_with(kCommentBegin)) return FindBehind(markup + kCommentBegin.size(), limit, kCommentEnd);
    if (rest.starts_with(kInstructionBegin)) {
        return FindBehind(markup + kInstructionBegin.size(), limit, kInstructionEnd);
    }
    return nullptr;
}

XmlText XmlTextReader::Decode(const char *begin, const char *special, std::string_view name,
                              const char *limit) {
    decoded_.assign(begin, special);
    for (const char *in = special; in != nullptr && in < limit;) {
        if (Between(in, limit).starts_with("</")) {
            return {decoded_, IsAscii(decoded_), BehindEndTag(in, name, limit)};
        }
        in = DecodeSpecial(in, limit);
        if (in == nullptr) break;
        const char *plain_end = ScanText(in).end;
        decoded_.append(in, plain_end);
        in = plain_end;
    }
    return {{}, false, nullptr};
}

// Each of these gives the place behind what it decoded, or null.

const char *XmlTextReader::DecodeSpecial(const char *in, const char *limit) {
    const std::string_view rest = Between(in, limit);
    if (rest.starts_with("&#")) return DecodeNumber(in);
    if (rest.starts_with('&')) return DecodeEntity(rest);
    return rest.starts_with(kCdataBegin) ? CopyCdata(in, limit) : SkipXmlComment(in, limit);
}

const char *XmlTextReader::DecodeEntity(std::string_view rest) {
    for (const auto &[spelling, byte] : kEntities) {
        if (!rest.starts_with(spelling)) continue;
        decoded_ += byte;
        return rest.data() + spelling.size();
    }
    return nullptr;
}

// "&#38;" or "&#x26;". The sentinel is no digit, so the walk needs no limit.
const char *XmlTextReader::DecodeNumber(const char *in) {
    const bool is_hexadecimal = in[2] == 'x';
    const uint32_t base = is_hexadecimal ? 16 : 10;
    const char *digits = in + (is_hexadecimal ? 3 : 2);
    uint32_t code_point = 0;
    const char *end = digits;
    for (; *end != ';'; ++end) {
        const int digit = HexDigit(*end);
        if (digit < 0 || static_cast<uint32_t>(digit) >= base) return nullptr;
        code_point = code_point * base + static_cast<uint32_t>(digit);
        if (code_point > kLastCodePoint) return nullptr;
    }
    if (end == digits) return nullptr;
    std::array<char, 4> bytes;
    decoded_.append(bytes.data(), WriteUtf8(code_point, bytes.data()));
    return end + 1;
}

const char *XmlTextReader::CopyCdata(const char *in, const char *limit) {
    const char *content = in + kCdataBegin.size();
    const char *behind = FindBehind(content, limit, kCdataEnd);
    if (behind != nullptr) decoded_.append(content, behind - kCdataEnd.size());
    return behind;
}

}  // namespace core_foundation
