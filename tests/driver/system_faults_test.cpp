// What the driver does when the system fails it: each operation is run with a fault at its first call into
// the system, at its second, and so on until it meets none. This program is built with the book catalogue on.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>

#include "content/book_catalogue.h"
#include "driver/rescan.h"
#include "library/preferences.h"
#include "platform/windows/windows_api.h"
#include "tests/content/media_tree.h"
#include "tests/driver/open_library.h"
#include "tests/support/archive_files.h"
#include "tests/support/artwork_file.h"
#include "tests/support/library_place.h"
#include "tests/support/library_xml.h"
#include "tests/support/media_files.h"
#include "tests/support/system_faults.h"

namespace {

namespace fs = std::filesystem;

// Without memory TagLib leaks what it has begun, and so does a node that hangs nowhere yet.
constexpr bool kHasSanitizer = DRIVER_HAS_SANITIZER;

constexpr char kCatalogue[] = "wine/dosdevices/k:/Books/Books.plist";

void WriteCatalogue(const fs::path &folder) {
    fs::create_directories((folder / kCatalogue).parent_path());
    std::ofstream(folder / kCatalogue)
        << kPropertyListHead << "<dict><key>Books</key><array/></dict>" << kPropertyListTail;
}

// A library with one track, and one scanned file of each kind.
class Place {
  public:
    Place() : place_(MakeLibraryPlace(folder_.path())), environment_(place_.environment) {
        const MediaTags tags = {"t", "a", "b", "g", 2000, 1, PngPicture(4)};
        const fs::path music = place_.media_folder / "Music/a.mp3";
        Write(music, Mp3File(1, tags));
        Write(place_.media_folder / "Books/b.epub", EpubFile({.title = "b"}, BookCover::kImage));
        Write(place_.media_folder / "Mobile Applications/c.ipa",
              ApplicationFile({.folder = "c.app", .artwork_side = 4}));
        Write(place_.media_folder / "Movies/d.m4v", "d");
        Write(place_.media_folder / "Ringtones/e.m4r", M4aFile(1, {}));
        Write(place_.add_folder / "f.mp3", Mp3File(1, tags));
        WriteCatalogue(folder_.path());
        std::ofstream file(place_.library_xml, std::ios::binary);
        LibraryXml xml(file);
        xml.UsualRoot("0123456789ABCDEF", place_.Location(place_.media_folder));
        xml.Track("1", {{"Track ID", XmlInteger(1)},
                        {"Name", XmlText("a")},
                        {"Location", XmlText(place_.Location(music))}});
        xml.Playlist({.name = "Music", .distinguished_kind = 4, .track_ids = {1}});
        for (const int kind : {2, 5, 18})
            xml.Playlist({.name = "list", .distinguished_kind = kind});
        xml.Finish();
    }

    const LibraryPlace &library() const { return place_; }
    const fs::path &path() const { return folder_.path(); }
    void ClearTemp() const {
        fs::remove_all(place_.home / "Temp");
        fs::create_directory(place_.home / "Temp");
    }

  private:
    static void Write(const fs::path &path, std::string_view bytes) {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
    }

    TempFolder folder_;
    LibraryPlace place_;
    ScopedEnvironmentValues environment_;
};

// One fault, and what is to meet it.
class Trial {
  public:
    Trial(const Fault &fault, int call_number) : fault_(fault), call_number_(call_number) {}

    void Run(const std::function<void()> &work) {
        const FaultInjection injection(fault_, call_number_);
        try {
            work();
        } catch (const std::bad_alloc &) {
            // What is no export may let it through.
        }
        was_hit_ |= injection.WasHit();
    }
    bool was_hit() const { return was_hit_; }

