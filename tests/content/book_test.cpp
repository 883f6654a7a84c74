#include "content/book.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "content/book_scan.h"
#include "content/text_file.h"
#include "fixtures/scoped_zone.h"
#include "platform/limits.h"
#include "tests/content/epub_files.h"
#include "tests/content/media_tree.h"

namespace {

namespace fs = std::filesystem;

std::string Titled(const std::string &title, const std::string &manifest = "") {
    return Package("<dc:title>" + title + "</dc:title>", manifest);
}

struct BookTree : MediaTree {
    DriverPath *books = AddRoot("Books", node_category::kBook, node_subcategory::kBook);

    // The same book in both forms, "NAME.epub" and "folder/NAME.epub".
    void Add(const std::string &name, const Files &files) const {
        Write("Books/" + name + ".epub", Archive(files));
        for (const auto &[file, content] : files)
            Write("folder/" + name + ".epub/" + file, content);
    }
    DriverPath *Added(const std::string &name) {
        DriverPath *book = nullptr;
        EXPECT_EQ(AddLocalBook(books, Location(name), &book), 0);
        return book;
    }
    static std::string CoverOf(DriverPath *book) {
        return std::string(FindAttribute(FindChild(book, "thumb"), "cover-image-path").value_or("none"));
    }
    // Every bad book is listed under the name of its file, and a good one with what it says.
    void ExpectBare(const std::vector<std::string> &names) {
        Add("good", Epub("o/p.opf", Titled("Good", CoverItemXml("c.png", ""))));
        ASSERT_EQ(ScanBooks(&driver), 0);
        EXPECT_EQ(FindAttribute(At("library/Books/good.epub"), "name"), "Good");
        EXPECT_EQ(CoverOf(At("library/Books/good.epub")), "o\\c.png");
        for (const std::string &name : names) {
            DriverPath *book = At("library/Books/" + name + ".epub");
            ASSERT_NE(book, nullptr) << name;
            EXPECT_EQ(FindAttribute(book, "name"), name);
            EXPECT_EQ(CoverOf(book), "none") << name;
        }
    }
};

// A book whose package document lies in "OEBPS", and further files.
Files InOebps(const std::string &manifest, Files more = {}) {
    more.merge(Epub("OEBPS/p.opf", Package("", manifest)));
    return more;
}

// One whose cover is a page.
const std::string kPageItem = CoverItemXml("t/c.xhtml", "Application/xhtml+XML");
Files WithPage(const std::string &page) {
    return InOebps(kPageItem, {{"OEBPS/t/c.xhtml", page}});
}

// Files, the cover in the archive and below the folder, and the number of lines in the log.
TEST(AddLocalBook, FindsTheCoverOfBothForms) {
    const std::string fits(limits::kEntryPathBytes.value - 6, 'x');
    const std::tuple<Files, std::string, std::string, size_t> rows[] = {
        {InOebps(CoverItemXml("i/c.jpg", "image/jpeg")), "OEBPS\\i/c.jpg", "OEBPS\\i\\c.jpg", 0},
        {Epub("p.opf", Package("", "<item id='cover' href='c'/>")), "c", "c", 0},
        {InOebps("<item id='Cover' href='1'/><item href='2'/><item id='cover'/>" + CoverItemXml("4", "") +
                 CoverItemXml("5", "")),
         "OEBPS\\4", "OEBPS\\4", 0},
        {InOebps(CoverItemXml("../c.jpg", "")), "OEBPS\\../c.jpg", "OEBPS\\..\\c.jpg", 0},
        {InOebps(CoverItemXml("a/../../../c.jpg", "")), "OEBPS\\a/../../../c.jpg", "none", 0},
        {InOebps(CoverItemXml(fits, "")), "OEBPS\\" + fits, "OEBPS\\" + fits, 0},
        {InOebps(CoverItemXml(fits + "x", "")), "none", "OEBPS\\" + fits + "x", 1},
        {WithPage(Page("<p><img src='../i/c.png'/></p>")), "OEBPS\\..\\i\\c.png", "OEBPS\\..\\i\\c.png", 0},
        {WithPage(Page("<p/><div><img src='c'/></div>")), "OEBPS\\c", "OEBPS\\c", 2},
        {WithPage(Page("<p/>")), "none", "none", 4},
        {WithPage(Page("<p><img src=''/></p><div><img src='c'/></div>")), "none", "none", 0},
        {WithPage("<html>"), "none", "none", 2},
        {InOebps(kPageItem), "none", "OEBPS\\t\\c.xhtml", 0},
        {InOebps(kPageItem, {{"iTunesArtwork", "x"}}), "iTunesArtwork", "iTunesArtwork", 0},
        {Epub("p.opf", "<o:package><manifest/></o:package>"), "none", "none", 2},
        {Epub("p.opf", "<package>"), "none", "none", 2},
        {{{"META-INF/container.xml", Container("p.opf")}}, "none", "none", 0},
        {{{"a", "b"}}, "none", "none", 0}};
    for (const auto &[files, of_file, of_folder, log_lines] : rows) {
        BookTree tree;
        tree.Add("b", files);
        EXPECT_EQ(BookTree::CoverOf(tree.Added("Books/b.epub")), of_file);
        const std::string folder = of_folder == "none" ? "" : tree.Location("folder/b.epub") + "\\";
        EXPECT_EQ(BookTree::CoverOf(tree.Added("folder/b.epub")), folder + of_folder);
        EXPECT_EQ(tree.log.Lines().size(), log_lines) << testing::PrintToString(tree.log.Lines());
    }
}

struct Books : BookTree, testing::Test {};

TEST_F(Books, TellWhatTheirPackagesAndTheirFilesTell) {
    const ScopedZone zone("UTC");
    Files files = Epub("a/b.opf", Package("<dc:title> A &amp; B</dc:title><dc:creator>C</dc:creator><title>no"
                                          "</title><dc:creator>D</dc:creator><dc:subject>S</dc:subject>"
                                          "<dc:date>April</dc:date><dc:date>1970-01-02</dc:date>"
                                          "<dc:publisher>P</dc:publisher>",
                                          CoverItemXml("c.png", "")));
    files["itunesARTWORK"] = "picture";
    Add("b", files);
    Write("My.Paper.PDF", "%PDF");
    DriverPath *book = Added("Books/b.epub");
    EXPECT_EQ(book->from_folder_scan, 1);
    const std::string told = " name= A & B artist=C artist=D subject=S st_mtime=86400 album=P\n";
    std::string location = "location=" + Location("Books/b.epub");
    EXPECT_EQ(TreeText(book, "b"), "b 4 5 50 st_size=" + std::to_string(Archive(files).size()) + " " +
                                       location + " media_has_thumb=true format=EPUB" + told +
                                       "b/thumb 1 4 43 " + location + " cover-image-path=iTunesArtwork\n");
    location = "is_directory=true location=" + Location("folder/b.epub");
    EXPECT_THAT(TreeText(Added("folder/b.epub"), "b"),
                testing::StartsWith("b 4 5 50 " + location + " media_has_thumb=true format=EPUB" + told +
                                    "b/thumb 1 4 43 " + location + " cover"));
    EXPECT_EQ(TreeText(Added("My.Paper.PDF"), "b"),
              "b 4 5 50 st_size=4 location=" + Location("My.Paper.PDF") +
                  " media_has_thumb=true format=PDF name=My.Paper\nb/thumb 1 4 43 location=" +
                  Location("My.Paper.PDF") + "\n");
    // Of all that was extracted only folders are left.
    for (const auto &entry : fs::recursive_directory_iterator(folder.path() / "temp"))
        EXPECT_TRUE(entry.is_directory()) << entry.path();
    EXPECT_EQ(AddLocalBook(books, Write("b.txt", "x")), -2);
    EXPECT_EQ(AddLocalBook(books, Location("gone.epub")), -3);
}

TEST_F(Books, DocumentsThatNestOrSwellWithoutEndAreNotRead) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<package>";
    const std::string huge(70 << 20, ' ');
    Add("deep container", {{"META-INF/container.xml", deep}});
    Add("deep package", Epub("p.opf", deep));
    Add("huge container", {{"META-INF/container.xml", huge}});
    Add("huge package", Epub("p.opf", Titled("H" + huge)));
    Write("Books/no archive.epub", "PK\3\4");
    Write("Books/empty.epub", "");
    ExpectBare({"deep container", "deep package", "huge container", "huge package", "no archive", "empty"});
    EXPECT_EQ(CoverOf(Added("folder/deep container.epub")), "none");
    const auto line = [&](const Limit &limit, const std::string &file) {
        return "[iTunes] More than " + std::to_string(limit.value) + " " + limit.name + ": \"" +
               Location(file + ".epub") + "\"";
    };
    EXPECT_THAT(log.Lines(),
                testing::UnorderedElementsAre(testing::HasSubstr("Failed to parse xml file: \""),
                                              line(limits::kXmlDepth, "Books\\deep container"),
                                              line(limits::kXmlDepth, "Books\\deep package"),
                                              line(limits::kXmlDepth, "folder/deep container"),
                                              line(limits::kZipExpansion, "Books\\huge container"),
                                              line(limits::kZipExpansion, "Books\\huge package")));
}

