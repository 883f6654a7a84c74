#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <string_view>

#include "tests/support/byte_text.h"
#include "tests/support/media_files.h"
#include "tests/support/preference_file.h"

namespace {

// One frame of 1152 silent samples at 32 kbit/s and 44100 Hz: header, side information of zeros (no coded
// data), filler.
//   FF FB     sync, MPEG-1, Layer III, no checksum
//   10        32 kbit/s, 44100 Hz, no padding
//   C4        mono, original
std::string SilentMp3Frame() {
    constexpr std::size_t kFrameLength = 144 * 32000 / 44100;
    return std::string("\xFF\xFB\x10\xC4", 4) + Zeros(kFrameLength - 4);
}

// ID3v2.3 frame: id (4), size (4), flags (2), body.
std::string Id3Frame(std::string_view id, const std::string &body) {
    return std::string(id) + BigEndian(static_cast<std::uint32_t>(body.size())) + Zeros(2) + body;
}

// Encoding 1 (UTF-16 with mark), text.
std::string Id3TextFrame(std::string_view id, const std::string &utf8) {
    return utf8.empty() ? std::string() : Id3Frame(id, std::string("\x01\xFF\xFE", 3) + Utf16Bytes(utf8));
}

// Encoding 0 (Latin-1), type of the data with its end mark, kind 3 (front cover), an empty description.
std::string Id3PictureFrame(const std::string &png) {
    return png.empty() ? std::string() : Id3Frame("APIC", std::string("\0image/png\0\x03\0", 13) + png);
}

std::string NumberText(int number) {
    return number == 0 ? std::string() : std::to_string(number);
}

// Header: "ID3", version 3.0, flags, size in four groups of seven bits.
std::string Id3v2Tag(const MediaTags &tags) {
    const std::string frames = Id3TextFrame("TIT2", tags.title) + Id3TextFrame("TPE1", tags.artist) +
                               Id3TextFrame("TALB", tags.album) + Id3TextFrame("TCON", tags.genre) +
                               Id3TextFrame("TYER", NumberText(tags.year)) +
                               Id3TextFrame("TRCK", NumberText(tags.track)) + Id3PictureFrame(tags.picture);
    const auto size = static_cast<std::uint32_t>(frames.size());
    std::string header("ID3\x03\x00\x00", 6);
    for (int shift = 21; shift >= 0; shift -= 7)
        header += static_cast<char>(size >> shift & 0x7FU);
    return header + frames;
}

// Latin-1 in fixed fields; letters beyond ASCII become "?", as in tags of old programs.
std::string Id3v1Field(std::string_view utf8, std::size_t width) {
    std::string field;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) field += c;
        if (byte >= 0xC0) field += '?';
    }
    field.resize(width, '\0');
    return field;
}

// "TAG", title (30), artist (30), album (30), year (4), comment (28), 0, track, genre (255: none).
std::string Id3v1Tag(const MediaTags &tags) {
    return "TAG" + Id3v1Field(tags.title, 30) + Id3v1Field(tags.artist, 30) + Id3v1Field(tags.album, 30) +
           Id3v1Field(NumberText(tags.year), 4) + Zeros(29) + static_cast<char>(tags.track) + '\xFF';
}

}  // namespace

std::string WavFile(int seconds) {
    constexpr int kRate = 22050;
    std::string samples;
    for (int i = 0; i < seconds * kRate; ++i) {
        const double phase = 2 * std::numbers::pi * 440.0 * i / kRate;
        samples += LittleEndian(static_cast<std::uint32_t>(std::lround(std::sin(phase) * 8000)), 2);
    }
    const auto size = static_cast<std::uint32_t>(samples.size());
    // "fmt ": size, PCM, one channel, rate, bytes a second, bytes a sample, bits a sample.
    const std::string format = "fmt " + LittleEndian(16) + LittleEndian(1, 2) + LittleEndian(1, 2) +
                               LittleEndian(kRate) + LittleEndian(kRate * 2) + LittleEndian(2, 2) +
                               LittleEndian(16, 2);
    return "RIFF" + LittleEndian(size + 36) + "WAVE" + format + "data" + LittleEndian(size) + samples;
}

std::string Mp3File(int seconds, const MediaTags &tags) {
    const int frames = (seconds * 44100 + 1151) / 1152;
    std::string file = Id3v2Tag(tags);
    for (int i = 0; i < frames; ++i)
        file += SilentMp3Frame();
    return file + Id3v1Tag(tags);
}

std::string PdfFile(const std::string &line) {
    const std::string page_text = "BT /F1 18 Tf 40 100 Td (" + line + ") Tj ET\n";
    const std::string objects[] = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Contents 4 0 R /Resources 6 0 R >>",
        "<< /Length " + std::to_string(page_text.size()) + " >>\nstream\n" + page_text + "endstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
        "<< /Font << /F1 5 0 R >> >>",
    };
    std::string file = "%PDF-1.4\n";
    std::string table = "0000000000 65535 f \n";
    int number = 0;
    for (const std::string &object : objects) {
        const std::string offset = std::to_string(file.size());
        table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        file += std::to_string(++number) + " 0 obj\n" + object + "\nendobj\n";
    }
    const std::string table_start = std::to_string(file.size());
    return file + "xref\n0 7\n" + table + "trailer\n<< /Size 7 /Root 1 0 R >>\nstartxref\n" + table_start +
           "\n%%EOF\n";
}
