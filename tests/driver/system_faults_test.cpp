// What the driver does when the system fails it: each operation is run with a fault at its first call into
// the system, at its second, and so on until it meets none. This program is built with the book catalogue on.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>

#include "content/book_catalogue.h"
#include "driver/rescan.h"
#include "fixtures/archive_files.h"
#include "fixtures/artwork_file.h"
#include "fixtures/file_writing.h"
#include "fixtures/library_place.h"
#include "fixtures/library_xml.h"
#include "fixtures/media_files.h"
#include "platform/windows/windows_api.h"
#include "tests/content/media_tree.h"
#include "tests/driver/open_library.h"
#include "tests/support/system_faults.h"

// Without memory TagLib leaks what it has begun.
extern "C" __attribute__((visibility("default"))) const char *
__lsan_default_suppressions() {  // NOLINT: its name
    return "leak:libtag";
}

namespace {

namespace fs = std::filesystem;

constexpr char kCatalogue[] = "wine/dosdevices/k:/Books/Books.plist";

void WriteCatalogue(const fs::path &folder) {
    WriteFile(folder / kCatalogue, std::string(kPropertyListHead) + "<dict><key>Books</key><array/></dict>" +
                                       std::string(kPropertyListTail));
}

// A library with one track, and one scanned file of each kind.
struct Place : TempFolder {
    const LibraryPlace library = MakeLibraryPlace(path());
    const ScopedEnvironmentValues environment{library.environment};

    Place() {
        const std::string song = Mp3File(1, {"t", "a", "b", "g", 2000, 1, PngPicture(4)});
        const fs::path &media = library.media_folder;
        WriteFile(media / "Music/a.mp3", song);
        WriteFile(media / "Books/b.epub", EpubFile({.title = "b"}, BookCover::kImage));
        WriteFile(media / "Mobile Applications/c.ipa",
                  ApplicationFile({.folder = "c.app", .artwork_side = 4}));
        WriteFile(media / "Movies/d.m4v", "d");
        WriteFile(media / "Ringtones/e.m4r", M4aFile(1, {}));
        WriteFile(library.add_folder / "f.mp3", song);
        WriteCatalogue(path());
        std::ofstream file(library.library_xml, std::ios::binary);
        LibraryXml xml(file);
        xml.UsualRoot("0123456789ABCDEF", library.Location(media));
        xml.Track("1", {{"Location", XmlText(library.Location(media / "Music/a.mp3"))}});
        for (const int kind : {4, 2, 5, 18})
            xml.Playlist({.name = "list", .distinguished_kind = kind, .track_ids = {kind == 4 ? 1 : 0}});
        xml.Finish();
    }
};

// One fault, and what is to meet it.
struct Trial {
    Fault fault;
    int call_number;
    bool was_hit = false;

