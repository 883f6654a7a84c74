#include "tests/host/fake_tree.h"

#include <algorithm>
#include <set>

#include "tests/host/fake_pictures.h"

DriverPath::DriverPath(int32_t kind_number, int32_t category_number, int32_t subcategory_number)
    : kind(kind_number), category(category_number), subcategory(subcategory_number) {
    AllocVelmarArray(&names);
    AllocVelmarAttribute(&attributes);
}

DriverPath::~DriverPath() {
    FreeVelmarArray(names);
    FreeVelmarAttribute(attributes);
}

void DriverPath::Add(const std::string &name, DriverPath *child) {
    name_texts_.push_back(name);
    AddVelmarArrayItem(names, name_texts_.back().data());
    child_list_.push_back(child);
    children_.try_emplace(name, child);
}

void DriverPath::DropScanned() {
    while (!child_list_.empty() && child_list_.back()->scanned) {
        const auto named = children_.find(name_texts_.back());
        if (named != children_.end() && named->second == child_list_.back()) children_.erase(named);
        DeleteVelmarArrayItem(names, GetVelmarArraySize(names) - 1);
        name_texts_.pop_back();
        child_list_.pop_back();
    }
}

void DriverPath::Set(const std::string &key, const std::string &value) const {
    AddVelmarAttributeItem(attributes, key.c_str(), value.c_str());
}

DriverPath *DriverPath::Child(const std::string &name) const {
    const auto found = children_.find(name);
    return found != children_.end() ? found->second : nullptr;
}

FakeTree::FakeTree(std::size_t many_files) : root_(NewNode(0, 0, 0)) {
    root_->Set("terminal_type", "iTunes");
    DriverPath *library = NewFolder(root_, "library", 1);
    AddMusic(library);
    AddArt(library);
    AddLists(NewFolder(root_, "playlist", 2));
    DriverPath *many = NewFolder(root_, "many", 4);
    for (std::size_t i = 0; i < many_files; ++i) {
        NewTrack(many, std::to_string(i) + ".mp3", "Artist", "Title", "x");
    }
    NewTrack(NewFolder(root_, "endless", 4), "9.mp3", "", "Endless", "")->content = FakeContent::kEndless;
}

void DriverPath::Reveal() {
    for (const auto &[name, child] : std::exchange(kept_back, {}))
        Add(name, child);
}

DriverPath *FakeTree::Walk(const std::string &path) {
    DriverPath *node = root_;
    std::size_t begin = 0;
    while (node != nullptr && begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        node = node->Child(path.substr(begin, end - begin));
        begin = end + 1;
        if (node == nullptr) break;
        if (node->kind == 4 && !std::exchange(art_shown_, true)) ShowArt();
        if (node->category == 4) node->Reveal();
    }
    return node;
}

void FakeTree::ShowArt() {
    for (const auto &node : nodes_) {
        if (node->kept_back.empty() || node->category == 4) continue;
        node->Set("media_has_thumb", "true");
        node->Reveal();
    }
}

void FakeTree::Rescan(const std::filesystem::path &folder) {
    if (folder.empty()) return;
    DriverPath *library = root_->Child("library");
    DriverPath *music = library->Child("music");
    DriverPath *book = library->Child("book");
    if (book == nullptr) library->Add("book", book = NewNode(1, 5, 50));
    music->DropScanned();
    book->DropScanned();
    if (!std::filesystem::is_directory(folder)) return;
    std::set<std::string> file_names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        file_names.insert(entry.path().filename().string());
    int id = 5000000;
    for (const std::string &name : file_names) {
        const std::string extension = std::filesystem::path(name).extension().string();
        DriverPath *file = NewNode(4, extension == ".pdf" ? 5 : 2, extension == ".pdf" ? 50 : 20);
        file->scanned = true;
        std::string location = (folder / name).string();
        std::replace(location.begin(), location.end(), '/', '\\');
        file->Set("location", location);
        if (extension == ".pdf") {
            book->Add(name, file);
        } else {
            file->Set("st_size", std::to_string(std::filesystem::file_size(folder / name)));
            music->Add(std::to_string(id++) + extension, file);
        }
    }
}

int FakeTree::open_count() const {
    int count = 0;
    for (const auto &node : nodes_)
        count += node->open_count;
    return count;
}

DriverPath *FakeTree::NewNode(int32_t kind, int32_t category, int32_t subcategory) {
    nodes_.push_back(std::make_unique<DriverPath>(kind, category, subcategory));
    return nodes_.back().get();
}

DriverPath *FakeTree::NewFolder(DriverPath *parent, const std::string &name, int32_t subcategory) {
    DriverPath *folder = NewNode(1, 1, subcategory);
    parent->Add(name, folder);
    return folder;
}

DriverPath *FakeTree::NewTrack(DriverPath *parent, const std::string &name, const std::string &artist,
                               const std::string &title, const std::string &text) {
    DriverPath *track = NewNode(4, 2, 20);
    if (!artist.empty()) track->Set("artist", artist);
    track->Set("name", title);
    track->Set("st_size", std::to_string(text.size()));
    track->Set("st_mtime", "1262304000");
    track->Set("location", "C:/Music/" + name);
    track->content = FakeContent::kText;
    track->text = text;
    parent->Add(name, track);
    return track;
}

