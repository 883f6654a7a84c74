#ifndef TESTS_PLATFORM_WINDOWS_FOLDER_TEST_H
#define TESTS_PLATFORM_WINDOWS_FOLDER_TEST_H

#include <gtest/gtest.h>

#include <string>

#include "platform/windows/text.h"
#include "tests/support/folder_contents.h"

namespace fs = std::filesystem;
using Contents = std::map<std::string, std::string>;

// FolderContents as one text, "name=value" and a semicolon for each entry.
inline std::string Listing(const fs::path &folder) {
    std::string listing;
    for (const auto &[name, value] : FolderContents(folder))
        listing.append(name).append("=").append(value).append(";");
    return listing;
}

// Names in a temporary folder, as this system and as Windows programs spell their paths.
class FolderTest : public testing::Test {
  protected:
    std::string Native(const std::string &name) const { return (folder_.path() / name).string(); }
    std::wstring Wide(const std::string &name) const {
        return Utf8ToWide(folder_.path().string() + "\\" + name);
    }
    std::string All() const { return Listing(folder_.path()); }

    TempFolder folder_;
};

#endif
