#ifndef CONTENT_EPUB_DOCUMENT_H
#define CONTENT_EPUB_DOCUMENT_H

#include <cstdint>
#include <optional>
#include <string>

#include "platform/velmar_path/velmar_path.h"

// The XML documents of an EPUB, each by the path of a file (UTF-8). What a document lacks is no failure: a
// book goes without.

// The path of the package document as a container document names it.
std::optional<std::string> ReadRootFilePath(const std::string &container_path);

// Adds what a package document says of its book: `name`, `artist`, `subject`, `album` and `st_mtime`, in the
// document's order, an element that stands twice with its key twice. 0; -1 unreadable; -2 not well-formed; -3
// no metadata.
int32_t ReadPackageMetadata(VelmarAttribute *attributes, const std::string &package_path);

struct CoverItem {
    std::string href;
    std::string media_type;  // empty if there is none
};

// The first item of the manifest with the id "cover" and a reference. What stands in the way is logged.
std::optional<CoverItem> FindCoverItem(const std::string &package_path);

// The reference of the image on an XHTML page that shows a cover. What stands in the way is logged.
std::optional<std::string> ReadCoverPageImage(const std::string &page_path);

// True for the type of an XHTML page, letter case ignored: the cover is then the image on that page.
bool IsCoverPage(const CoverItem &item);

#endif
