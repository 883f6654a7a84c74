#ifndef CONTENT_BOOK_CATALOGUE_SETTING_H
#define CONTENT_BOOK_CATALOGUE_SETTING_H

#include <string>

// The book catalogue is a choice of the build: DRIVER_BOOK_CATALOGUE names its folder, and nothing by
// default.
bool IsBookCatalogueEnabled();

// The folder of the catalogue and of its books, in UTF-8 and without a separator at its end.
std::string GetBookCatalogueFolder();

#endif
