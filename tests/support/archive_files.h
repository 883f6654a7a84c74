#ifndef TESTS_SUPPORT_ARCHIVE_FILES_H
#define TESTS_SUPPORT_ARCHIVE_FILES_H

#include <string>
#include <utility>
#include <vector>

#include "tests/support/property_list_xml.h"

// Books and applications, which are zip archives: each function gives the bytes of one file.

// How a book's package names its cover.
enum class BookCover {
    kNone,
    kImage,  // the item "cover" is the picture
    kPage,   // the item "cover" is a page that shows the picture
};

struct BookText {
    std::string title{};
    std::string author{};
    std::string subject{};
    std::string publisher{};
    std::string date{};  // 2009-03-21 or longer
};

// An EPUB 2 book of one chapter, with a PNG cover.
std::string EpubFile(const BookText &text, BookCover cover);

// An application for mobile devices. What is empty or zero is left out.
struct ApplicationParts {
    std::string folder{};  // below "Payload", such as "Game.app"
    XmlEntries info{};     // Info.plist, always there
    XmlEntries metadata{};
    // By language, such as "en": the name to show, in that language's InfoPlist.strings.
    std::vector<std::pair<std::string, std::string>> names{};
    int artwork_side = 0;     // of the PNG picture "iTunesArtwork"
    std::string icon_file{};  // the name of a PNG picture beside Info.plist
};

std::string ApplicationFile(const ApplicationParts &parts);

#endif
