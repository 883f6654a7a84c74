// Writes made-up "iTunes Library.itl" files, in the forms of all versions.
#ifndef TESTS_SUPPORT_ITL_FILE_H
#define TESTS_SUPPORT_ITL_FILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// How the versions of iTunes differ.
struct ItlForm {
    std::string version;
    bool little_endian = false;
    std::uint8_t encryption = 0;  // 0 none, 1 whole body, 2 first part
    bool compressed = false;
    std::uint32_t envelope_header = 0;
    std::uint32_t track_header = 0;
    std::uint32_t list_header = 0;
    std::uint32_t item_header = 0;
    std::uint32_t first_part = 0;  // bytes that encryption 2 covers at most
};

ItlForm ItlForm4();   // big-endian, neither encrypted nor compressed
ItlForm ItlForm8();   // big-endian, encrypted
ItlForm ItlForm9();   // big-endian, encrypted, compressed
ItlForm ItlForm10();  // big-endian, encrypted at the start, compressed
ItlForm ItlForm12();  // little-endian, encrypted at the start, compressed
std::vector<ItlForm> AllItlForms();

// Types of data objects.
enum ItlTextType : std::uint32_t {
    kItlName = 2,
    kItlAlbum = 3,
    kItlArtist = 4,
    kItlGenre = 5,
    kItlKind = 6,
    kItlComments = 8,
    kItlLocation = 11,
    kItlAlbumArtist = 27,
    kItlListName = 100,
    kItlSmartCriteria = 101,
    kItlSmartInfo = 102,
};

struct ItlText {
    std::uint32_t type = kItlName;
    std::string text{};
    // Empty: the text is UTF-8, stored as iTunes does. Else its bytes stand in the file under this number.
    std::optional<std::uint32_t> encoding{};
};

struct ItlTrack {
    std::uint32_t id = 0;
    std::vector<ItlText> texts{};
    std::uint32_t date_modified = 0;
    std::uint64_t size = 0;
    std::uint32_t total_time = 0;
    std::uint32_t track_number = 0;
    std::uint32_t year = 0;
    std::uint32_t bit_rate = 0;
    float sample_rate = 0;
    std::uint32_t play_count = 0;
    std::uint8_t rating = 0;
    std::uint32_t date_added = 0;
    std::uint64_t persistent_id = 0;
    std::uint32_t album = 0;
};

struct ItlPlaylist {
    std::string name{};
    std::uint8_t kind = 0;
    std::uint32_t id = 0;
    bool master = false;
    std::string smart_info{};  // settings of a smart list
    std::vector<std::uint32_t> items{};
};

// The records of a file, which are made first and then put together.
class ItlFile {
  public:
    explicit ItlFile(ItlForm form) : form_(std::move(form)) {}

    std::uint64_t persistent_id = 0xA1B2C3D4E5F60718;

    void AddTrack(const ItlTrack &track);
    void AddPlaylist(const ItlPlaylist &list);
    void AddAlbum(std::uint32_t number, std::uint8_t rating);

    // A text or any other data object.
    std::string Object(std::uint32_t type, const std::string &payload) const;
    std::string Object(const ItlText &text) const;
    // A section around its content.
    std::string Section(std::uint32_t kind, const std::string &content) const;

    // The sections of the added records, with some that nobody needs around them.
    std::vector<std::string> Sections() const;
    std::string Bytes() const { return Bytes(Sections()); }
    // The file with these sections.
    std::string Bytes(const std::vector<std::string> &sections) const;
    // The file with a body that is already compressed, or of sections that are not to be.
    std::string BytesAround(const std::string &stored_body, std::uint32_t section_count) const;

  private:
    std::string Number(std::uint64_t number, int size) const;
    std::string Tag(const char *letters) const;
    std::string ListHead(const char *tag, std::uint32_t length, std::uint32_t count) const;
    class Header;

    ItlForm form_;
    std::string tracks_;
    std::string lists_;
    std::string albums_;
    std::uint32_t track_count_ = 0;
    std::uint32_t list_count_ = 0;
    std::uint32_t album_count_ = 0;
};

// As iTunes compresses.
std::string ItlDeflated(const std::string &body);

#endif
