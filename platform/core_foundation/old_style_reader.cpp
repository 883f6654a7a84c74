// The text form that came before XML:
//
//   // a comment
//   { Name = Value; "Quoted Name" = ("First", Second); Data = <0fbd77 1c2735ae>; }
//
// and the same without the outer braces, as .strings files have it, where "Name;" stands for "Name = Name;".
// GNUstep adds typed values: <*I5> <*R0.25> <*BY> <*D2001-01-01 00:00:00 +0000>. Every other scalar is a
// string.

#include <algorithm>
#include <array>
#include <string>

#include "platform/core_foundation/reader.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_builder.h"
#include "platform/core_foundation/utf_text.h"

namespace core_foundation {

namespace {

bool IsBareLetter(char byte) {
    const bool is_letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return is_letter || (byte >= '0' && byte <= '9') ||
           std::string_view("_$/:.-").find(byte) != std::string_view::npos;
}

// What a letter behind a backslash stands for; the letter itself where it has no meaning.
char EscapedByte(char letter) {
    constexpr std::string_view kLetters = "abfnrtv", kBytes = "\a\b\f\n\r\t\v";
    const size_t found = kLetters.find(letter);
    return found == std::string_view::npos ? letter : kBytes[found];
}

class OldStyleReader {
  public:
    OldStyleReader(std::string_view text, Document &document) : rest_(text), builder_(document) {}

    std::optional<Value> Read() {
        if (!SkipSpace() || rest_.empty() || !ReadRoot()) return std::nullopt;
        while (builder_.depth() > 0) {
            if (!ReadNext()) return std::nullopt;
        }
        if (!SkipSpace() || !rest_.empty()) return std::nullopt;
        return root_;
    }

