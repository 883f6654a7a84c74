#include "content/epub_document.h"

#include <array>
#include <exception>
#include <string_view>

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
std::optional<XmlTree> ParseOrLog(const std::string &text, const std::string &path) {
    std::optional<XmlTree> tree = ParseXml(text);
    if (!tree) WriteLine("Failed to parse xml file: \"" + path + "\"");
    return tree;
}

std::optional<std::string> NotEmpty(std::optional<std::string> text) {
    return text && !text->empty() ? std::move(text) : std::nullopt;
}

void AddMetadata(VelmarAttribute *attributes, const std::string &element, const std::string &text) {
    for (const MetadataRow &row : kMetadata) {
        if (element == row.element) AddVelmarAttributeItem(attributes, row.key, text.c_str());
    }
    if (element != "dc:date") return;
    const int64_t seconds = ParseTimeStamp(text, kDateFormat);
    if (seconds == kNoTime) return;
    AddVelmarAttributeItem(attributes, "st_mtime", std::to_string(static_cast<uint64_t>(seconds)).c_str());
}

std::optional<CoverItem> CoverOf(const XmlTree &manifest) {
    for (const auto &[name, item] : manifest) {
        if (name != "item" || XmlAttribute(item, "id") != "cover") continue;
        std::optional<std::string> href = NotEmpty(XmlAttribute(item, "href"));
        if (href) return CoverItem{std::move(*href), XmlAttribute(item, "media-type").value_or("")};
    }
    return std::nullopt;
}

// The source of the image below one element of the page; null, and a line in the log, where there is none.
const XmlTree *FindPageImage(const XmlTree &page, const std::string &element, const std::string &path) {
    const XmlTree *source = FindXmlElement(page, "html.body." + element + ".img.<xmlattr>.src");
    if (source == nullptr) {
        WriteLine("\"" + path + "\" has no \"<html><body><" + element + "><img>\" element.");
    }
    return source;
}

}  // namespace

std::optional<std::string> ReadRootFilePath(const std::string &container_path) {
    const std::optional<std::string> text = ReadText(container_path);
    const std::optional<XmlTree> tree = text ? ParseXml(*text) : std::nullopt;
    const XmlTree *root_file = tree ? FindXmlElement(*tree, "container.rootfiles.rootfile") : nullptr;
    return root_file == nullptr ? std::nullopt : NotEmpty(XmlAttribute(*root_file, "full-path"));
}

int32_t ReadPackageMetadata(VelmarAttribute *attributes, const std::string &package_path) {
    const std::optional<std::string> text = ReadText(package_path);
    if (!text) return kUnreadable;
    const std::optional<XmlTree> tree = ParseXml(*text);
    if (!tree) return kNotWellFormed;
    const XmlTree *metadata = FindXmlElement(*tree, "package.metadata");
    if (metadata == nullptr) return kNoMetadata;
    for (const auto &[name, element] : *metadata)
        AddMetadata(attributes, name, element.data());
    return 0;
}

std::optional<CoverItem> FindCoverItem(const std::string &package_path) {
    const std::optional<std::string> text = ReadText(package_path);
    if (!text) {
        WriteLine("Failed to open xml file: \"" + package_path + "\"");
        return std::nullopt;
    }
    const std::optional<XmlTree> tree = ParseOrLog(*text, package_path);
    if (!tree) return std::nullopt;
    const XmlTree *manifest = FindXmlElement(*tree, "package.manifest");
    if (manifest == nullptr) {
        WriteLine("\"" + package_path + "\" has no \"manifest\" element.");
        return std::nullopt;
    }
    return CoverOf(*manifest);
}

std::optional<std::string> ReadCoverPageImage(const std::string &page_path) {
    const std::optional<std::string> text = ReadText(page_path);
    const std::optional<XmlTree> page = text ? ParseOrLog(*text, page_path) : std::nullopt;
    if (!page) return std::nullopt;
    const XmlTree *source = FindPageImage(*page, "p", page_path);
    // A source that is there but empty is not looked for elsewhere.
    if (source == nullptr) source = FindPageImage(*page, "div", page_path);
    return source == nullptr ? std::nullopt : NotEmpty(source->data());
}

bool IsCoverPage(const CoverItem &item) {
    return _stricmp(item.media_type.c_str(), "application/xhtml+xml") == 0;
}
