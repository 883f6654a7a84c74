#ifndef TESTS_PLATFORM_WINDOWS_FOLDER_TEST_H
#define TESTS_PLATFORM_WINDOWS_FOLDER_TEST_H

#include <gtest/gtest.h>

#include <string>

#include "platform/windows/text.h"
#include "tests/platform/windows/folder_contents.h"

using Contents = std::map<std::string, std::string>;

// Names in a temporary folder, as this system and as Windows programs spell their paths.
class FolderTest : public testing::Test {
  protected:
    std::string Native(const std::string &name) const { return (folder_.path() / name).string(); }
    std::wstring Wide(const std::string &name) const {
        return Utf8ToWide(folder_.path().string() + "\\" + name);
    }

    TempFolder folder_;
};

#endif
