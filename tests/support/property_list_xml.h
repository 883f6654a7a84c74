#ifndef TESTS_SUPPORT_PROPERTY_LIST_XML_H
#define TESTS_SUPPORT_PROPERTY_LIST_XML_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Finished XML of property-list values, in the layout that iTunes gives them. Nothing is checked: a test may
// build what no real program would write.

// One key of a dictionary with the finished XML of its value.
struct XmlEntry {
    std::string key;
    std::string value;
};
using XmlEntries = std::vector<XmlEntry>;

// iTunes writes the three characters that matter to XML as decimal references, "&#38;" for "&".
std::string EscapeXml(std::string_view text);

std::string XmlText(std::string_view text);
std::string XmlInteger(std::int64_t number);
std::string XmlReal(std::string_view digits);
std::string XmlFlag(bool flag);
// `moment` in the form 2010-10-08T15:43:59Z.
std::string XmlDate(std::string_view moment);
// The element stands on lines of its own, `depth` tabs to the right, as everywhere in files of iTunes.
std::string XmlData(std::string_view bytes, int depth);

// `key` and value on one line with `depth` tabs before them.
std::string XmlLine(const XmlEntry &entry, int depth);

std::string Base64(std::string_view bytes);

// The lines before and after the root value.
extern const std::string_view kPropertyListHead;
extern const std::string_view kPropertyListTail;

#endif