// An archive may hold entries of such names; the temporary copy that the book speaks of lies elsewhere.
TEST_F(Books, NoDocumentOutsideOfTheTemporaryFolderIsReadWrittenOrDeleted) {
    const std::string victim = Titled("Victim", CoverItemXml("v", ""));
    const fs::path &top = folder.path();
    for (const char *name : {"temp/victim", "victim", "elsewhere/META-INF/container.xml"})
        folder.Write(name, victim);
    std::vector<std::string> listed = {"page", "linked"};
    const std::vector<std::string> names = {
        "../victim", "..\\victim", "x/../../../victim",      "../vict.m", ".*", ".", "..", "/", "",
        "(a+)+$",    "victim&#0;", (top / "victim").string()};
    for (const std::string &name : names) {
        // As a pattern, "../victim" matches the one that has its place.
        Files files = {{"META-INF/container.xml", Container(name)},
                       {std::string(50, 'a') + "b", "x"},
                       {"ab/victim", Titled("E")}};
        if (!name.empty()) files.emplace(name, Titled("E"));
        listed.push_back("bad" + std::to_string(listed.size()));
        Write("Books/" + listed.back() + ".epub", Archive(files));
    }
    Add("page", Epub("p.opf", Package("", CoverItemXml("../victim", "application/xhtml+xml"))));
    // A folder below the temporary one that someone else has put there.
    fs::create_directory_symlink(top / "elsewhere", top / "temp/linked.epub");
    Add("linked", Epub("p.opf", Titled("L")));
    ExpectBare(listed);
    for (const char *name : {"temp/victim", "victim", "elsewhere/META-INF/container.xml"})
        EXPECT_EQ(ReadWholeFile(top / name), victim);
    EXPECT_EQ(std::distance(fs::directory_iterator(top), {}), 4);
}

