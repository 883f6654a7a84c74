#include "content/xml_limits.h"

#include <algorithm>

#include "platform/limits.h"

namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kNameEnd = " \t\r\n/>?";

// Cuts text into markup exactly as the XML library does: what one takes for a comment and the other for
// elements would be a place to hide levels in.
class XmlMeasure {
  public:
    explicit XmlMeasure(std::string_view text) : text_(text.substr(0, text.find('\0'))) {}

    bool IsWithinLimits() {
        while (Find("<")) {
            ++nodes_;
            Step();
            if (limits::kXmlDepth.IsPassedBy(deepest_) || limits::kXmlNodes.IsPassedBy(nodes_)) return false;
        }
        return true;
    }

  private:
    // The position is on a "<".
    void Step() {
        if (Take("</")) {
            if (depth_ > 0) --depth_;
            SkipPast(">");
        } else if (Take("<?")) {
            SkipPast("?>");
        } else if (Take("<!--")) {
            SkipPast("-->");
        } else if (Take("<![CDATA[")) {
            SkipPast("]]>");
        } else if (IsDoctype()) {
            SkipDoctype();
        } else if (Take("<!")) {
            SkipPast(">");
        } else {
            OpenElement();
        }
    }

    bool IsDoctype() const {
        constexpr std::string_view kDoctype = "<!DOCTYPE";
        const size_t behind = position_ + kDoctype.size();
        return text_.substr(position_).starts_with(kDoctype) && behind < text_.size() &&
               kSpace.find(text_[behind]) != std::string_view::npos;
    }

    // Quotes mean nothing here, but brackets do.
    void SkipDoctype() {
        size_t brackets = 0;
        for (; position_ < text_.size(); ++position_) {
            const char next = text_[position_];
            if (next == '[') ++brackets;
            if (next == ']' && brackets > 0) --brackets;
            if (next == '>' && brackets == 0) break;
        }
    }

    // A quote that belongs to the name opens no value.
    void OpenElement() {
        deepest_ = std::max(deepest_, depth_ + 1);
        position_ = text_.find_first_of(kNameEnd, position_ + 1);
        while (position_ < text_.size() && text_[position_] != '>') {
            const char next = text_[position_++];
            if (next != '"' && next != '\'') continue;
            ++nodes_;
            SkipPast(std::string_view(&next, 1));
        }
        if (position_ < text_.size() && text_[position_ - 1] != '/') ++depth_;
    }

    bool Find(std::string_view mark) {
        position_ = position_ < text_.size() ? text_.find(mark, position_) : std::string_view::npos;
        return position_ != std::string_view::npos;
    }

    bool Take(std::string_view mark) {
        if (!text_.substr(position_).starts_with(mark)) return false;
        position_ += mark.size();
        return true;
    }

    void SkipPast(std::string_view mark) {
        if (Find(mark)) position_ += mark.size();
    }

    std::string_view text_;
    size_t position_ = 0;
    size_t depth_ = 0;
    size_t deepest_ = 0;
    size_t nodes_ = 0;
};

}  // namespace

bool IsWithinXmlLimits(std::string_view text) {
    return XmlMeasure(text).IsWithinLimits();
}