void FakeTree::AddMusic(DriverPath *library) {
    DriverPath *music = NewNode(1, 2, 20);
    library->Add("music", music);
    NewTrack(music, "1.mp3", "Queen", "Song", "first song");
    NewTrack(music, "2.mp3", "Queen", "SONG", "second song");
    DriverPath *cloud = NewNode(4, 2, 20);
    cloud->Set("name", "Cloud");
    music->Add("cloud.m4p", cloud);
    NewTrack(music, "gone-a.mp3", "A", "Gone", "12345")->content = FakeContent::kNone;
    NewTrack(music, "gone-b.mp3", "B", "Gone", "12345")->content = FakeContent::kNone;
    NewTrack(music, "breaks.mp3", "A", "Breaks", "half of")->content = FakeContent::kBreaks;

    DriverPath *good = NewFolder(library, "good", 4);
    NewTrack(good, "10.mp3", "", "Plain", std::string(700000, 'p'));
    NewTrack(good, "11.mp3", "AC/DC", "What? A \"title\"...", "eleven");
    DriverPath *thumbs = NewNode(1, 4, 43);
    thumbs->Add("small", NewNode(4, 4, 44));
    NewTrack(good, "12.mp3", "Bj\xC3\xB6rk", "J\xC3\xB3ga", "twelve")->Add("thumb", thumbs);
}

DriverPath *FakeTree::NewPictures(DriverPath *file) {
    DriverPath *thumbs = NewNode(1, 4, 43);
    thumbs->Set("location", "C:/Artwork/1.itc");
    file->kept_back.emplace_back("thumb", thumbs);
    return thumbs;
}

void FakeTree::AddPicture(DriverPath *thumbs, const std::string &name, const std::string &type, int64_t width,
                          int64_t height, const std::string &bytes) {
    DriverPath *picture = NewNode(4, 4, 44);
    picture->Set("thumb_type", type);
    if (width != 0) picture->Set("width", std::to_string(width));
    if (height != 0) picture->Set("height", std::to_string(height));
    picture->Set("st_size", std::to_string(bytes.size()));
    picture->content = FakeContent::kText;
    picture->text = bytes;
    thumbs->kept_back.emplace_back(name, picture);
}

void FakeTree::AddArt(DriverPath *library) {
    DriverPath *art = NewFolder(library, "art", 4);
    DriverPath *three = NewPictures(NewTrack(art, "20.mp3", "Band", "Cover", "twenty"));
    AddPicture(three, "small", "png", 8, 8, FakePng("small"));
    AddPicture(three, "middle", "png", 16, 16, FakePng("middle"));
    AddPicture(three, "large", "bgra", 2, 3, FakePixels(kAlphaFirst));
    DriverPath *one = NewPictures(NewTrack(art, "20.m4a", "Band", "Cover", "another"));
    AddPicture(one, "small", "argb", 2, 3, FakePixels(kBlueFirst));
    DriverPath *book = NewTrack(art, "22.epub", "E. Author", "Book", "a book");
    AddPicture(NewPictures(book), "small", ".jpg", 0, 0, FakeJpeg());
    NewPictures(NewTrack(art, "23.mp3", "Band", "Lost", "twenty-three"));
    DriverPath *damaged = NewPictures(NewTrack(art, "24.mp3", "Band", "Damaged", "twenty-four"));
    AddPicture(damaged, "small", "bgra", 2, 4, FakePixels(kAlphaFirst));
    AddPicture(damaged, "middle", "bgra", int64_t{1} << 32, int64_t{1} << 32, {1, '\0'});
    AddPicture(damaged, "large", "bgra", 0, 3, FakePixels(kAlphaFirst));
    DriverPath *application = NewTrack(art, "25.ipa", "", "Game", "PK\x03\x04 application");
    AddPicture(NewPictures(application), "small", "png", 0, 0, application->text);
    NewTrack(art, "26.mp3", "Band", "Plain", "twenty-six");
}

void FakeTree::AddLists(DriverPath *lists) {
    DriverPath *good = Walk("library/good");
    DriverPath *mix = NewFolder(lists, "Mix", 4);
    mix->Add("10.mp3", good->Child("10.mp3"));
    mix->Add("11.mp3", good->Child("11.mp3"));
    mix->Add("10.mp3", good->Child("10.mp3"));
    NewFolder(lists, "AC/DC", 4)->Add("11.mp3", good->Child("11.mp3"));
    NewFolder(lists, "Twice", 4)->Add("10.mp3", good->Child("10.mp3"));
    NewFolder(lists, "Twice", 4)->Add("11.mp3", good->Child("11.mp3"));
    NewFolder(lists, "", 4)->Add("10.mp3", good->Child("10.mp3"));
    NewFolder(lists, "Evil\x1b[31m\nName\xff", 4)->Add("12.mp3", good->Child("12.mp3"));
}
