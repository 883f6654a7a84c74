// Control characters are written as they are, since no reference of XML 1.0 may name them; readers of this
// form let them pass. A carriage return alone is written as a reference, because XML readers would make a
// line feed of it.

#include <algorithm>

#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_walk.h"
#include "platform/core_foundation/writer.h"

namespace core_foundation {

namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// Data is wrapped so that a line with its tabs, of eight columns each, stays within the width.
constexpr size_t kLineWidth = 76;
constexpr size_t kTabWidth = 8;
constexpr size_t kNarrowestLine = 4;

class XmlWriter {
  public:
    explicit XmlWriter(std::string &out) : out_(out) {}

    bool Write(const Value &root) {
        out_ += kHeader;
        TreeWalk walk(root);
        while (walk.Next()) {
            if (!WriteEvent(walk)) return false;
        }
        out_ += kFooter;
        return !walk.is_too_deep();
    }

  private:
    bool WriteEvent(const TreeWalk &walk) {
        const Value &value = walk.value();
        const std::string_view name = value.type == ValueType::kArray ? "array" : "dict";
        Indent(walk.depth());
        switch (walk.event()) {
            case TreeWalk::Event::kKey:
                WriteElement("key", TextOf(value));
                return true;
            case TreeWalk::Event::kScalar:
                return WriteScalar(value, walk.depth());
            case TreeWalk::Event::kOpen:
                out_.append("<").append(name).append(CountOf(value) == 0 ? "/>\n" : ">\n");
                return true;
            case TreeWalk::Event::kClose:
                if (CountOf(value) == 0) {
                    out_.resize(out_.size() - walk.depth());  // it was closed where it was opened
                } else {
                    out_.append("</").append(name).append(">\n");
                }
                return true;
        }
        return false;
    }

    void Indent(size_t depth) { out_.append(depth, '\t'); }

    void WriteElement(std::string_view name, std::string_view text) {
        out_.append("<").append(name).append(">");
        AppendEscaped(text);
        out_.append("</").append(name).append(">\n");
    }

    void AppendEscaped(std::string_view text) {
        while (true) {
            const size_t plain = std::min(text.find_first_of("&<>\r"), text.size());
            out_ += text.substr(0, plain);
            if (plain == text.size()) return;
            out_ += text[plain] == '&'   ? "&amp;"
                    : text[plain] == '<' ? "&lt;"
                    : text[plain] == '>' ? "&gt;"
                                         : "&#13;";
            text.remove_prefix(plain + 1);
        }
    }

    bool WriteScalar(const Value &value, size_t depth) {
        switch (value.type) {
            case ValueType::kString:
                WriteElement("string", TextOf(value));
                return true;
            case ValueType::kNumber:
                WriteNumber(value);
                return true;
            case ValueType::kBoolean:
                out_ += value.integer != 0 ? "<true/>\n" : "<false/>\n";
                return true;
            case ValueType::kDate:
                WriteElement("date", FormatDate(value.real));
                return true;
            case ValueType::kData:
                WriteData(value, depth);
                return true;
            case ValueType::kUid:
                WriteUid(value, depth);
                return true;
            default:
                return false;
        }
    }

    void WriteNumber(const Value &number) {
        if (Has(number, kReal)) {
            WriteElement("real", FormatReal(number.real));
        } else {
            WriteElement("integer", FormatInteger(number));
        }
    }

    // The text form has no such element; this is how the vendor's tools spell it.
    void WriteUid(const Value &uid, size_t depth) {
        out_ += "<dict>\n";
        Indent(depth + 1);
        WriteElement("key", "CF$UID");
        Indent(depth + 1);
        WriteElement("integer", FormatInteger(uid));
        Indent(depth);
        out_ += "</dict>\n";
    }

    void WriteData(const Value &data, size_t depth) {
        const size_t tabs = std::min(depth * kTabWidth, kLineWidth - kNarrowestLine);
        const size_t bytes_per_line = (kLineWidth - tabs) / 4 * 3;
        out_ += "<data>\n";
        for (size_t i = 0; i < data.length; i += bytes_per_line) {
            Indent(depth);
            AppendBase64(data.bytes + i, std::min(bytes_per_line, data.length - i), out_);
            out_ += '\n';
        }
        Indent(depth);
        out_ += "</data>\n";
    }

    std::string &out_;
};

}  // namespace

bool WriteXml(const Value &root, std::string &out) {
    return XmlWriter(out).Write(root);
}

}  // namespace core_foundation
