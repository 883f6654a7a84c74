#include "tests/support/archive_files.h"

#include "tests/support/artwork_file.h"
#include "tests/support/zip_builder.h"

namespace {

const std::string kXmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string Element(const std::string &name, const std::string &text) {
    return text.empty() ? std::string() : "    <" + name + ">" + EscapeXml(text) + "</" + name + ">\n";
}

std::string Container() {
    return kXmlHead +
           "<container version=\"1.0\" xmlns=\"urn:oasis:names:tc:opendocument:xmlns:container\">\n"
           "  <rootfiles>\n"
           "    <rootfile full-path=\"OEBPS/content.opf\" "
           "media-type=\"application/oebps-package+xml\"/>\n"
           "  </rootfiles>\n"
           "</container>\n";
}

std::string Item(const std::string &id, const std::string &file, const std::string &type) {
    return "    <item id=\"" + id + "\" href=\"" + file + "\" media-type=\"" + type + "\"/>\n";
}

std::string CoverItems(BookCover cover) {
    if (cover == BookCover::kNone) return {};
    if (cover == BookCover::kImage) return Item("cover", "images/cover.png", "image/png");
    return Item("cover", "cover.xhtml", "application/xhtml+xml") +
           Item("cover-image", "images/cover.png", "image/png");
}

std::string Package(const BookText &text, BookCover cover) {
    return kXmlHead +
           "<package xmlns=\"http://www.idpf.org/2007/opf\" version=\"2.0\" unique-identifier=\"id\">\n"
           "  <metadata xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n"
           "    <dc:identifier id=\"id\">urn:sample:" +
           std::to_string(Crc32(text.title)) + "</dc:identifier>\n    <dc:language>en</dc:language>\n" +
           Element("dc:title", text.title) + Element("dc:creator", text.author) +
           Element("dc:subject", text.subject) + Element("dc:publisher", text.publisher) +
           Element("dc:date", text.date) + "  </metadata>\n  <manifest>\n" + CoverItems(cover) +
           Item("chapter", "chapter.xhtml", "application/xhtml+xml") +
           Item("ncx", "toc.ncx", "application/x-dtbncx+xml") +
           "  </manifest>\n"
           "  <spine toc=\"ncx\"><itemref idref=\"chapter\"/></spine>\n"
           "</package>\n";
}

std::string Contents(const std::string &title) {
    const std::string label = "<text>" + EscapeXml(title) + "</text>";
    return kXmlHead + "<ncx xmlns=\"http://www.daisy.org/z3986/2005/ncx/\" version=\"2005-1\">\n<head>" +
           "<meta name=\"dtb:uid\" content=\"urn:sample:" + std::to_string(Crc32(title)) +
           "\"/></head>\n<docTitle>" + label +
           "</docTitle>\n<navMap><navPoint id=\"p1\" playOrder=\"1\"><navLabel>" + label +
           "</navLabel><content src=\"chapter.xhtml\"/></navPoint></navMap>\n</ncx>\n";
}

std::string Page(const std::string &title, const std::string &body) {
    return kXmlHead + "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head><title>" + EscapeXml(title) +
           "</title></head>\n<body>" + body + "</body>\n</html>\n";
}

std::string PropertyList(const XmlEntries &entries) {
    std::string list = std::string(kPropertyListHead) + "<dict>\n";
    for (const XmlEntry &entry : entries)
        list += XmlLine(entry, 1);
    return list + "</dict>\n" + std::string(kPropertyListTail);
}

}  // namespace

std::string EpubFile(const BookText &text, BookCover cover) {
    // The type of a book must be its first entry, not packed, so that it stands at a fixed place.
    std::vector<ZipBuilderEntry> entries = {
        StoredEntry("mimetype", "application/epub+zip"),
        DeflatedEntry("META-INF/container.xml", Container()),
        DeflatedEntry("OEBPS/content.opf", Package(text, cover)),
        DeflatedEntry("OEBPS/toc.ncx", Contents(text.title)),
        DeflatedEntry("OEBPS/chapter.xhtml",
                      Page(text.title, "<h1>" + EscapeXml(text.title) + "</h1><p>Once.</p>")),
    };
    if (cover != BookCover::kNone) entries.push_back(StoredEntry("OEBPS/images/cover.png", PngPicture(120)));
    if (cover == BookCover::kPage) {
        const std::string image = "<div><img src=\"images/cover.png\" alt=\"Cover\"/></div>";
        entries.push_back(DeflatedEntry("OEBPS/cover.xhtml", Page("Cover", image)));
    }
    return BuildZip(entries);
}

std::string ApplicationFile(const ApplicationParts &parts) {
    const std::string folder = "Payload/" + parts.folder + "/";
    std::vector<ZipBuilderEntry> entries;
    if (parts.artwork_side > 0)
        entries.push_back(StoredEntry("iTunesArtwork", PngPicture(parts.artwork_side)));
    if (!parts.metadata.empty())
        entries.push_back(DeflatedEntry("iTunesMetadata.plist", PropertyList(parts.metadata)));
    entries.push_back(DeflatedEntry(folder + "Info.plist", PropertyList(parts.info)));
    if (!parts.icon_file.empty()) entries.push_back(StoredEntry(folder + parts.icon_file, PngPicture(57)));
    for (const auto &[language, name] : parts.names) {
        entries.push_back(DeflatedEntry(folder + language + ".lproj/InfoPlist.strings",
                                        PropertyList({{"CFBundleDisplayName", XmlText(name)}})));
    }
    return BuildZip(entries);
}
