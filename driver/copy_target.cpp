#include "driver/copy_target.h"

#include <cstdio>
#include <string_view>

#include "content/path_text.h"
#include "driver/attributes.h"
#include "driver/book_copy.h"
#include "driver/copy_source.h"
#include "driver/library_driver.h"

namespace {

std::string BehindLastSlash(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

// A title may hold anything; what separates the parts of a path becomes a part of the name.
std::string NameFromTitle(std::string_view title, std::string_view location) {
    std::string name(title);
    for (const char separator : std::string_view("/\\:*\"<>|"))
        ReplaceChar(name, separator, '_');
    return name.append(ExtensionOfPath(location));
}

std::string NameFromAttributes(VelmarAttribute *attributes) {
    // The second look may move the text of the first.
    const std::string location(FindAttribute(attributes, "location").value_or(""));
    const auto title = FindAttribute(attributes, "name");
    return title ? NameFromTitle(*title, location) : BehindLastSlash(location);
}

std::string NameFromAddress(const void *address) {
    char name[64];
    std::snprintf(name, sizeof name, "%p.mpg", address);
    return name;
}

std::string NameOf(const CopySourceInfo &source) {
    switch (source.source_type) {
        case copy_source_type::kHostStream:
            return NameFromAttributes(source.source.attributes);
        case copy_source_type::kLocalFile:
            return source.source_path == nullptr ? "" : BehindLastSlash(source.source_path);
        case copy_source_type::kMemory:
            return NameFromAddress(source.source_handle);
        default:
            return "";
    }
}

}  // namespace

CopyTarget ChooseCopyTarget(const LibraryDriver *driver, const char *path_text,
                            const CopySourceInfo &source) {
    CopyTarget target;
    target.name = NameOf(source);
    if (const auto folder = BookCopyFolder(path_text, source)) {
        target.folder = *folder;
    } else {
        target.folder = driver->add_folder.value_or("");
    }
    return target;
}
