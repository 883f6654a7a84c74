// Books and applications of other programs, and Python's readers as a second opinion on what they hold.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "content/application_scan.h"
#include "content/book.h"
#include "content/book_scan.h"
#include "tests/content/captured_log.h"
#include "tests/content/media_tree.h"

namespace {

namespace fs = std::filesystem;

constexpr const char *kLanguage = "en";

std::vector<fs::path> CopySamples(const std::string &kind, bool folders, const fs::path &target) {
    std::vector<fs::path> copies;
    std::error_code absent;
    fs::create_directories(target);
    for (const auto &sample : fs::directory_iterator(fs::path(SAMPLES_FOLDER) / kind, absent)) {
        if (sample.is_directory() != folders || sample.path().extension() == ".plist") continue;
        copies.push_back(target / sample.path().filename());
        fs::copy(sample.path(), copies.back(), fs::copy_options::recursive);
        fs::permissions(copies.back(), fs::perms::owner_all, fs::perm_options::add);
    }
    return copies;
}

// What the script says of each, in order of their names.
std::vector<std::string> ReadWithPython(std::vector<fs::path> paths) {
    std::sort(paths.begin(), paths.end(),
              [](const fs::path &a, const fs::path &b) { return a.filename() < b.filename(); });
    std::string command = std::string("'") + PYTHON + "' '" + READER_SCRIPT + "' " + kLanguage;
    for (const fs::path &path : paths)
        command += " '" + path.string() + "'";
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output(1 << 20, '\0');
    output.resize(pipe ? fread(output.data(), 1, output.size(), pipe.get()) : 0);
    std::istringstream stream(output);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string OneLine(std::string text) {
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos;)
        text.replace(at, 1, "\\n");
    return text;
}

// The values of some keys of a node, in the node's order for books and in that of the keys for applications.
void AppendValues(std::string &line, const DriverPath *node, const std::vector<std::string> &keys) {
    for (const std::string &attribute : AttributeLines(node)) {
        const std::string key = attribute.substr(0, attribute.find('='));
        if (std::find(keys.begin(), keys.end(), key) != keys.end()) line += "\t" + attribute;
    }
}

// The cover from the top of the book, with "/" throughout.
std::string ShowBook(DriverPath *book, const std::string &name) {
    std::string line = name;
    AppendValues(line, book, {"name", "artist"});
    std::string cover(FindAttribute(FindChild(book, "thumb"), "cover-image-path").value_or(""));
    const std::string location(*FindAttribute(book, "location"));
    if (cover.starts_with(location)) cover.erase(0, location.size() + 1);
    std::replace(cover.begin(), cover.end(), '\\', '/');
    return OneLine(line + (cover.empty() ? "" : "\tcover=" + cover));
}

std::string ShowApp(DriverPath *app, const std::string &name) {
    if (app == nullptr) return name + "\trefused";
    std::string line = name;
    for (const char *key : {"bundleId", "name", "bundleVersion", "genre"})
        AppendValues(line, app, {key});
    DriverPath *thumb = FindChild(app, "thumb");
    if (thumb != nullptr) {
        line += "\ticon=" + std::string(*FindAttribute(FindChild(thumb, "small"), "icon_image"));
    }
    return OneLine(line);
}

TEST(BookAndAppSamples, AgreeWithAnotherReader) {
    MediaTree tree;
    const ScopedEnvironment language("LANGUAGE", kLanguage);
    const fs::path media = tree.folder.path() / "media";
    std::vector<fs::path> books = CopySamples("epub", false, media / "Books");
    const std::vector<fs::path> pdfs = CopySamples("pdf", false, media / "Books");
    const std::vector<fs::path> folders = CopySamples("epub", true, media / "unpacked");
    std::vector<fs::path> apps = CopySamples("ipa", false, media / "Mobile Applications");
    if (books.empty() || apps.empty()) GTEST_SKIP() << "no samples";
    const std::vector<fs::path> zips = CopySamples("zip", false, media / "Mobile Applications");
    const CapturedLog log;
    ASSERT_EQ(ScanBooks(&tree.driver), 0);
    ASSERT_EQ(ScanApps(&tree.driver), 0);
    for (const fs::path &folder : folders)
        EXPECT_EQ(AddLocalBook(tree.At({"Books"}), BackslashPath(folder)), 0) << folder;
    books.insert(books.end(), pdfs.begin(), pdfs.end());
    books.insert(books.end(), folders.begin(), folders.end());
    apps.insert(apps.end(), zips.begin(), zips.end());

    std::vector<std::string> shown;
    for (const fs::path &path : books) {
        DriverPath *book = tree.At({"Books", path.filename().string()});
        ASSERT_NE(book, nullptr) << path;
        shown.push_back(ShowBook(book, path.filename().string()));
    }
    for (const fs::path &path : apps) {
        const std::string name = path.filename().string();
        shown.push_back(ShowApp(tree.At({"app", name}), name));
    }
    std::sort(shown.begin(), shown.end());
    books.insert(books.end(), apps.begin(), apps.end());
    std::vector<std::string> expected = ReadWithPython(books);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(expected.size(), books.size());
    for (const std::string &line : expected)
        std::printf("%s\n", line.c_str());
}

}  // namespace