    void Run(const std::function<void()> &work) {
        const FaultInjection injection(fault, call_number);
        try {
            work();
        } catch (const std::bad_alloc &) {
            // What is no export may let it through.
        }
        was_hit |= injection.WasHit();
    }
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

// The first thing that a load does is to rewrite preferences without the flag.
Outcome Load(const Place &place, Trial &trial) {
    const PreferenceFile old{.media_folder = BackslashPath(place.library.media_folder),
                             .library_xml = BackslashPath(place.library.library_xml),
                             .block_length = kPreferenceFlagIndex + 1,
                             .flag_byte = 0};
    fs::remove_all(place.library.home / "AppData");
    const fs::path path = old.WriteUnder(place.library.home / "AppData");
    const std::string before = ReadWholeFile(path);
    LibraryDriver *driver = nullptr;
    int32_t result = -1;
    trial.Run([&] { result = InitializeDriverPath(nullptr, nullptr, 0, &driver); });
    EXPECT_EQ(result == 0, driver != nullptr);
    if (driver != nullptr) UninitializeDriverPath(driver);
    const std::string after = ReadWholeFile(path);
    const OpenLibrary library;
    const std::string whole = ReadWholeFile(path);
    EXPECT_TRUE(after == before || after == whole) << "neither the old file nor the new one";
    return {driver != nullptr && after == whole, whole + TreeText(library.driver->root, ""),
            HasTemporaryFile(path.parent_path())};
}

// What a folder does not tell is not there until the next scan.
Outcome Rescan(const Place &, Trial &trial) {
    const OpenLibrary library;
    const auto count = [&] {
        const std::string tree = TreeText(library.driver->root, "");
        return std::count(tree.begin(), tree.end(), '\n');
    };
    trial.Run([&] { RescanLocalFolders(library.driver); });
    const auto found = count();
    RescanLocalFolders(library.driver);
    return {found == count(), std::to_string(count())};
}

// Files, and pictures of each kind, which are made when they are walked to.
Outcome ReadFiles(const Place &place, Trial &trial) {
    fs::remove_all(place.library.home / "Temp");
    fs::create_directory(place.library.home / "Temp");
    const OpenLibrary library;
    Outcome outcome{true};
    // The name of a scanned song is a number of the load.
    const std::string song = OpenedPath(library.driver, "library/music").Names().back();
    const std::pair<std::string, bool> kFiles[] = {{"library/music/1.mp3", true},
                                                   {"library/music/" + song + "/thumb/small", false},
                                                   {"library/book/b.epub/thumb/small", false},
                                                   {"library/app/c.ipa/thumb/small", true}};
    std::string room(1 << 20, '\0');
    for (const auto &[file, is_read] : kFiles) {
        const char *path = file.c_str();
        const auto is_there = [&] { return size_t{OpenedPath(library.driver, path).get() != nullptr}; };
        size_t count = 0;
        trial.Run([&, reads = is_read] {
            DriverStream *stream = nullptr;
            if (!reads) count = is_there();
            if (!reads || OpenDriverStream(library.driver, 0, path, &stream) != 0) return;
            count = static_cast<size_t>(ReadDriverStream(stream, room.data(), 1 << 20));
            CloseDriverStream(stream);
        });
        outcome.is_part_left |= HasTemporaryFile(place.library.home / "Temp");
        const size_t whole =
            is_read ? StreamBytes(library.driver, path, 1 << 20).value_or("").size() : is_there();
        outcome.succeeded &= count == whole && whole > 0;
        outcome.text += std::to_string(whole) + " ";
    }
    return outcome;
}

// A failure is told before the end is.
int32_t TakeState(const CopyProgress *progress, void *state) {
    *static_cast<int32_t *>(state) = std::max(*static_cast<int32_t *>(state), progress->copy_state);
    return 0;
}

Outcome Copy(const Place &place, Trial &trial) {
    const fs::path target = place.library.add_folder / "g.mp3";
    fs::remove(target);
    const std::string bytes(20'000, 'g');
    const std::string source_path = place.Write("g.mp3", bytes).string();
    CopySourceInfo source = {};
    source.source_type = 1;
    source.source_path = source_path.c_str();
    source.source_size = static_cast<int64_t>(bytes.size());
    const OpenLibrary library;
    int32_t state = 0;
    trial.Run([&] {
        StartPathCopy(library.driver, 0, TakeState, &state, 4096);
        CopyDriverPath(library.driver, 0, "library/music", &source);
    });
    const bool is_whole = fs::exists(target) && ReadWholeFile(target) == bytes;
    EXPECT_TRUE(state != 2 || is_whole) << "the host was told that all is there";
    return {state == 2, "", fs::exists(target) && !is_whole};
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

const std::pair<const char *, std::function<Outcome(const Place &, Trial &)>> kOperations[] = {
    {"load", Load},
    {"rescan", Rescan},
    {"files", ReadFiles},
    {"copy", Copy},
    {"catalogue, a file",
     [](const auto &place, auto &trial) { return AddToCatalogue(place, trial, 6, "p"); }},
    {"catalogue, a book",
     [](const auto &place, auto &trial) {
         return AddToCatalogue(place, trial, 7, EpubFile({.title = "b"}, BookCover::kNone));
     }},
};

using enum FaultKind;
const Fault kFaults[] = {
    {kError, EIO},    {kError, EIO, true},    {kError, ENOSPC},      {kError, ENOSPC, true}, {kError, EACCES},
    {kError, EMFILE}, {kError, EACCES, true}, {kError, EINTR},       {kError, EMFILE, true}, {kShort},
    {kAllocation},    {kShort, 0, true},      {kAllocation, 0, true}};

// All numbers for the first fault. The others mostly go the same ways: ever fewer of them.
int NextNumber(const Fault &fault, int number) {
    const bool is_first = fault.kind == kError && fault.error == EIO && !fault.lasting;
    return number + 1 + (is_first ? 0 : number / 2);
}

TEST(SystemFaults, LeaveNothingBehindAndLoseNothing) {
    SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    const Place place;
    for (const auto &[name, run] : kOperations) {
        Trial without{{}, 0};
        const Outcome usual = run(place, without);
        ASSERT_TRUE(usual.succeeded) << name;
        const auto count_handles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
        const auto handles = count_handles();
        for (const Fault &fault : kFaults) {
            int failed = 0;
            bool hit = true;
            for (int number = 1; hit; number = NextNumber(fault, number)) {
                SCOPED_TRACE(testing::Message()
                             << name << ", call " << number << ", kind " << static_cast<int>(fault.kind)
                             << ", error " << fault.error << (fault.lasting ? ", lasting" : ""));
                Trial trial{fault, number};
                const Outcome outcome = run(place, trial);
                hit = trial.was_hit;
                EXPECT_TRUE(hit || outcome.succeeded);
                EXPECT_EQ(outcome.text, usual.text);
                // What cannot be deleted either stays.
                EXPECT_TRUE(!outcome.is_part_left || fault.lasting);
                EXPECT_EQ(count_handles(), handles);
                failed += outcome.succeeded ? 0 : 1;
            }
            const bool must_fail = fault.kind == kError && fault.lasting;
            EXPECT_TRUE(failed > 0 || !must_fail) << name << ": the faults do not reach the calls";
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
