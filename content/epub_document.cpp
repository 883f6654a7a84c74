#include "content/epub_document.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "content/date_parser.h"
#include "content/text_file.h"
#include "content/xml_document.h"
#include "platform/windows/windows_api.h"

namespace {

constexpr int32_t kUnreadable = -1;
constexpr int32_t kNotWellFormed = -2;
constexpr int32_t kNoMetadata = -3;

constexpr const char *kDateFormat = "%Y-%m-%dT%H:%M:%S%z";
constexpr int64_t kNoTime = -1;

struct MetadataRow {
    std::string_view element;
    const char *key;
};

constexpr std::array kMetadata = std::to_array<MetadataRow>({
    {"dc:title", "name"},
    {"dc:creator", "artist"},
    {"dc:subject", "subject"},
    {"dc:publisher", "album"},
});

std::optional<std::string> ReadText(const std::string &path) {
    std::string text;
    if (ReadTextFileAsUtf8(path, text) != 0) return std::nullopt;
    return text;
}

void WriteLine(const std::string &line) {
    WriteVelmarLog("%s", line.c_str());
}

// Parses text that is there, with a line in the log for text that is no XML.
std::unique_ptr<XmlDocument> ParseOrLog(std::string text, const std::string &path) {
    std::unique_ptr<XmlDocument> document = ParseXml(std::move(text));
    if (!document) WriteLine("Failed to parse xml file: \"" + path + "\"");
    return document;
}

std::optional<std::string> NotEmpty(std::optional<std::string> text) {
    return text && !text->empty() ? std::move(text) : std::nullopt;
}

void AddMetadata(VelmarAttribute *attributes, std::string_view element, const std::string &text) {
    for (const MetadataRow &row : kMetadata) {
        if (element == row.element) AddVelmarAttributeItem(attributes, row.key, text.c_str());
    }
    if (element != "dc:date") return;
    const int64_t seconds = ParseTimeStamp(text, kDateFormat);
    if (seconds == kNoTime) return;
    AddVelmarAttributeItem(attributes, "st_mtime", std::to_string(static_cast<uint64_t>(seconds)).c_str());
}

std::optional<CoverItem> CoverOf(const XmlElement &manifest) {
    for (const XmlElement *item = FindXmlElement(manifest, "item"); item != nullptr;
         item = item->next_sibling("item")) {
        if (XmlAttribute(*item, "id") != "cover") continue;
        std::optional<std::string> href = NotEmpty(XmlAttribute(*item, "href"));
        if (href) return CoverItem{std::move(*href), XmlAttribute(*item, "media-type").value_or("")};
    }
    return std::nullopt;
}

// The source of the image below one element of the page; a line in the log where there is none.
std::optional<std::string> FindPageImage(const XmlElement &page, const std::string &element,
                                         const std::string &path) {
    const XmlElement *image = FindXmlElement(page, "html.body." + element + ".img");
    std::optional<std::string> source = image != nullptr ? XmlAttribute(*image, "src") : std::nullopt;
    if (!source) {
        WriteLine("\"" + path + "\" has no \"<html><body><" + element + "><img>\" element.");
    }
    return source;
}

}  // namespace

std::optional<std::string> ReadRootFilePath(const std::string &container_path) {
    std::optional<std::string> text = ReadText(container_path);
    const auto container = text ? ParseXml(std::move(*text)) : nullptr;
    const XmlElement *root_file =
        container ? FindXmlElement(container->top(), "container.rootfiles.rootfile") : nullptr;
    return root_file == nullptr ? std::nullopt : NotEmpty(XmlAttribute(*root_file, "full-path"));
}

int32_t ReadPackageMetadata(VelmarAttribute *attributes, const std::string &package_path) {
    std::optional<std::string> text = ReadText(package_path);
    if (!text) return kUnreadable;
    const auto package = ParseXml(std::move(*text));
    if (!package) return kNotWellFormed;
    const XmlElement *metadata = FindXmlElement(package->top(), "package.metadata");
    if (metadata == nullptr) return kNoMetadata;
    for (const XmlElement *element = metadata->first_node(); element != nullptr;
         element = element->next_sibling())
        AddMetadata(attributes, XmlName(*element), XmlText(*element));
    return 0;
}

std::optional<CoverItem> FindCoverItem(const std::string &package_path) {
    std::optional<std::string> text = ReadText(package_path);
    if (!text) {
        WriteLine("Failed to open xml file: \"" + package_path + "\"");
        return std::nullopt;
    }
    const auto package = ParseOrLog(std::move(*text), package_path);
    if (!package) return std::nullopt;
    const XmlElement *manifest = FindXmlElement(package->top(), "package.manifest");
    if (manifest == nullptr) {
        WriteLine("\"" + package_path + "\" has no \"manifest\" element.");
        return std::nullopt;
    }
    return CoverOf(*manifest);
}

std::optional<std::string> ReadCoverPageImage(const std::string &page_path) {
    std::optional<std::string> text = ReadText(page_path);
    const auto page = text ? ParseOrLog(std::move(*text), page_path) : nullptr;
    if (!page) return std::nullopt;
    std::optional<std::string> source = FindPageImage(page->top(), "p", page_path);
    // A source that is there but empty is not looked for elsewhere.
    if (!source) source = FindPageImage(page->top(), "div", page_path);
    return NotEmpty(std::move(source));
}

bool IsCoverPage(const CoverItem &item) {
    return _stricmp(item.media_type.c_str(), "application/xhtml+xml") == 0;
}
