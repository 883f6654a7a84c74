#include "tests/support/h264_picture.h"

#include <bit>

#include "tests/support/byte_text.h"

namespace {

constexpr int kBlockSize = 16;
constexpr std::size_t kBlockSamples = 256;  // luminance; a quarter as many for each of two colours
constexpr int kBlocksAcross = kPictureWidth / kBlockSize;
constexpr int kBlocksDown = kPictureHeight / kBlockSize;

// Bits from the most significant one on, in the codes of H.264.
class BitWriter {
  public:
    void Bits(std::uint32_t value, int count) {
        for (int i = count - 1; i >= 0; --i)
            Bit((value >> i & 1U) != 0);
    }
    // Exponential Golomb code: as many zeros as the number plus one has bits after its first, then that
    // number.
    void Golomb(std::uint32_t value) {
        const auto width = static_cast<int>(std::bit_width(value + 1));
        Bits(0, width - 1);
        Bits(value + 1, width);
    }
    void AlignWithZeros() {
        while (used_ != 0)
            Bit(false);
    }
    // Only on a byte boundary.
    void Bytes(const std::string &bytes) { bytes_ += bytes; }
    // A unit ends with a one and zeros up to the byte boundary.
    std::string End() {
        Bit(true);
        AlignWithZeros();
        return bytes_;
    }

  private:
    void Bit(bool one) {
        if (used_ == 0) bytes_ += '\0';
        if (one)
            bytes_.back() = static_cast<char>(static_cast<unsigned char>(bytes_.back()) | 0x80U >> used_);
        used_ = (used_ + 1) % 8;
    }

    std::string bytes_;
    int used_ = 0;
};

// Sequence parameters: baseline profile, level 1.0, output order is coding order, size in blocks.
std::string SequenceUnit() {
    BitWriter unit;
    unit.Bits(0x67, 8);  // unit type 7, most important
    unit.Bits(66, 8);    // profile
    unit.Bits(0xC0, 8);  // constraint flags
    unit.Bits(10, 8);    // level
    unit.Golomb(0);      // id of this set
    unit.Golomb(0);      // picture numbers of 4 bits
    unit.Golomb(2);      // order type
    unit.Golomb(0);      // reference pictures
    unit.Bits(0, 1);     // no gaps in picture numbers
    unit.Golomb(kBlocksAcross - 1);
    unit.Golomb(kBlocksDown - 1);
    unit.Bits(0b1100, 4);  // frames only, direct inference, no cropping, no usage information
    return unit.End();
}

std::string PictureParameterUnit() {
    BitWriter unit;
    unit.Bits(0x68, 8);  // unit type 8
    unit.Golomb(0);      // id of this set
    unit.Golomb(0);      // id of the sequence set
    unit.Bits(0, 2);     // variable-length coding, no field order
    unit.Golomb(0);      // one slice group
    unit.Golomb(0);      // reference index counts
    unit.Golomb(0);
    unit.Bits(0, 3);  // no weighting
    unit.Golomb(0);   // quantiser and chroma offsets
    unit.Golomb(0);
    unit.Golomb(0);
    unit.Bits(0, 3);  // no deblocking control, no constrained prediction, no redundant pictures
    return unit.End();
}

// Zeros inside a unit would need an escape; samples from 1 on make none necessary.
std::string PictureUnit(std::uint8_t grey, int index) {
    constexpr std::uint32_t kIntraSlice = 7;
    constexpr std::uint32_t kPlainSamples = 25;
    constexpr char kNoColour = '\x80';
    BitWriter unit;
    unit.Bits(0x65, 8);  // unit type 5: a picture that stands alone
    unit.Golomb(0);      // first block
    unit.Golomb(kIntraSlice);
    unit.Golomb(0);                                       // id of the picture set
    unit.Bits(0, 4);                                      // picture number
    unit.Golomb(static_cast<std::uint32_t>(index) & 1U);  // tells neighbours apart
    unit.Bits(0, 2);                                      // plain reference marking
    unit.Golomb(0);                                       // quantiser difference
    for (int block = 0; block < kBlocksAcross * kBlocksDown; ++block) {
        unit.Golomb(kPlainSamples);
        unit.AlignWithZeros();
        unit.Bytes(std::string(kBlockSamples, static_cast<char>(grey)));
        unit.Bytes(std::string(kBlockSamples / 2, kNoColour));
    }
    return unit.End();
}

std::string WithLength(const std::string &unit, int length_bytes) {
    return BigEndian(static_cast<std::uint32_t>(unit.size()), length_bytes) + unit;
}

}  // namespace

// Version, profile, constraints, level, length of four bytes, one sequence set, one picture set.
std::string H264Configuration() {
    return std::string("\x01\x42\xC0\x0A\xFF\xE1", 6) + WithLength(SequenceUnit(), 2) + '\x01' +
           WithLength(PictureParameterUnit(), 2);
}

std::string H264Picture(std::uint8_t grey, int index) {
    return WithLength(PictureUnit(grey, index), 4);
}
