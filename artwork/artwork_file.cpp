// An artwork file is a header and a row of boxes. Numbers are big-endian, 32 bits.
//
//   header   0  length of the header, where the first box begins
//            4  "itch"
//   box      0  length of the box
//            4  type, "item" for a picture
//            8  where the picture begins, behind a tag "data", up to the end of the box
//           48  format of the picture
//           56  width, height
//           76  width and height for display

#include "artwork/artwork_file.h"

#include <array>
#include <string_view>

#include "driver/limit_log.h"
#include "platform/limits.h"
#include "platform/windows/file_handle.h"

namespace {

constexpr size_t kHeaderSize = 28;
constexpr size_t kBoxHeadSize = 84;
constexpr size_t kTagSize = 4;

struct Format {
    std::string_view tag;
    const char *type;
};
// The order of the letters in the two last tags is not that of the bytes in the picture.
constexpr std::array kFormats = {
    Format{"PNGf", "png"},
    Format{{"\x0D\0\0\0", kTagSize}, "jpg"},
    Format{"ARGb", "bgra"},
    Format{"bGRA", "argb"},
};

template <size_t Size>
class Record {
  public:
    // False if the file ends before.
    bool Read(FILE *file) { return std::fread(bytes_.data(), 1, Size, file) == Size; }

    std::string_view Tag(size_t offset) const { return {bytes_.data() + offset, kTagSize}; }
    uint32_t Number(size_t offset) const {
        uint32_t number = 0;
        for (size_t i = 0; i < kTagSize; ++i)
            number = (number << 8) | static_cast<unsigned char>(bytes_[offset + i]);
        return number;
    }
    int32_t Signed(size_t offset) const { return static_cast<int32_t>(Number(offset)); }

  private:
    std::array<char, Size> bytes_ = {};
};
using BoxHead = Record<kBoxHeadSize>;

const char *TypeOfFormat(std::string_view tag) {
    for (const Format &format : kFormats) {
        if (format.tag == tag) return format.type;
    }
    return nullptr;
}

bool HasDataTag(FILE *file, int64_t position) {
    Record<kTagSize> tag;
    return _fseeki64(file, position, SEEK_SET) == 0 && tag.Read(file) && tag.Tag(0) == "data";
}

// Empty for a picture of no known format. The box begins at `start` and is not shorter than its data offset.
std::optional<ArtworkImage> ReadImage(FILE *file, int64_t start, const BoxHead &head) {
    const int64_t data = start + head.Number(8);
    const char *type = TypeOfFormat(head.Tag(48));
    if (type == nullptr || !HasDataTag(file, data - static_cast<int64_t>(kTagSize))) return std::nullopt;
    return ArtworkImage{type,
                        head.Signed(56),
                        head.Signed(60),
                        head.Signed(76),
                        head.Signed(80),
                        static_cast<int32_t>(head.Number(0) - head.Number(8)),
                        data};
}

// Each box must lie behind the one before: lengths that lead backwards, or nowhere, end the walk.
std::vector<ArtworkImage> ReadBoxes(FILE *file, int64_t start) {
    std::vector<ArtworkImage> images;
    for (uint64_t boxes = 1;; ++boxes) {
        BoxHead head;
        if (_fseeki64(file, start, SEEK_SET) != 0 || !head.Read(file)) break;
        if (limits::kArtworkBoxes.IsPassedBy(boxes)) break;
        const uint32_t length = head.Number(0);
        const bool is_image = head.Tag(4) == "item";
        if (length == 0 || (is_image && length < head.Number(8))) break;
        const auto image = is_image ? ReadImage(file, start, head) : std::nullopt;
        if (image) images.push_back(*image);
        start += length;
    }
    return images;
}

}  // namespace

std::optional<std::vector<ArtworkImage>> ReadArtworkFile(const std::string &path) {
    const LimitLog limit_log(path);
    const FileHandle file(path, L"rb");
    Record<kHeaderSize> header;
    if (!file || !header.Read(file.get()) || header.Tag(4) != "itch") return std::nullopt;
    return ReadBoxes(file.get(), header.Number(0));
}
