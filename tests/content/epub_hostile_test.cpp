// Books made to harm, each beside a good one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "content/book.h"
#include "content/book_scan.h"
#include "platform/limits.h"
#include "tests/content/captured_log.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"

namespace {

namespace fs = std::filesystem;

struct HostileBooks : MediaTree {
    void Add(const std::string &name, const Files &files) const { Write("Books/" + name, Archive(files)); }

    // Every bad book is listed under the name of its file, and the good one with what it says.
    void Scan() {
        Add("good.epub", Epub("o/p.opf", Package("<dc:title>Good</dc:title>", CoverItemXml("c.png", ""))));
        ASSERT_EQ(ScanBooks(&driver), 0);
        const DriverPath *good = At({"Books", "good.epub"});
        ASSERT_NE(good, nullptr);
        EXPECT_EQ(FindAttribute(good, "name"), "Good");
        EXPECT_EQ(FindAttribute(At({"Books", "good.epub", "thumb"}), "cover-image-path"), "o\\c.png");
    }
    bool IsListedBare(const std::string &name) {
        DriverPath *book = At({"Books", name});
        return book != nullptr && FindAttribute(book, "name") == name.substr(0, name.rfind('.')) &&
               !FindAttribute(FindChild(book, "thumb"), "cover-image-path");
    }
};

std::string Nested(const std::string &tag, size_t levels) {
    std::string text;
    for (size_t i = 0; i < levels; ++i)
        text += "<" + tag + ">";
    return text;
}

TEST(HostileEpub, DocumentsThatNestOrSwellWithoutEndAreNotRead) {
    HostileBooks tree;
    const std::string deep = Nested("package", 100000);
    const std::string huge(70 << 20, ' ');
    tree.Add("deep container.epub", {{"META-INF/container.xml", deep}});
    tree.Add("deep package.epub", Epub("p.opf", deep));
    tree.Add("huge container.epub", {{"META-INF/container.xml", huge}});
    tree.Add("huge package.epub", Epub("p.opf", Package("<dc:title>H</dc:title>" + huge, "")));
    tree.Write("Books/deep folder.epub/META-INF/container.xml", deep);
    tree.Write("Books/no archive.epub", "PK\3\4");
    tree.Write("Books/empty.epub", "");
    const CapturedLog log;
    tree.Scan();
    for (const char *name : {"deep container.epub", "deep package.epub", "huge container.epub",
                             "huge package.epub", "no archive.epub", "empty.epub"})
        EXPECT_TRUE(tree.IsListedBare(name)) << name;
    EXPECT_EQ(AddLocalBook(tree.At({"Books"}), tree.Location("Books\\deep folder.epub")), 0);
    EXPECT_TRUE(tree.IsListedBare("deep folder.epub"));
    const auto limit_line = [](const Limit &limit, const std::string &path) {
        return "[iTunes] More than " + std::to_string(limit.value) + " " + limit.name + ": \"" + path + "\"";
    };
    const auto at = [&](const char *name) { return tree.Location(std::string("Books\\") + name); };
    EXPECT_THAT(log.lines(),
                testing::UnorderedElementsAre(testing::HasSubstr("Failed to parse xml file: \""),
                                              limit_line(limits::kXmlDepth, at("deep container.epub")),
                                              limit_line(limits::kXmlDepth, at("deep package.epub")),
                                              limit_line(limits::kXmlDepth, at("deep folder.epub")),
                                              limit_line(limits::kZipExpansion, at("huge container.epub")),
                                              limit_line(limits::kZipExpansion, at("huge package.epub"))));
}

// An archive may hold entries of such names; the temporary copy that the book speaks of lies elsewhere.
TEST(HostileEpub, NoDocumentOutsideOfTheTemporaryFolderIsReadWrittenOrDeleted) {
    HostileBooks tree;
    const std::string victim = Package("<dc:title>Victim</dc:title>", CoverItemXml("v", ""));
    tree.folder.Write("temp/victim", victim);
    tree.folder.Write("victim", victim);
    const std::string absolute = (tree.folder.path() / "victim").string();
    const std::string bad_names[] = {
        "../victim", "..\\victim", "x/../../../victim", absolute, "../vict.m", ".*", ".", "..", "/",
        "",          "(a+)+$",     "victim&#0;"};
    int number = 0;
    for (const std::string &name : bad_names) {
        Files files = {{"META-INF/container.xml", Container(name)},
                       {name, Package("<dc:title>E</dc:title>", "")}};
        files.emplace("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "x");
        // As a pattern, "../victim" matches this one, which has its place.
        files.emplace("ab/victim", Package("<dc:title>E</dc:title>", ""));
        files.erase("");
        tree.Add("bad" + std::to_string(number++) + ".epub", files);
    }
    tree.Add("page.epub", Epub("p.opf", Package("", CoverItemXml("../victim", "application/xhtml+xml"))));
    // Folders below the temporary one that someone else has put there.
    tree.folder.Write("elsewhere/META-INF/container.xml", "untouched");
    fs::create_directory_symlink(tree.folder.path() / "elsewhere", tree.folder.path() / "temp/linked.epub");
    tree.Add("linked.epub", Epub("p.opf", Package("<dc:title>L</dc:title>", "")));
    tree.Scan();
    for (int i = 0; i < number; ++i)
        EXPECT_TRUE(tree.IsListedBare("bad" + std::to_string(i) + ".epub")) << bad_names[i];
    EXPECT_TRUE(tree.IsListedBare("page.epub"));
    EXPECT_TRUE(tree.IsListedBare("linked.epub"));
    for (const char *name : {"victim", "temp/victim"})
        EXPECT_EQ(ReadWholeFile(tree.folder.path() / name), victim);
    EXPECT_EQ(ReadWholeFile(tree.folder.path() / "elsewhere/META-INF/container.xml"), "untouched");
    for (const auto &entry : fs::directory_iterator(tree.folder.path()))
        EXPECT_THAT(entry.path().filename().string(), testing::AnyOf("elsewhere", "media", "temp", "victim"));
}

// Such names come from systems that have them.
TEST(HostileEpub, BooksWithNamesThatWindowsCannotHoldAreReadAllTheSame) {
    HostileBooks tree;
    tree.Add("Dune: a \"book\"?.epub", Epub("p.opf", Package("<dc:title>Dune</dc:title>", "")));
    tree.Scan();
    EXPECT_EQ(FindAttribute(tree.At({"Books", "Dune: a \"book\"?.epub"}), "name"), "Dune");
}

}  // namespace
