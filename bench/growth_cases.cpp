#include "bench/growth_cases.h"

#include <algorithm>
#include <fstream>
#include <memory>

#include "artwork/artwork_file.h"
#include "artwork/artwork_scan.h"
#include "artwork/id3_picture.h"
#include "artwork/sound_length.h"
#include "content/app_info.h"
#include "content/date_parser.h"
#include "content/epub_archive.h"
#include "content/plist_values.h"
#include "content/zip_extract.h"
#include "driver/library_driver.h"
#include "driver/unique_file.h"
#include "fixtures/itl_file.h"
#include "fixtures/library_place.h"
#include "fixtures/library_xml.h"
#include "fixtures/preference_file.h"
#include "fixtures/zip_builder.h"
#include "platform/itl_parser/itl_parser.h"
#include "platform/windows/text.h"
#include "tests/artwork/id3_builder.h"

namespace {

namespace fs = std::filesystem;

std::string Repeated(std::string_view piece, size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

// One piece for each number.
std::string Pieces(size_t count, const std::function<std::string(size_t)> &piece) {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += piece(i);
    return text;
}

using Read = std::function<void(const std::string &path)>;
using Generate = std::function<std::string(size_t size)>;

GrowthInput FileInput(const fs::path &folder, const std::string &name, const std::string &bytes,
                      const Read &read) {
    const fs::path path = folder / name;
    std::ofstream(path, std::ios::binary) << bytes;
    return {bytes.size(), [read, folder, path = path.string()] {
                fs::create_directory(folder / "temp");
                const ScopedEnvironment temp("TEMP", (folder / "temp").string());
                read(path);
            }};
}

// A reader of one file.
GrowthCase FileCase(const char *name, size_t size, const std::string &file, const Generate &generate,
                    const Read &read) {
    return {name, size, [=](const fs::path &folder, size_t count) {
                return FileInput(folder, file, generate(count), read);
            }};
}

// A property list. The last key of a dictionary is looked up as well.
GrowthCase ListCase(const char *name, size_t size, const Generate &generate) {
    return FileCase(name, size, "list.plist", generate, [](const std::string &path) {
        const CFOwner list = ReadPropertyListFile(path);
        if (IsDictionary(list.get())) PlistValue(list.get(), "k");
    });
}

std::string XmlList(const std::string &content) {
    return std::string(kPropertyListHead) + content + std::string(kPropertyListTail);
}

Generate XmlOf(const std::function<std::string(size_t)> &content) {
    return [=](size_t size) { return XmlList(content(size)); };
}

// A binary list with offsets and references of four bytes, whose first object is the root.
std::string BinaryList(const std::vector<std::string> &objects) {
    std::string file = "bplist00";
    std::string offsets;
    for (const std::string &object : objects) {
        offsets += BigEndian(static_cast<uint32_t>(file.size()));
        file += object;
    }
    const auto number = [](size_t value) { return Zeros(4) + BigEndian(static_cast<uint32_t>(value)); };
    return file + offsets + Zeros(6) + "\4\4" + number(objects.size()) + number(0) + number(file.size());
}

std::string Counted(char marker, size_t count) {
    return std::string(1, marker) + '\x12' + BigEndian(static_cast<uint32_t>(count));
}

// An array of so many references to one text, itself a tenth of the file.
std::string ListOfOneSharedText(size_t size) {
    const std::string text(size / 10, 'x');
    return BinaryList(
        {Counted('\xAF', size) + Repeated(BigEndian(1), size), Counted('\x5F', text.size()) + text});
}

// Arrays that each hold the next one twice, over and over.
std::string ListOfDoublings(size_t size) {
    std::vector<std::string> objects = {Counted('\xAF', size)};
    for (size_t i = 0; i < size; ++i) {
        objects[0] += BigEndian(static_cast<uint32_t>(1 + i));
        const auto next = static_cast<uint32_t>(i % 8 == 7 ? size + 1 : i + 2);
        objects.push_back("\xA2" + BigEndian(next) + BigEndian(next));
    }
    objects.push_back("\x08");
    objects.push_back("\x08");
    return BinaryList(objects);
}

std::string BinaryDictionary(size_t size) {
    std::vector<std::string> objects = {Counted('\xDF', size)};
    for (size_t i = 0; i < 2 * size; ++i)
        objects[0] += BigEndian(static_cast<uint32_t>(i < size ? i + 1 : 1));
    for (size_t i = 0; i < size; ++i)
        objects.push_back("\x57" + std::to_string(1'000'000 + i));
    return BinaryList(objects);
}

void AddListCases(std::vector<GrowthCase> &cases) {
    cases.push_back(ListCase(
        "XML list: one dictionary", 60'000, XmlOf([](size_t size) {
            return "<dict>" +
                   Pieces(size, [](size_t i) { return "<key>" + std::to_string(i) + "</key><true/>"; }) +
                   "</dict>";
        })));
    cases.push_back(ListCase("XML list: one key", 100'000, XmlOf([](size_t size) {
                                 return "<dict>" + Repeated("<key>k</key><true/>", size) + "</dict>";
                             })));
    cases.push_back(ListCase("XML list: dictionaries of unlike keys", 50'000, XmlOf([](size_t size) {
                                 return "<array>" +
                                        Pieces(size,
                                               [](size_t i) {
                                                   return "<dict><key>" + std::to_string(i) +
                                                          "</key><true/></dict>";
                                               }) +
                                        "</array>";
                             })));
    cases.push_back(ListCase("XML list: nested arrays", 500, XmlOf([](size_t size) {
                                 return "<array>" +
                                        Repeated(Repeated("<array>", 500) + Repeated("</array>", 500), size) +
                                        "</array>";
                             })));
    cases.push_back(ListCase("XML list: empty arrays", 500'000, XmlOf([](size_t size) {
                                 return "<array>" + Repeated("<array/>", size) + "</array>";
                             })));
    cases.push_back(ListCase("XML list: empty dictionaries", 500'000, XmlOf([](size_t size) {
                                 return "<array>" + Repeated("<dict/>", size) + "</array>";
                             })));
    cases.push_back(ListCase("XML list: numbers and dates without end", 1'000'000, XmlOf([](size_t size) {
                                 return "<array><real>" + std::string(size, '9') + "</real><real>0." +
                                        std::string(size, '0') + "1</real><integer>" +
                                        std::string(size, '0') + "7</integer><date>" +
                                        std::string(size, '0') + "2010-01-01T00:00:00Z</date></array>";
                             })));
    cases.push_back(ListCase("XML list: one text of references", 1'000'000, XmlOf([](size_t size) {
                                 return "<string>" + Repeated("&#38;", size) + "</string>";
                             })));
    cases.push_back(ListCase("UTF-16 list", 500'000, [](size_t size) {
        std::string wide = "\xFF\xFE";
        for (const char letter : XmlList("<array>" + Repeated("<true/>", size) + "</array>"))
            wide += {letter, '\0'};
        return wide;
    }));
    cases.push_back(
        ListCase("old-style list", 120'000, [](size_t size) { return "(" + Repeated("a,", size) + "a)"; }));
    cases.push_back(ListCase("old-style list: one dictionary", 25'000, [](size_t size) {
        return "{" + Pieces(size, [](size_t i) { return std::to_string(i) + "=a;"; }) + "}";
    }));
    cases.push_back(ListCase("binary list: one shared text", 500'000, ListOfOneSharedText));
    cases.push_back(ListCase("binary list: doublings", 100'000, ListOfDoublings));
    cases.push_back(ListCase("binary list: one dictionary", 200'000, BinaryDictionary));
    cases.push_back(ListCase("binary list: small objects", 1'000'000, [](size_t size) {
        std::vector<std::string> objects(size, "\xA0");
        objects[0] = Counted('\xAF', size - 1) +
                     Pieces(size - 1, [](size_t i) { return BigEndian(static_cast<uint32_t>(i + 1)); });
        return BinaryList(objects);
    }));
}

void ReadItl(const std::string &path) {
    const ITLParser parser(path.c_str());
}

void AddItlCases(std::vector<GrowthCase> &cases) {
    cases.push_back(FileCase(
        ".itl file: tracks of one id", 30'000, "a.itl",
        [](size_t size) {
            ItlFile file(ItlForm4());
            for (size_t i = 0; i < size; ++i)
                file.AddTrack(
                    {.id = 1, .texts = {{kItlName, std::to_string(i)}}, .persistent_id = 1, .album = 1});
            file.AddAlbum(1, 100);
            return file.Bytes();
        },
        ReadItl));
    cases.push_back(FileCase(
        ".itl file: lists of one id", 30'000, "a.itl",
        [](size_t size) {
            ItlFile file(ItlForm4());
            for (size_t i = 0; i < size; ++i)
                file.AddPlaylist(
                    {.name = std::to_string(i), .id = static_cast<uint32_t>(i % 2), .items = {1, 1, 1}});
            return file.Bytes();
        },
        ReadItl));
}

std::string Container() {
    return "<container><rootfiles><rootfile full-path='p.opf'/></rootfiles></container>";
}

void ReadBook(const std::string &path) {
    VelmarAttribute *attributes = nullptr;
    AllocVelmarAttribute(&attributes);
    ReadEpubArchive(BackslashPath(path), attributes);
    FreeVelmarAttribute(attributes);
}

std::string BookOf(const std::string &package) {
    return BuildZip({StoredEntry("META-INF/container.xml", Container()), StoredEntry("p.opf", package)});
}

// A directory of so many entries which all name the same bytes.
std::string OverlappingZip(size_t size) {
    const ZipBuilderEntry entry = DeflatedEntry("0000000", std::string(1 << 20, '\0'));
    std::string file = BuildZip({entry});
    const size_t directory = file.find("PK\1\2");
    const std::string record = file.substr(directory, file.find("PK\5\6") - directory);
    file.resize(directory);
    for (size_t i = 0; i < size; ++i)
        file += std::string(record).replace(record.size() - 7, 7, std::to_string(1'000'000 + i));
    const std::string count = LittleEndian(static_cast<uint32_t>(size), 2);
    return file + "PK\5\6" + Zeros(4) + count + count +
           LittleEndian(static_cast<uint32_t>(size * record.size())) +
           LittleEndian(static_cast<uint32_t>(directory)) + Zeros(2);
}

void AddArchiveCases(std::vector<GrowthCase> &cases) {
    cases.push_back(FileCase(
        "book: elements", 60'000, "a.epub",
        [](size_t size) {
            return BookOf("<package><metadata>" + Repeated("<a/>", size) + "</metadata></package>");
        },
        ReadBook));
    cases.push_back(FileCase(
        "book: attributes", 60'000, "a.epub",
        [](size_t size) {
            return BookOf("<package><a " +
                          Pieces(size, [](size_t i) { return "a" + std::to_string(i) + "='' "; }) +
                          "/></package>");
        },
        ReadBook));
    cases.push_back(FileCase(
        "book: titles", 50'000, "a.epub",
        [](size_t size) {
            return BookOf("<package><metadata>" + Repeated("<dc:title>t</dc:title>", size) +
                          "</metadata></package>");
        },
        ReadBook));
    cases.push_back(FileCase(
        "book: a long date", 1'000'000, "a.epub",
        [](size_t size) {
            return BookOf("<package><metadata><dc:date>2010-01-01T00:00:00+" + std::string(size, '0') +
                          "</dc:date></metadata></package>");
        },
        ReadBook));
    const auto many_entries = [](size_t size) {
        std::vector<ZipBuilderEntry> entries;
        for (size_t i = 0; i < size; ++i)
            entries.push_back(StoredEntry(std::string(8, 'a') + "!" + std::to_string(i), ""));
        return BuildZip(entries);
    };
    cases.push_back(FileCase("archive: a pattern that backtracks", 30'000, "a.zip", many_entries,
                             [](const std::string &path) { ExtractEntry(path, "(a+)+", path + ".out"); }));
    cases.push_back(
        FileCase("application: many entries", 30'000, "a.zip", many_entries, [](const std::string &path) {
            AppInfo info;
            ReadAppInfo(path, info);
        }));
    cases.push_back(FileCase("archive: entries that overlap", 5'000, "a.zip", OverlappingZip,
                             [](const std::string &path) {
                                 UnzipAll(path, path + ".out");
                                 fs::remove_all(path + ".out");
                             }));
    cases.push_back(FileCase(
        "archive: one icon of zeros", 16 << 20, "a.zip",
        [](size_t size) { return BuildZip({DeflatedEntry("icon", std::string(size, '\0'))}); },
        [](const std::string &path) { ExtractEntryToFile(path, "icon", path + ".out"); }));
    cases.push_back(FileCase(
        "application: a list of zeros", 400'000, "a.zip",
        [](size_t size) {
            return BuildZip({DeflatedEntry("iTunesMetadata.plist",
                                           XmlList("<array>" + Repeated("<dict/>", size / 8) + "</array>"))});
        },
        [](const std::string &path) {
            AppInfo info;
            ReadAppInfo(path, info);
        }));
}

void AddMediaCases(std::vector<GrowthCase> &cases) {
    const auto read_tag = [](const std::string &path) { ExtractId3Picture(BackslashPath(path)); };
    cases.push_back(FileCase(
        "tag: empty pictures", 100'000, "a.mp3",
        [](size_t size) { return Id3Tag(Repeated(PictureFrame(""), size)) + SilentSound(1); }, read_tag));
    cases.push_back(FileCase(
        "tag: tiny frames", 100'000, "a.mp3",
        [](size_t size) { return Id3Tag(Repeated(Id3Text("TIT2", "t"), size)) + SilentSound(1); }, read_tag));
    cases.push_back(FileCase(
        "sound: no frame anywhere", 4 << 20, "a.mp3", [](size_t size) { return std::string(size, '\xFF'); },
        read_tag));
    cases.push_back(FileCase(
        "ringtone: atoms", 500'000, "a.m4r",
        [](size_t size) {
            return BigEndian(24) + "ftypM4A " + Zeros(12) + Repeated(BigEndian(8) + "free", size);
        },
        [](const std::string &path) { SoundLength(BackslashPath(path)); }));
    cases.push_back(FileCase(
        "artwork file: boxes", 10'000, "a.itc",
        [](size_t size) {
            return BigEndian(28) + "itch" + Zeros(20) +
                   Repeated(BigEndian(84) + "item" + BigEndian(84) + Zeros(72), size);
        },
        [](const std::string &path) { ReadArtworkFile(BackslashPath(path)); }));
}

// A library that a driver loads, and what is done with it then.
using WriteLibrary = std::function<void(LibraryXml &xml, const LibraryPlace &place, size_t size)>;
using Use = std::function<void(LibraryDriver &driver, const LibraryPlace &place)>;

GrowthCase LibraryCase(const char *name, size_t size, const WriteLibrary &write, const Use &use = nullptr) {
    return {name, size, [=](const fs::path &folder, size_t count) {
                const LibraryPlace place = MakeLibraryPlace(folder);
                {
                    std::ofstream file(place.library_xml, std::ios::binary);
                    LibraryXml xml(file);
                    xml.UsualRoot("0123456789ABCDEF", place.Location(place.media_folder));
                    write(xml, place, count);
                    xml.Finish();
                }
                uint64_t bytes = 0;
                for (const auto &entry : fs::recursive_directory_iterator(place.home))
                    bytes += entry.is_regular_file() ? fs::file_size(entry) + 256
                                                     : 256;  // with its place in a folder
                return GrowthInput{bytes, [=] {
                                       const ScopedEnvironmentValues environment(place.environment);
                                       LibraryDriver driver;
                                       if (CreateLibrary(&driver) != 0)
                                           throw std::runtime_error("not loaded");
                                       if (use) use(driver, place);
                                       DestroyLibrary(&driver);
                                   }};
            }};
}

fs::path Movies(const LibraryPlace &place) {
    return place.media_folder / "Movies";
}

std::string Id(size_t number) {
    std::string digits = std::to_string(number);
    return std::string(16 - digits.size(), '0') + digits;
}

void AddLibraryCases(std::vector<GrowthCase> &cases) {
    cases.push_back(
        LibraryCase("library: empty tracks", 50'000, [](LibraryXml &xml, const LibraryPlace &, size_t size) {
            for (size_t i = 0; i < size; ++i)
                xml.Track(std::to_string(i), {});
        }));
    // A node, with its containers, for every twenty bytes.
    cases.back().memory_factor = 16;
    cases.push_back(LibraryCase(
        "library: tracks of one id", 30'000, [](LibraryXml &xml, const LibraryPlace &, size_t size) {
            for (size_t i = 0; i < size; ++i)
                xml.Track("1", {{"Track ID", XmlInteger(1)}, {"Persistent ID", XmlText(Id(1))}});
            xml.Playlist({.name = "a", .master = true, .track_ids = std::vector<int64_t>(size, 1)});
        }));
    cases.push_back(LibraryCase(
        "library: lists of one name and id", 20'000, [](LibraryXml &xml, const LibraryPlace &, size_t size) {
            for (size_t i = 0; i < size; ++i)
                xml.Playlist(
                    {.name = "a", .playlist_id = 1, .persistent_id = Id(1), .parent_persistent_id = Id(2)});
        }));
    // Each list lies in the one before; then lists of one id, which are compared by their places, lie in the
    // last.
    cases.push_back(
        LibraryCase("library: lists in lists", 5'000, [](LibraryXml &xml, const LibraryPlace &, size_t size) {
            for (size_t i = 1; i < size; ++i)
                xml.Playlist(
                    {.name = "a", .persistent_id = Id(i), .parent_persistent_id = Id(i - 1), .folder = true});
            for (size_t i = 1; i < size; ++i)
                xml.Playlist({.name = "b",
                              .persistent_id = "same",
                              .parent_persistent_id = Id(size - 1),
                              .folder = true});
        }));
    cases.push_back(LibraryCase("library: lists in a circle", 10'000,
                                [](LibraryXml &xml, const LibraryPlace &, size_t size) {
                                    for (size_t i = 0; i < size; ++i)
                                        xml.Playlist({.name = "a",
                                                      .persistent_id = Id(i),
                                                      .parent_persistent_id = Id((i + 1) % size),
                                                      .folder = true});
                                }));
    cases.push_back(LibraryCase(
        "artwork cache: one id everywhere", 150,
        [](LibraryXml &xml, const LibraryPlace &place, size_t size) {
            for (size_t i = 0; i < size; ++i) {
                xml.Track(std::to_string(i), {{"Track ID", XmlInteger(static_cast<int64_t>(i))},
                                              {"Persistent ID", XmlText(Id(1))}});
                const fs::path folder = place.library_xml.parent_path() / "Album Artwork" / std::to_string(i);
                fs::create_directories(folder);
                std::ofstream(folder / ("0123456789ABCDEF-" + Id(1) + ".itc")) << "itch";
            }
        },
        [](LibraryDriver &driver, const LibraryPlace &) { EnsureAlbumArtworkScan(&driver); }));
    cases.push_back(LibraryCase("media folder: files of one name", 150,
                                [](LibraryXml &xml, const LibraryPlace &place, size_t size) {
                                    xml.Playlist({.name = "Movies", .distinguished_kind = 2});
                                    for (size_t i = 0; i < size; ++i) {
                                        const fs::path folder = Movies(place) / std::to_string(i);
                                        fs::create_directories(folder);
                                        std::ofstream(folder / "a.m4v") << "x";
                                    }
                                }));
    cases.push_back(LibraryCase(
        "media folder: links in a circle", 50, [](LibraryXml &xml, const LibraryPlace &place, size_t size) {
            xml.Playlist({.name = "Movies", .distinguished_kind = 2});
            for (size_t i = 0; i < size; ++i) {
                fs::create_directories(Movies(place) / std::to_string(i));
                for (size_t j = 0; j < 10; ++j)
                    fs::create_directory_symlink(Movies(place) / std::to_string((i + j) % size),
                                                 Movies(place) / std::to_string(i) / std::to_string(j));
            }
        }));
    cases.push_back({"copy: a name that is taken", 1'000, [](const fs::path &folder, size_t size) {
                         for (size_t i = 0; i < size; ++i)
                             std::ofstream(folder / ("a" + (i == 0 ? "" : std::to_string(i)) + ".mp3"))
                                 << "x";
                         return GrowthInput{size * 256, [path = BackslashPath(folder / "a.mp3")] {
                                                UniqueFileName(Utf8ToWide(path));
                                            }};
                     }});
}

}  // namespace

std::vector<GrowthCase> GrowthCases() {
    std::vector<GrowthCase> cases;
    AddListCases(cases);
    AddItlCases(cases);
    AddArchiveCases(cases);
    AddMediaCases(cases);
    AddLibraryCases(cases);
    return cases;
}
