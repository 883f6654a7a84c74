// The text inside an XML element.
#ifndef PLATFORM_CORE_FOUNDATION_XML_TEXT_H
#define PLATFORM_CORE_FOUNDATION_XML_TEXT_H

#include <cstring>
#include <string>
#include <string_view>

#include "platform/core_foundation/text_scan.h"

namespace core_foundation {

struct XmlText {
    std::string_view text;  // valid until the next text is taken
    bool is_ascii;
    const char *next;  // behind the end tag; null: the text is damaged, or goes on behind the window
};

// The place behind a comment ("<!-- -->") or a processing instruction ("<? ?>") that begins at `markup`; null
// for anything else and for one that does not end before `limit`.
const char *SkipXmlComment(const char *markup, const char *limit);

// Takes the texts of elements, one after the other. Inside the window a text is a slice of it.
class XmlTextReader {
  public:
    // Takes the text that begins behind a start tag, and its end tag. `end_tag` is the usual spelling,
    // "</name>", and `limit` the end of the window.
    XmlText Take(const char *begin, std::string_view end_tag, const char *limit) {
        const ScanResult scan = ScanText(begin);
        if (std::memcmp(scan.end, end_tag.data(), end_tag.size()) == 0) {
            return {{begin, static_cast<size_t>(scan.end - begin)}, scan.is_ascii, scan.end + end_tag.size()};
        }
        return Decode(begin, scan.end, end_tag.substr(2, end_tag.size() - 3), limit);
    }

  private:
    // What is left: references, CDATA, comments inside the text, end tags with space in them. `special` is
    // the first.
    XmlText Decode(const char *begin, const char *special, std::string_view name, const char *limit);
    const char *DecodeSpecial(const char *in, const char *limit);
    const char *DecodeEntity(std::string_view rest);
    const char *DecodeNumber(const char *in);
    const char *CopyCdata(const char *in, const char *limit);

    std::string decoded_;
};

}  // namespace core_foundation

#endif
