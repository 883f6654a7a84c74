#ifndef TESTS_CONTENT_EPUB_FILES_H
#define TESTS_CONTENT_EPUB_FILES_H

#include <map>
#include <string>

// The documents of an EPUB.

using Files = std::map<std::string, std::string>;

inline std::string Container(const std::string &package_path) {
    return "<?xml version='1.0'?><container><rootfiles><rootfile full-path='" + package_path +
           "'/></rootfiles></container>";
}

inline std::string Package(const std::string &metadata, const std::string &manifest) {
    return "<package><metadata>" + metadata + "</metadata><manifest>" + manifest + "</manifest></package>";
}

inline std::string CoverItemXml(const std::string &href, const std::string &media_type) {
    return "<item id='cover' href='" + href + "' media-type='" + media_type + "'/>";
}

inline std::string Page(const std::string &body) {
    return "<!DOCTYPE html [<!ENTITY x '>'>]><html><body>" + body + "</body></html>";
}

inline Files Epub(const std::string &package_path, const std::string &package) {
    return {{"META-INF/container.xml", Container(package_path)}, {package_path, package}};
}

#endif
