#include "tests/support/itl_file.h"

#include <nettle/aes.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

#include "platform/core_foundation/utf_text.h"
#include "tests/support/byte_text.h"

namespace {

constexpr std::uint32_t kFirstPart = 102400;
constexpr std::size_t kBlock = AES_BLOCK_SIZE;
constexpr std::uint32_t kObjectHeader = 24;

void Encrypt(std::string &body, std::size_t length) {
    aes128_ctx cipher;
    aes128_set_encrypt_key(&cipher, reinterpret_cast<const std::uint8_t *>("BHUILuilfghuila3"));
    auto *bytes = reinterpret_cast<std::uint8_t *>(body.data());
    aes128_encrypt(&cipher, length / kBlock * kBlock, bytes, bytes);
}

// UTF-16 units of the body's order, or one byte for each character where that is enough.
std::pair<std::uint32_t, std::string> StoredText(const std::string &text, bool little_endian) {
    std::string units = core_foundation::Utf8ToUtf16BigEndian(text);
    std::string narrow;
    bool is_wide = false;
    for (std::size_t i = 0; i < units.size(); i += 2) {
        is_wide |= units[i] != 0;
        narrow += units[i + 1];
        if (little_endian) std::swap(units[i], units[i + 1]);
    }
    return is_wide ? std::pair(1u, units) : std::pair(3u, narrow);
}

}  // namespace

ItlForm ItlForm4() {
    return {"4.6", false, 0, false, 132, 224, 512, 76, 0};
}

ItlForm ItlForm8() {
    return {"8.0.2", false, 1, false, 132, 584, 3140, 76, 0};
}

ItlForm ItlForm9() {
    return {"9.2", false, 1, true, 144, 588, 3224, 76, 0};
}

ItlForm ItlForm10() {
    return {"10.6", false, 2, true, 144, 660, 3260, 76, kFirstPart};
}

ItlForm ItlForm12() {
    return {"12.9.4.102", true, 2, true, 144, 756, 3500, 84, kFirstPart};
}

std::vector<ItlForm> AllItlForms() {
    return {ItlForm4(), ItlForm8(), ItlForm9(), ItlForm10(), ItlForm12()};
}

// The fixed part of a record. A field that the form does not have is left out.
class ItlFile::Header {
  public:
    Header(const ItlFile &file, const char *tag, std::uint32_t length) : file_(file), bytes_(length, '\0') {
        bytes_.replace(0, 4, file.Tag(tag));
        Put(4, 4, length);
    }
    void Put(std::size_t offset, int size, std::uint64_t number) {
        const std::string field = file_.Number(number, size);
        if (offset + field.size() <= bytes_.size()) bytes_.replace(offset, field.size(), field);
    }
    // With what follows inside the record.
    std::string Around(const std::string &content) {
        Put(8, 4, bytes_.size() + content.size());
        return bytes_ + content;
    }
    const std::string &bytes() const { return bytes_; }

  private:
    const ItlFile &file_;
    std::string bytes_;
};

std::string ItlFile::Number(std::uint64_t number, int size) const {
    const auto low = static_cast<std::uint32_t>(number);
    const auto high = static_cast<std::uint32_t>(number >> 32);
    if (size <= 4) return form_.little_endian ? LittleEndian(low, size) : BigEndian(low, size);
    return form_.little_endian ? LittleEndian(low) + LittleEndian(high) : BigEndian(high) + BigEndian(low);
}

std::string ItlFile::Tag(const char *letters) const {
    std::string tag(letters);
    if (form_.little_endian) std::reverse(tag.begin(), tag.end());
    return tag;
}

std::string ItlFile::ListHead(const char *tag, std::uint32_t length, std::uint32_t count) const {
    Header head(*this, tag, length);
    head.Put(8, 4, count);
    return head.bytes();
}

std::string ItlFile::Object(std::uint32_t type, const std::string &payload) const {
    Header header(*this, "hohm", kObjectHeader);
    header.Put(0x0C, 4, type);
    return header.Around(payload);
}

std::string ItlFile::Object(const ItlText &text) const {
    auto [encoding, bytes] =
        text.encoding ? std::pair(*text.encoding, text.text) : StoredText(text.text, form_.little_endian);
    // iTunes gives URLs a number of their own.
    if (!text.encoding && text.type == kItlLocation) encoding = 2;
    return Object(text.type, Number(encoding, 4) + Number(bytes.size(), 4) + Zeros(8) + bytes);
}