  private:
    Fault fault_;
    int call_number_;
    bool was_hit_ = false;
};

struct Outcome {
    bool succeeded = false;
    // What a run without a fault finds afterwards: always the same, unless the failed one has done harm.
    std::string text{};
    bool is_part_left = false;
};

bool HasTemporaryFile(const fs::path &folder) {
    return std::any_of(fs::recursive_directory_iterator(folder), {}, [](const auto &entry) {
        return entry.path().string().find(".tmp") != std::string::npos;
    });
}

Outcome Load(const Place &, Trial &trial) {
    LibraryDriver *driver = nullptr;
    int32_t result = -1;
    trial.Run([&] { result = InitializeDriverPath(nullptr, nullptr, 0, &driver); });
    EXPECT_EQ(result == 0, driver != nullptr);
    if (driver != nullptr) UninitializeDriverPath(driver);
    const OpenLibrary library;
    return {result == 0, TreeText(library.driver()->root, "")};
}

int CountNodes(const OpenLibrary &library) {
    const std::string tree = TreeText(library.driver()->root, "");
    return static_cast<int>(std::count(tree.begin(), tree.end(), '\n'));
}

// What a folder does not tell is not there until the next scan.
Outcome Rescan(const Place &, Trial &trial) {
    const OpenLibrary library;
    trial.Run([&] { RescanLocalFolders(library.driver()); });
    const int found = CountNodes(library);
    RescanLocalFolders(library.driver());
    return {found == CountNodes(library), std::to_string(CountNodes(library))};
}

const char *const kPictures[] = {"library/music/f/thumb/small", "library/book/b.epub/thumb/small",
                                 "library/app/c.ipa/thumb/small"};

// The name of a scanned file is a number of the load.
std::string PathOf(const OpenLibrary &library, std::string path) {
    const size_t name = path.find("/f/");
    if (name != std::string::npos)
        path.replace(name + 1, 1, OpenedPath(library.driver(), "library/music").Names().back());
    return path;
}

Outcome LookAtPictures(const Place &place, Trial &trial) {
    place.ClearTemp();
    const OpenLibrary library;
    Outcome outcome{true};
    std::vector<std::string> paths;
    for (const char *path : kPictures)
        paths.push_back(PathOf(library, path));
    trial.Run([&] {
        for (const std::string &path : paths)
            outcome.succeeded &= OpenedPath(library.driver(), path.c_str()).get() != nullptr;
    });
    outcome.is_part_left = HasTemporaryFile(place.library().home / "Temp");
    for (const std::string &path : paths)
        outcome.text += OpenedPath(library.driver(), path.c_str()).get() != nullptr ? "there " : "missing ";
    return outcome;
}

Outcome ReadStreams(const Place &place, Trial &trial) {
    place.ClearTemp();
    const OpenLibrary library;
    Outcome outcome{true};
    std::string room(1 << 20, '\0');
    for (const char *path : {"library/music/1.mp3", kPictures[2]}) {
        int32_t count = 0;
        trial.Run([&] {
            DriverStream *stream = nullptr;
            outcome.succeeded &= OpenDriverStream(library.driver(), 0, path, &stream) == 0;
            if (stream == nullptr) return;
            count = ReadDriverStream(stream, room.data(), 1 << 20);
            CloseDriverStream(stream);
        });
        const std::string whole = StreamBytes(library.driver(), path, 1 << 20).value_or("none");
        outcome.succeeded &= static_cast<size_t>(count) == whole.size();
        outcome.text += std::to_string(whole.size()) + " ";
    }
    outcome.is_part_left = HasTemporaryFile(place.library().home / "Temp");
    return outcome;
}

// A failure is told before the end is.
int32_t TakeState(const CopyProgress *progress, void *state) {
    auto &most = *static_cast<int32_t *>(state);
    most = std::max(most, progress->copy_state);
    return 0;
}

Outcome Copy(const Place &place, Trial &trial) {
    const fs::path target = place.library().add_folder / "g.mp3";
    fs::remove(target);
    const std::string bytes(20'000, 'g');
    const std::string source_path = place.path() / "g.mp3";
    std::ofstream(source_path) << bytes;
    CopySourceInfo source = {};
    AllocVelmarAttribute(&source.source.attributes);
    AddVelmarAttributeItem(source.source.attributes, "name", "g.mp3");
    source.source_type = 1;
    source.source_path = source_path.c_str();
    source.source_size = static_cast<int64_t>(bytes.size());
    const OpenLibrary library;
    int32_t state = 0;
    trial.Run([&] {
        StartPathCopy(library.driver(), 0, TakeState, &state, 4096);
        CopyDriverPath(library.driver(), 0, "library/music", &source);
    });
    FreeVelmarAttribute(source.source.attributes);
    const bool is_finished = state == 2;
    const bool is_whole = fs::exists(target) && ReadWholeFile(target) == bytes;
    EXPECT_TRUE(!is_finished || is_whole) << "the host was told that all is there";
    return {is_finished, "", fs::exists(target) && !is_whole};
}

Outcome RewritePreferences(const Place &place, Trial &trial) {
    const PreferenceFile old{.media_folder = "C:\\m",
                             .library_xml = "C:\\l",
                             .block_length = kPreferenceFlagIndex + 1,
                             .flag_byte = 0};
    fs::remove_all(place.library().home / "AppData");
    const fs::path path = old.WriteUnder(place.library().home / "AppData");
    const std::string before = ReadWholeFile(path);
    trial.Run([] { ReadLibraryPreferences(); });
    const std::string after = ReadWholeFile(path);
    ReadLibraryPreferences();
    const std::string whole = ReadWholeFile(path);
    EXPECT_TRUE(after == before || after == whole) << "neither the old file nor the new one";
    return {after == whole, whole, HasTemporaryFile(path.parent_path())};
}

Outcome AddToCatalogue(const Place &place, Trial &trial, int32_t type, const std::string &bytes) {
    const fs::path folder = (place.path() / kCatalogue).parent_path();
    fs::remove_all(folder);
    WriteCatalogue(place.path());
    std::ofstream(folder / "b") << bytes;
    const std::string before = ReadWholeFile(place.path() / kCatalogue);
    int32_t result = -1;
    trial.Run([&] { result = AddToBookCatalogue("K:\\Books\\b", type); });
    const std::string after = ReadWholeFile(place.path() / kCatalogue);
    EXPECT_TRUE(fs::exists(folder / "b"));
    EXPECT_TRUE(result == 0 || after == before) << "an entry of a book that could not be added";
    const bool is_part_left = HasTemporaryFile(folder);
    if (after == before) {
        fs::remove_all(folder / "1.epub");
        AddToBookCatalogue("K:\\Books\\b", type);
    }
    return {after != before, ReadWholeFile(place.path() / kCatalogue), is_part_left};
}

struct Operation {
    const char *name;
    std::function<Outcome(const Place &place, Trial &trial)> run;
};

const Operation kOperations[] = {
    {"load", Load},
    {"rescan", Rescan},
    {"thumbnails", LookAtPictures},
    {"streams", ReadStreams},
    {"copy", Copy},
    {"preferences", RewritePreferences},
    {"catalogue, a file",
     [](const Place &place, Trial &trial) { return AddToCatalogue(place, trial, 6, "pdf"); }},
    {"catalogue, a book",
     [](const Place &place, Trial &trial) {
         return AddToCatalogue(place, trial, 7, EpubFile({.title = "b"}, BookCover::kNone));
     }},
};

const Fault kFaults[] = {
    {FaultKind::kError, EIO},          {FaultKind::kError, EIO, true},
    {FaultKind::kError, ENOSPC},       {FaultKind::kError, ENOSPC, true},
    {FaultKind::kError, EACCES},       {FaultKind::kError, EACCES, true},
    {FaultKind::kError, EMFILE},       {FaultKind::kError, EMFILE, true},
    {FaultKind::kError, EINTR},        {FaultKind::kShort},
    {FaultKind::kShort, 0, true},      {FaultKind::kAllocation},
    {FaultKind::kAllocation, 0, true},
};

std::ptrdiff_t CountHandles() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

// All numbers for the first fault. The others mostly go the same ways: ever fewer of them.
int NextNumber(const Fault &fault, int number) {
    const bool is_first = fault.kind == FaultKind::kError && fault.error == EIO && !fault.lasting;
    return number + 1 + (is_first ? 0 : number / 2);
}

TEST(SystemFaults, LeaveNothingBehindAndLoseNothing) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const Place place;
    for (const Operation &operation : kOperations) {
        Trial without({}, 0);
        const Outcome usual = operation.run(place, without);
        ASSERT_TRUE(usual.succeeded) << operation.name;
        const std::ptrdiff_t handles = CountHandles();
        for (const Fault &fault : kFaults) {
            if (kHasSanitizer && fault.kind == FaultKind::kAllocation) continue;
            int failed = 0;
            bool hit = true;
            for (int number = 1; hit; number = NextNumber(fault, number)) {
                SCOPED_TRACE(std::string(operation.name) + ", call " + std::to_string(number) + ", kind " +
                             std::to_string(static_cast<int>(fault.kind)) + ", error " +
                             std::to_string(fault.error) + (fault.lasting ? ", lasting" : ""));
                Trial trial(fault, number);
                const Outcome outcome = operation.run(place, trial);
                hit = trial.was_hit();
                EXPECT_TRUE(hit || outcome.succeeded);
                EXPECT_EQ(outcome.text, usual.text);
                // What cannot be deleted either stays.
                EXPECT_TRUE(!outcome.is_part_left || fault.lasting);
                EXPECT_EQ(CountHandles(), handles);
                failed += outcome.succeeded ? 0 : 1;
            }
            const bool must_fail = fault.kind == FaultKind::kError && fault.lasting;
            EXPECT_TRUE(failed > 0 || !must_fail) << operation.name << ": the faults do not reach the calls";
        }
    }
    SetVelmarLogHandler(nullptr, nullptr);
}

}  // namespace

// MediaInfo comes down where its own memory runs out, so there is none here.
HMODULE LoadLibraryW(LPCWSTR) {
    return nullptr;
}

FARPROC GetProcAddress(HMODULE, LPCSTR) {
    return nullptr;
}

BOOL FreeLibrary(HMODULE) {
    return TRUE;
}
