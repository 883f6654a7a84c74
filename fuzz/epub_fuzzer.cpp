// Adds an input as a book, as a scan does, and reads everything of it that a host can reach: the documents
// through the archive, the metadata, the cover. See archive_input.h for inputs.
#include <string>
#include <vector>

#include "content/book.h"
#include "driver/scanned_entries.h"
#include "fixtures/archive_files.h"
#include "fixtures/preference_file.h"
#include "fixtures/zip_builder.h"
#include "fuzz/archive_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/tree_check.h"
#include "fuzz/work_folder.h"
#include "tests/content/epub_files.h"
#include "tests/driver/tree_fixture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static WorkFolder work;
    work.Write("book.epub", ArchiveOf(AsText(bytes, size)));
    {
        BareTree tree;
        tree.driver.library_folder = BackslashPath(work.Place());
        DriverPath *books =
            EnsureCategoryPath(&tree.driver, "book", node_category::kBook, node_subcategory::kBook);
        Require(AddLocalBook(books, BackslashPath(work.Place() / "book.epub")) == 0, "every file is a book");
        Require(FindAttribute(ChildAt(books, 0), "name").has_value(), "every book has a name");
        CheckTree(&tree.driver, "library/book");
    }
    work.CheckAndClear();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t most, unsigned seed) {
    return MutateArchive(bytes, size, most, seed);
}

std::vector<std::string> FuzzSeeds() {
    const BookText text = {.title = "Title & more",
                           .author = "Author",
                           .subject = "Subject",
                           .publisher = "Publisher",
                           .date = "2009-03-21T10:11:12Z"};
    // A cover that would lie outside of the temporary folder.
    const std::string outside = "../../cover.png";
    std::vector<std::string> seeds = {
        BuildZip({StoredEntry("META-INF/container.xml", Container("p.opf")),
                  StoredEntry("p.opf", Package("<x/>", CoverItemXml(outside, "image/png"))),
                  StoredEntry(outside, "picture")})};
    for (const BookCover cover : {BookCover::kNone, BookCover::kImage, BookCover::kPage}) {
        seeds.push_back(EpubFile(text, cover));
        seeds.push_back(MembersInput(seeds.back()));
    }
    return seeds;
}
