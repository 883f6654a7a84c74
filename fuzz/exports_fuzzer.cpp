// Calls the exports in the order that the input decides, over a library that it decides too: paths and
// streams are opened and left open, copies are made and stopped, files and library change, and rescans come
// in between. Whatever the order, open handles stay good until they are closed, and all files that are made
// lie in the add folder or in the temporary one.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "driver/itunes_driver.h"
#include "fixtures/library_place.h"
#include "fixtures/scoped_environment.h"
#include "fixtures/temp_folder.h"
#include "fuzz/choices.h"
#include "fuzz/chosen_library.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/tree_check.h"
#include "tests/driver/fake_windows.h"

namespace fs = std::filesystem;

namespace {

constexpr int kMostSteps = 64;

std::set<fs::path> FilesBelow(const fs::path &folder) {
    std::set<fs::path> files;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_directory()) files.insert(entry.path());
    }
    return files;
}

bool LiesIn(const fs::path &file, const fs::path &folder) {
    return file.string().starts_with(folder.string() + "/");
}

size_t OpenFiles() {
    return static_cast<size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

// The place of the library, one for the process. Each input finds it empty.
class Surroundings {
  public:
    Surroundings() {
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    }

    const LibraryPlace &place() const { return place_; }

    void Clear() const {
        for (const fs::path &folder :
             {place_.media_folder, place_.home / "Temp", place_.library_xml.parent_path() / "Album Artwork"})
            fs::remove_all(folder);
        for (const fs::path &folder : {place_.add_folder, place_.home / "Temp"})
            fs::create_directories(folder);
    }

  private:
    TempFolder folder_;
    LibraryPlace place_ = MakeLibraryPlace(folder_.path());
    ScopedEnvironmentValues environment_{place_.environment};
};

struct AttributeReleaser {
    void operator()(VelmarAttribute *attributes) const { FreeVelmarAttribute(attributes); }
};

// What a copy asks its host for while it runs.
struct HostSide {
    Choices *choices;

    static int32_t Report(const CopyProgress *progress, void *context) {
        auto &host = *static_cast<HostSide *>(context);
        Require(progress->bytes_copied >= 0, "a copy counts its bytes upwards");
        return host.choices->Below(8) == 7 ? static_cast<int32_t>(host.choices->Below(4)) - 1 : 0;
    }
    static int32_t Read(void *handle, void *buffer, int32_t count) {
        auto &host = *static_cast<HostSide *>(handle);
        Require(count > 0, "a read asks for something");
        std::memset(buffer, 'x', static_cast<size_t>(count));
        return host.choices->Below(4) == 3 ? static_cast<int32_t>(host.choices->Number(4)) : count;
    }
};

// The driver's own files lie in two folders; the others are those that the input wrote.
std::set<fs::path> FilesOutside(const LibraryPlace &place) {
    std::set<fs::path> files;
    for (const fs::path &file : FilesBelow(place.home)) {
        if (!LiesIn(file, place.add_folder) && !LiesIn(file, place.home / "Temp")) files.insert(file);
    }
    return files;
}

class Session {
  public:
    Session(const LibraryPlace &place, Choices &choices) : place_(place), choices_(choices) {
        Require(InitializeDriverPath(nullptr, nullptr, 0, &driver_) == 0, "every library opens");
    }
    ~Session() {
        // What is open goes with the driver; streams outlive it.
        Require(UninitializeDriverPath(driver_) == 0, "the driver ends");
        for (DriverStream *stream : streams_) {
            char bytes[16];
            ReadDriverStream(stream, bytes, sizeof bytes);
            CloseDriverStream(stream);
        }
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    void Step() {
        using Action = void (Session::*)();
        constexpr Action kActions[] = {&Session::Open,        &Session::Open,       &Session::Close,
                                       &Session::Look,        &Session::OpenStream, &Session::UseStream,
                                       &Session::CloseStream, &Session::Copy,       &Session::Copy,
                                       &Session::Finish,      &Session::Change,     &Session::Walk};
        (this->*kActions[choices_.Below(std::size(kActions))])();
    }

    // A copied application has older ones deleted, wherever they lie.
    void CheckFiles() const {
        const std::set<fs::path> files = FilesOutside(place_);
        Require(std::includes(files_.begin(), files_.end(), files.begin(), files.end()),
                "files are made in the add folder and in the temporary folder alone");
    }

  private:
    struct OpenPath {
        std::string text;
        DriverPath *path;
    };

    // A path below one that is open, one of the usual ones, or any text.
    std::string ChoosePath() {
        constexpr const char *kUsual[] = {"",
                                          "library",
                                          "library/music",
                                          "library/book",
                                          "library/app",
                                          "library/ringtone",
                                          "library/movie",
                                          "playlist",
                                          "genius"};
        const size_t kind = choices_.Below(8);
        // As the driver sees it, which is up to the first zero byte.
        if (kind == 7) return choices_.Text().c_str();
        if (kind > 4 || open_.empty()) return kUsual[choices_.Below(std::size(kUsual))];
        const OpenPath &above = open_[choices_.Below(open_.size())];
        DriverPathInfo info = {};
        Require(GetDriverPathInfo(above.path, &info) == 0, "an open path has an info");
        const int32_t count = GetVelmarArraySize(info.names);
        void *name = nullptr;
        GetVelmarArrayItem(info.names, static_cast<int32_t>(choices_.Below(static_cast<size_t>(count))),
                           &name);
        return name == nullptr ? above.text : ChildPath(above.text, static_cast<const char *>(name));
    }

    void Open() {
        const std::string text = ChoosePath();
        DriverPath *path = nullptr;
        if (OpenDriverPath(driver_, 0, text.c_str(), &path) == 0) open_.push_back({text, path});
    }

    void Close() {
        if (open_.empty()) return;
        const size_t at = choices_.Below(open_.size());
        Require(CloseDriverPath(open_[at].path) == 0, "an open path closes");
        open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(at));
    }

    // Reads all that the host sees of a node that is open, in the tree or not.
    void Look() {
        for (const OpenPath &open : open_) {
            DriverPathInfo info = {};
            Require(GetDriverPathInfo(open.path, &info) == 0 && info.open_path != nullptr,
                    "an open path stays good");
            for (int32_t i = 0; i < GetVelmarAttributeSize(info.attributes); ++i) {
                const char *key = nullptr;
                const char *value = nullptr;
                GetVelmarAttributeItem(info.attributes, i, &key, &value);
                Require(std::strlen(key) + std::strlen(value) > 0, "an attribute has texts");
            }
        }
    }

    void OpenStream() {
        const std::string text = ChoosePath();
        DriverStream *stream = nullptr;
        if (OpenDriverStream(driver_, 0, text.c_str(), &stream) == 0) streams_.push_back(stream);
    }

    void UseStream() {
        if (streams_.empty()) return;
        DriverStream *stream = streams_[choices_.Below(streams_.size())];
        char bytes[512];
        SeekDriverStream(stream, static_cast<int64_t>(choices_.Number(8)),
                         static_cast<int32_t>(choices_.Below(5)));
        const auto count = static_cast<int32_t>(choices_.Below(sizeof bytes + 1));
        const int32_t read = ReadDriverStream(stream, bytes, count);
        Require(read >= 0 && read <= count, "a read stays in its room");
        Require(WriteDriverStream(stream, bytes, count) == 0, "nothing is written");
    }

    void CloseStream() {
        if (streams_.empty()) return;
        const size_t at = choices_.Below(streams_.size());
        Require(CloseDriverStream(streams_[at]) == 0, "a stream closes");
        streams_.erase(streams_.begin() + static_cast<std::ptrdiff_t>(at));
    }

    void Copy() {
        HostSide host{&choices_};
        VelmarAttribute *attributes = nullptr;
        AllocVelmarAttribute(&attributes);
        const std::unique_ptr<VelmarAttribute, AttributeReleaser> owner(attributes);
        CopySourceInfo source = {};
        source.source.attributes = attributes;
        source.source_type = static_cast<int32_t>(choices_.Below(4));
        constexpr const char *kExtensions[] = {".mp3", ".epub", ".ipa", ".m4v", ".xyz", ""};
        const std::string extension = kExtensions[choices_.Below(std::size(kExtensions))];
        const std::string name = choices_.Flag() ? "copy" : choices_.Text();
        AddVelmarAttributeItem(attributes, "name", name.c_str());
        AddVelmarAttributeItem(attributes, "location", ("/elsewhere/file" + extension).c_str());
        const std::string bytes = ChosenMediaBytes(choices_);
        const fs::path file = place_.home / "Temp" / ("source" + extension);
        if (source.source_type == 1) std::ofstream(file, std::ios::binary) << bytes;
        const std::string path = file.string();
        source.source_path = path.c_str();
        source.source_handle =
            source.source_type == 2 ? static_cast<void *>(const_cast<char *>(bytes.data())) : &host;
        source.read_function = HostSide::Read;
        source.source_size = static_cast<int64_t>(bytes.size());
        // A host that is wrong about a block of memory cannot be helped; about other sources it may be wrong.
        if (source.source_type != 2) source.source_size += static_cast<int64_t>(choices_.Below(16)) - 8;
        StartPathCopy(driver_, 0, choices_.Flag() ? HostSide::Report : nullptr, &host,
                      static_cast<int32_t>(choices_.Number(2)) - 8);
        CopyDriverPath(driver_, 0, "library/music", &source);
        StartPathCopy(driver_, 0, nullptr, nullptr, 0);
    }

    void Finish() { Require(FinishPathCopy(driver_, 0) == 0, "a batch ends"); }

    // Others than the driver change files.
    void Change() {
        CheckFiles();
        if (choices_.Below(4) == 3) {
            WriteChosenLibrary(place_, choices_);
        } else {
            ChangeMediaFile(place_, choices_);
        }
        files_ = FilesOutside(place_);
    }

    void Walk() { CheckTree(driver_, ChoosePath()); }

    const LibraryPlace &place_;
    Choices &choices_;
    LibraryDriver *driver_ = nullptr;
    std::vector<OpenPath> open_;
    std::vector<DriverStream *> streams_;
    std::set<fs::path> files_ = FilesOutside(place_);
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const Surroundings surroundings;
    const LibraryPlace &place = surroundings.place();
    surroundings.Clear();
    Choices choices(AsText(bytes, size));
    const FakeWindows windows(choices.Flag() ? std::vector<std::wstring>{L"iTunes"}
                                             : std::vector<std::wstring>());
    WriteChosenLibrary(place, choices);
    for (size_t count = choices.Below(8); count > 0; --count)
        ChangeMediaFile(place, choices);
    const size_t open_files = OpenFiles();
    {
        Session session(place, choices);
        for (int steps = 0; steps < kMostSteps && !choices.AtEnd(); ++steps)
            session.Step();
        session.CheckFiles();
    }
    Require(OpenFiles() == open_files, "every file is closed");
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    uint32_t number = 1;
    for (int i = 0; i < 24; ++i) {
        std::string seed;
        for (int j = 0; j < 1500; ++j) {
            number = number * 1664525 + 1013904223;
            seed += static_cast<char>(number >> 24);
        }
        seeds.push_back(seed);
    }
    return seeds;
}
