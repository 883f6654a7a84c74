#include "content/book_thumb.h"

#include <utility>

#include "driver/attributes.h"
#include "platform/windows/windows_api.h"

const char *BookFormat(const std::string &extension) {
    if (_stricmp(extension.c_str(), ".epub") == 0) return "EPUB";
    if (_stricmp(extension.c_str(), ".pdf") == 0) return "PDF";
    return "Unknown";
}

void AddBookThumb(DriverPath *book, BookForm form, const std::string &location,
                  const std::optional<std::string> &cover) {
    LoosePath thumb = CreateDriverPath(book->owner, node_kind::kFolder, node_category::kThumbnail,
                                       node_subcategory::kThumbOfTrack);
    if (form == BookForm::kFolder) AddAttribute(thumb.get(), "is_directory", "true");
    AddAttribute(thumb.get(), "location", location.c_str());
    if (cover) AddAttribute(thumb.get(), "cover-image-path", cover->c_str());
    AppendChild(book, "thumb", std::move(thumb));
}
