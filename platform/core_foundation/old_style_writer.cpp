#include <algorithm>

#include "platform/core_foundation/binary_format.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_walk.h"
#include "platform/core_foundation/writer.h"

namespace core_foundation {

namespace {

constexpr size_t kIndent = 4;

// Without quotes a list that is nothing but a text could look like a binary one.
bool NeedsNoQuotes(std::string_view text) {
    const auto is_plain = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               byte == '_';
    };
    return !text.empty() && !text.starts_with(kBinaryMagic) &&
           std::all_of(text.begin(), text.end(), is_plain);
}

class OldStyleWriter {
  public:
    explicit OldStyleWriter(std::string &out) : out_(out) {}

    bool Write(const Value &root) {
        TreeWalk walk(root);
        while (walk.Next()) {
            if (!WriteEvent(walk)) return false;
        }
        return !walk.is_too_deep();
    }

  private:
    bool WriteEvent(const TreeWalk &walk) {
        const Value &value = walk.value();
        const bool is_array = value.type == ValueType::kArray;
        if (!is_behind_key_ || walk.event() == TreeWalk::Event::kClose)
            out_.append(walk.depth() * kIndent, ' ');
        is_behind_key_ = walk.event() == TreeWalk::Event::kKey;
        switch (walk.event()) {
            case TreeWalk::Event::kKey:
                WriteString(TextOf(value));
                out_ += " = ";
                return true;
            case TreeWalk::Event::kOpen:
                containers_.push_back(value.type);
                out_ += is_array ? "(\n" : "{\n";
                return true;
            case TreeWalk::Event::kClose:
                containers_.pop_back();
                out_ += is_array ? ')' : '}';
                break;
            case TreeWalk::Event::kScalar:
                if (!WriteScalar(value)) return false;
                break;
        }
        // An array may end in a comma, which saves the look ahead.
        if (!containers_.empty()) out_ += containers_.back() == ValueType::kArray ? ',' : ';';
        out_ += '\n';
        return true;
    }

    bool WriteScalar(const Value &value) {
        if (value.type == ValueType::kString) {
            WriteString(TextOf(value));
            return true;
        }
        if (value.type != ValueType::kData) return false;
        constexpr std::string_view kDigits = "0123456789abcdef";
        out_ += '<';
        for (size_t i = 0; i < value.length; ++i) {
            out_ += kDigits[value.bytes[i] >> 4];
            out_ += kDigits[value.bytes[i] & 0x0F];
        }
        out_ += '>';
        return true;
    }

    void WriteString(std::string_view text) {
        if (NeedsNoQuotes(text)) {
            out_ += text;
            return;
        }
        out_ += '"';
        for (const char byte : text)
            AppendEscaped(byte);
        out_ += '"';
    }

    // Letters beyond ASCII stand as UTF-8.
    void AppendEscaped(char byte) {
        if (byte == '"' || byte == '\\') {
            out_ += '\\';
            out_ += byte;
        } else if (static_cast<uint8_t>(byte) < ' ') {
            const auto code = static_cast<uint8_t>(byte);
            out_ += "\\0";
            out_ += static_cast<char>('0' + code / 8);
            out_ += static_cast<char>('0' + code % 8);
        } else {
            out_ += byte;
        }
    }

    std::string &out_;
    std::vector<ValueType> containers_;
    bool is_behind_key_ = false;
};

}  // namespace

bool WriteOldStyle(const Value &root, std::string &out) {
    return OldStyleWriter(out).Write(root);
}

}  // namespace core_foundation