void ItlFile::AddTrack(const ItlTrack &track) {
    Header header(*this, "htim", form_.track_header);
    header.Put(0x0C, 4, track.texts.size());
    header.Put(0x10, 4, track.id);
    header.Put(0x20, 4, track.date_modified);
    header.Put(0x24, 4, track.size);
    header.Put(0x28, 4, track.total_time);
    header.Put(0x2C, 4, track.track_number);
    header.Put(0x34, 4, track.year);
    header.Put(0x38, 4, track.bit_rate);
    header.Put(0x4C, 4, track.play_count);
    header.Put(0x6C, 1, track.rating);
    header.Put(0x6D, 1, 0x77);  // a field of its own
    header.Put(0x78, 4, track.date_added);
    header.Put(0x80, 8, track.persistent_id);
    header.Put(0x98, 4, std::bit_cast<std::uint32_t>(track.sample_rate));
    header.Put(0xDC, 4, track.album);
    header.Put(0x144, 8, track.size);
    header.Put(0x274, 4, 1);
    std::string objects;
    for (const ItlText &text : track.texts)
        objects += Object(text);
    tracks_ += header.Around(objects);
    ++track_count_;
}

void ItlFile::AddPlaylist(const ItlPlaylist &list) {
    std::string content = Object({kItlListName, list.name, {}});
    if (!list.smart_info.empty()) {
        content += Object(kItlSmartCriteria, "SLst" + Zeros(132)) + Object(kItlSmartInfo, list.smart_info);
    }
    for (std::size_t i = 0; i < list.items.size(); ++i) {
        Header item(*this, "hptm", form_.item_header);
        item.Put(0x10, 4, i + 1);
        item.Put(0x18, 4, list.items[i]);
        content += item.Around("");
    }
    Header header(*this, "hpim", form_.list_header);
    header.Put(0x0C, 4, list.smart_info.empty() ? 1 : 3);
    header.Put(0x10, 4, list.items.size());
    header.Put(0x16, 1, list.master ? 1 : 0);
    header.Put(0x238, 1, 1);  // a field of its own
    header.Put(0x239, 1, list.kind);
    header.Put(0xD40, 4, list.id);
    lists_ += header.Around(content);
    ++list_count_;
}

void ItlFile::AddAlbum(std::uint32_t number, std::uint8_t rating) {
    Header header(*this, "haim", 88);
    header.Put(0x10, 4, number);
    header.Put(0x28, 1, rating);
    albums_ += header.Around(Object({300, "an album", {}}));
    ++album_count_;
}

std::string ItlFile::Section(std::uint32_t kind, const std::string &content) const {
    Header header(*this, "hdsm", 96);
    header.Put(0x0C, 4, kind);
    return header.Around(content);
}

std::vector<std::string> ItlFile::Sections() const {
    const std::string other_track = Header(*this, "htim", form_.track_header).Around("");
    return {Section(16, Header(*this, "hdfm", form_.envelope_header).bytes()),
            Section(9, ListHead("halm", 92, album_count_) + albums_),
            Section(1, ListHead("htlm", 92, track_count_) + tracks_),
            Section(13, ListHead("htlm", 92, 1) + other_track),
            Section(2, ListHead("hplm", 92, list_count_) + lists_),
            Section(4, "file://localhost/C:/Music/")};
}

std::string ItlFile::Bytes(const std::vector<std::string> &sections) const {
    std::string body;
    for (const std::string &section : sections)
        body += section;
    return BytesAround(form_.compressed ? ItlDeflated(body) : body,
                       static_cast<std::uint32_t>(sections.size()));
}

std::string ItlFile::BytesAround(const std::string &stored_body, std::uint32_t section_count) const {
    std::string head(form_.envelope_header, '\0');
    const auto put = [&head](std::size_t offset, const std::string &field) {
        head.replace(offset, field.size(), field);
    };
    put(0x00, "hdfm" + BigEndian(form_.envelope_header));
    put(0x08, BigEndian(static_cast<std::uint32_t>(head.size() + stored_body.size())));
    put(0x10, static_cast<char>(form_.version.size()) + form_.version);
    put(0x30, BigEndian(section_count));
    put(0x34, BigEndian(static_cast<std::uint32_t>(persistent_id >> 32)) +
                  BigEndian(static_cast<std::uint32_t>(persistent_id)));
    put(0x41, BigEndian(form_.encryption, 1));
    put(0x43, BigEndian(form_.compressed ? 1 : 0, 1));
    put(0x52, BigEndian(form_.little_endian ? 1 : 0, 1));
    put(0x5C, BigEndian(form_.first_part));
    std::string body = stored_body;
    if (form_.encryption == 1) Encrypt(body, body.size());
    if (form_.encryption == 2) Encrypt(body, std::min<std::size_t>(body.size(), form_.first_part));
    return head + body;
}

std::string ItlDeflated(const std::string &body) {
    std::string stream(compressBound(static_cast<uLong>(body.size())), '\0');
    uLongf size = stream.size();
    if (compress2(reinterpret_cast<Bytef *>(stream.data()), &size,
                  reinterpret_cast<const Bytef *>(body.data()), static_cast<uLong>(body.size()),
                  Z_BEST_SPEED) != Z_OK) {
        throw std::runtime_error("the body cannot be compressed");
    }
    stream.resize(size);
    return stream;
}