TEST_F(Books, AreReadAsTheByteOrderMarkTells) {
    using namespace std::string_literals;
    const std::string longest(limits::kTextFileBytes.value, 'x');
    // The text, or the number of the error.
    const auto read = [&](const std::string &bytes) {
        std::string text;
        const int32_t result = ReadTextFileAsUtf8(folder.Write("t", bytes).string(), text);
        return result == 0 ? text : std::to_string(result);
    };
    const std::pair<std::string, std::string> rows[] = {{"\xFF\xFE\xE9\0x"s, "\xC3\xA9"},
                                                        {"\xFF\xFE\0\xD8"s, "-3"},
                                                        {"\xEF\xBB\xBF\xC3", "\xC3"},
                                                        {"\xEF\xBB", "-2"},
                                                        {"\xEF\xBBx", "-2"},
                                                        {"\xEF\xBB\xBF", "-3"},
                                                        {"", "-3"},
                                                        {"\xE9", "\xE9"}};
    for (const auto &[bytes, text] : rows)
        EXPECT_EQ(read(bytes), text);
    EXPECT_EQ(read("\xFE\xFF\0\xE9\xD8\x3D\xDE\0\0\0\0x"s), "\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_TRUE(read(longest) == longest);
    EXPECT_EQ(read(longest + "x"), "-3");
    std::string text;
    EXPECT_EQ(ReadTextFileAsUtf8((folder.path() / "gone").string(), text), -1);
}

}  // namespace
