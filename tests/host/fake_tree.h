// The tree that the fake driver shows.
#ifndef TESTS_HOST_FAKE_TREE_H
#define TESTS_HOST_FAKE_TREE_H

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "driver/itunes_driver.h"

// How the stream of a file behaves.
enum class FakeContent {
    kNone,     // cannot be opened
    kText,     // gives its text
    kBreaks,   // gives its text and then a failure
    kEndless,  // gives bytes for ever
};

struct DriverPath {
    DriverPath(int32_t kind_number, int32_t category_number, int32_t subcategory_number);
    ~DriverPath();
    DriverPath(const DriverPath &) = delete;
    DriverPath &operator=(const DriverPath &) = delete;

    void Add(const std::string &name, DriverPath *child);
    void Set(const std::string &key, const std::string &value) const;
    DriverPath *Child(const std::string &name) const;
    // Adds what was kept back. Of a file that is its "thumb" node, which comes with the first walk into any
    // file; of a "thumb" node its pictures, which come with the first walk into it.
    void Reveal();
    // Takes away the children of a folder scan, which are the last ones.
    void DropScanned();

    int32_t kind, category, subcategory;
    VelmarArray *names = nullptr;
    VelmarAttribute *attributes = nullptr;
    FakeContent content = FakeContent::kNone;
    std::string text;
    int open_count = 0;
    bool scanned = false;
    std::vector<std::pair<std::string, DriverPath *>> kept_back;

  private:
    std::deque<std::string> name_texts_;
    std::vector<DriverPath *> child_list_;
    std::unordered_map<std::string, DriverPath *> children_;  // the first of each name
};

// All nodes, and the root.
//
//   library/music/      1.mp3 and 2.mp3 with one title, cloud.m4p without a file, gone-a.mp3 and gone-b.mp3
//   whose
//                       files are missing, breaks.mp3 whose stream fails half-way
//   library/good/       three sound files, one with a title that no file system takes
//   library/art/        files with pictures: 20.mp3 PNG, PNG and raw "bgra"; 20.m4a with the same title, raw
//   "argb";
//                       22.epub JPEG with the type ".jpg"; 23.mp3 whose pictures cannot be made; 24.mp3 whose
//                       raw pictures do not fit their size; 25.ipa, an application without its icon; 26.mp3
//                       without a picture
//   playlist/           "Mix" with a file twice, "AC/DC", "Twice" two times, a list without a name, and one
//   whose name
//                       drives a terminal
//   many/               as many files as the environment variable FAKE_DRIVER_FILES says
//   endless/9.mp3       a stream without end
class FakeTree {
  public:
    explicit FakeTree(std::size_t many_files);
    DriverPath *root() const { return root_; }
    // As the driver does, a walk shows pictures: see Reveal.
    DriverPath *Walk(const std::string &path);
    // Shows the files of an add folder anew: sound and films by number, books by name.
    void Rescan(const std::filesystem::path &folder);
    int open_count() const;  // of all nodes

  private:
    DriverPath *NewNode(int32_t kind, int32_t category, int32_t subcategory);
    DriverPath *NewFolder(DriverPath *parent, const std::string &name, int32_t subcategory);
    DriverPath *NewTrack(DriverPath *parent, const std::string &name, const std::string &artist,
                         const std::string &title, const std::string &text);
    DriverPath *NewPictures(DriverPath *file);
    void AddPicture(DriverPath *thumbs, const std::string &name, const std::string &type, int64_t width,
                    int64_t height, const std::string &bytes);
    void AddArt(DriverPath *library);
    void ShowArt();
    void AddMusic(DriverPath *library);
    void AddLists(DriverPath *lists);

    std::vector<std::unique_ptr<DriverPath>> nodes_;
    DriverPath *root_;
    bool art_shown_ = false;
};

#endif