  private:
    bool Take(char byte) {
        if (!rest_.starts_with(byte)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // Space and comments; false for a comment without end.
    bool SkipSpace() {
        while (!rest_.empty()) {
            if (rest_.starts_with("//")) {
                rest_.remove_prefix(std::min(rest_.find_first_of("\n\r"), rest_.size()));
            } else if (rest_.starts_with("/*")) {
                const size_t end = rest_.find("*/", 2);
                if (end == std::string_view::npos) return false;
                rest_.remove_prefix(end + 2);
            } else if (IsSpace(rest_[0])) {
                rest_.remove_prefix(1);
            } else {
                break;
            }
        }
        return true;
    }

    // A string that is followed by '=' or ';' is the first key of a dictionary without braces.
    bool ReadRoot() {
        const std::string_view start = rest_;
        if (rest_[0] == '{' || rest_[0] == '(' || rest_[0] == '<') return ReadValue();
        if (!ReadString() || !SkipSpace()) return false;
        const bool has_braces = !rest_.starts_with('=') && !rest_.starts_with(';');
        rest_ = start;
        if (has_braces) return ReadValue();
        is_strings_file_ = true;
        return builder_.Open(ValueType::kDictionary);
    }

    // The next item, pair or end of the innermost container.
    bool ReadNext() {
        if (!SkipSpace()) return false;
        if (TakeEnd()) {
            Accept(builder_.Close());
            return builder_.depth() == 0 || TakeSeparator();
        }
        if (builder_.container() == ValueType::kArray) return ReadItem();
        if (!ReadString()) return false;
        builder_.PushKey(string_, IsAscii(string_));
        if (!SkipSpace()) return false;
        if (rest_.starts_with(';')) {
            Accept(NewString());
            return TakeSeparator();
        }
        return Take('=') && SkipSpace() && ReadItem();
    }

    bool TakeEnd() {
        if (is_strings_file_ && builder_.depth() == 1) return rest_.empty();
        return Take(builder_.container() == ValueType::kArray ? ')' : '}');
    }

    // A value and what separates it from the next, unless it is a container, whose end is yet to come.
    bool ReadItem() {
        const size_t depth = builder_.depth();
        return ReadValue() && (builder_.depth() > depth || TakeSeparator());
    }

    // The last separator before the end of a container may be missing.
    bool TakeSeparator() {
        if (!SkipSpace()) return false;
        if (builder_.container() == ValueType::kArray) return Take(',') || rest_.starts_with(')');
        return Take(';') || rest_.starts_with('}');
    }

    void Accept(const Value &value) {
        if (builder_.depth() == 0) {
            root_ = value;
        } else {
            builder_.Push(value);
        }
    }

    bool ReadValue() {
        if (Take('{')) return builder_.Open(ValueType::kDictionary);
        if (Take('(')) return builder_.Open(ValueType::kArray);
        if (Take('<')) return Take('*') ? ReadTyped() : ReadData();
        if (!ReadString()) return false;
        Accept(NewString());
        return true;
    }

    Value NewString() {
        return MakeString(builder_.document().CopyText(string_), string_.size(), IsAscii(string_));
    }

    // Each of the following leaves its text in string_.

    bool ReadString() {
        string_.clear();
        if (Take('"')) return ReadQuoted('"');
        if (Take('\'')) return ReadQuoted('\'');
        while (!rest_.empty() && IsBareLetter(rest_[0])) {
            string_ += rest_[0];
            rest_.remove_prefix(1);
        }
        return !string_.empty();
    }

    bool ReadQuoted(char quote) {
        const std::array<char, 3> special = {quote, '\\', '\0'};
        while (true) {
            const size_t plain = rest_.find_first_of(special.data());
            if (plain == std::string_view::npos) return false;
            string_ += rest_.substr(0, plain);
            rest_.remove_prefix(plain + 1);
            if (rest_.data()[-1] == quote) return true;
            if (!ReadEscape()) return false;
        }
    }

    bool ReadEscape() {
        if (rest_.empty()) return false;
        if (rest_[0] >= '0' && rest_[0] <= '7') {
            AppendCodePoint(TakeDigits(8, 3));
        } else if (Take('U') || Take('u')) {
            AppendCodePoint(TakeUtf16());
        } else {
            string_ += EscapedByte(rest_[0]);
            rest_.remove_prefix(1);
        }
        return true;
    }

    uint32_t TakeDigits(int base, size_t limit) {
        uint32_t number = 0;
        for (size_t i = 0; i < limit && !rest_.empty(); ++i) {
            const int digit = HexDigit(rest_[0]);
            if (digit < 0 || digit >= base) break;
            number = number * static_cast<uint32_t>(base) + static_cast<uint32_t>(digit);
            rest_.remove_prefix(1);
        }
        return number;
    }

    // "\Uxxxx" is a UTF-16 unit: two of them make a character beyond the first 65536.
    uint32_t TakeUtf16() {
        const uint32_t high = TakeDigits(16, 4);
        if ((high & 0xFC00) != 0xD800 || !(rest_.starts_with("\\U") || rest_.starts_with("\\u"))) return high;
        const std::string_view before = rest_;
        rest_.remove_prefix(2);
        const uint32_t low = TakeDigits(16, 4);
        if ((low & 0xFC00) == 0xDC00) return 0x10000 + ((high & 0x3FF) << 10) + (low & 0x3FF);
        rest_ = before;
        return high;
    }

    void AppendCodePoint(uint32_t code_point) {
        std::array<char, 4> bytes;
        string_.append(bytes.data(), WriteUtf8(code_point, bytes.data()));
    }

    // Takes what stands before '>' and the '>'.
    std::optional<std::string_view> TakeBrackets() {
        const size_t end = rest_.find('>');
        if (end == std::string_view::npos) return std::nullopt;
        const std::string_view content = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return content;
    }

    bool ReadData() {
        const std::optional<std::string_view> digits = TakeBrackets();
        if (!digits) return false;
        string_.clear();
        int high = -1;
        for (const char byte : *digits) {
            if (IsSpace(byte)) continue;
            const int digit = HexDigit(byte);
            if (digit < 0) return false;
            if (high >= 0) string_ += static_cast<char>(high << 4 | digit);
            high = high >= 0 ? -1 : digit;
        }
        if (high >= 0) return false;
        auto *bytes = const_cast<char *>(builder_.document().CopyText(string_));
        Accept(MakeData(reinterpret_cast<uint8_t *>(bytes), string_.size()));
        return true;
    }

    bool ReadTyped() {
        const std::optional<std::string_view> content = TakeBrackets();
        if (!content || content->empty()) return false;
        const std::optional<Value> value = ParseTyped((*content)[0], content->substr(1));
        if (value) Accept(*value);
        return value.has_value();
    }

    std::optional<Value> ParseTyped(char type, std::string_view text) {
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
            text = text.substr(1, text.size() - 2);
        if (type == 'I') return ParseInteger(text, builder_.document());
        if (type == 'B' && (text == "Y" || text == "N")) return MakeBoolean(text == "Y");
        if (type != 'R' && type != 'D') return std::nullopt;
        const std::optional<double> real = type == 'R' ? ParseReal(text) : ParseZonedDate(text);
        if (!real) return std::nullopt;
        return type == 'R' ? MakeReal(*real) : MakeDate(*real);
    }

    std::string_view rest_;
    TreeBuilder builder_;
    std::string string_;
    std::optional<Value> root_;
    bool is_strings_file_ = false;
};

}  // namespace

std::optional<Value> ReadOldStyle(std::string_view text, Document &document) {
    return OldStyleReader(text, document).Read();
}

}  // namespace core_foundation
