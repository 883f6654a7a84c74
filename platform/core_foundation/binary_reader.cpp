#include <algorithm>
#include <bit>
#include <vector>

#include "platform/core_foundation/binary_format.h"
#include "platform/core_foundation/reader.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_builder.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/limits.h"

namespace core_foundation {

namespace {

// An open object is inside itself when it is met again.
enum class State : uint8_t { kUnread, kOpen, kRead };

// An object of the file. There may be one for every few bytes of it, so their states stand in a row of their
// own.
struct Object {
    Value value;
    uint64_t tree_size = 0;  // as bytes of a tree that shares nothing
};

struct Trailer {
    size_t offset_size;
    size_t reference_size;
    uint64_t object_count;
    uint64_t root;
    uint64_t offsets;
};

// A container whose content is being read.
struct OpenContainer {
    size_t object;
    bool is_dictionary;
    size_t references;  // its place in the file
    size_t count;       // of items or pairs
    size_t next = 0;
};

struct Marker {
    uint8_t type;
    uint8_t size;
    size_t content;  // the place behind the marker
};

class BinaryReader {
  public:
    BinaryReader(std::string_view file, Document &document) : file_(file), builder_(document) {}

    std::optional<Value> Read() {
        if (!ReadTrailer() || !ReadObject(trailer_.root)) return std::nullopt;
        while (!open_.empty()) {
            if (!ReadNextChild()) return std::nullopt;
        }
        return objects_[trailer_.root].value;
    }

  private:
    // Bytes [place, place + size) exist in front of the trailer.
    bool IsInside(uint64_t place, uint64_t size) const {
        const uint64_t end = file_.size() - kTrailerSize;
        return place <= end && size <= end - place;
    }

    // The caller has checked that the bytes are there.
    uint64_t NumberAt(size_t place, size_t size) const {
        uint64_t number = 0;
        for (size_t i = 0; i < size; ++i)
            number = number << 8 | static_cast<uint8_t>(file_[place + i]);
        return number;
    }

    bool ReadTrailer() {
        if (file_.size() < kHeaderSize + kTrailerSize) return false;
        const size_t place = file_.size() - kTrailerSize;
        trailer_ = {NumberAt(place + 6, 1), NumberAt(place + 7, 1), NumberAt(place + 8, 8),
                    NumberAt(place + 16, 8), NumberAt(place + 24, 8)};
        const auto is_size = [](size_t size) { return size >= 1 && size <= kMaxNumberSize; };
        if (!is_size(trailer_.offset_size) || !is_size(trailer_.reference_size)) return false;
        if (trailer_.object_count > file_.size() || trailer_.root >= trailer_.object_count) return false;
        if (!IsInside(trailer_.offsets, trailer_.object_count * trailer_.offset_size)) return false;
        objects_.resize(trailer_.object_count);
        states_.resize(trailer_.object_count);
        bytes_left_ = file_.size();
        return true;
    }

    // Takes the bytes of one object out of what the file has. Objects do not overlap, so together they are no
    // larger than the file; without this check a file could name the same bytes as the content of all its
    // objects.
    bool Charge(uint64_t place, uint64_t size) {
        if (!IsInside(place, size) || size > bytes_left_) return false;
        bytes_left_ -= size;
        return true;
    }

    std::optional<size_t> ReferenceAt(size_t place) const {
        const uint64_t reference = NumberAt(place, trailer_.reference_size);
        if (reference >= objects_.size()) return std::nullopt;
        return reference;
    }

    std::optional<Marker> MarkerOf(size_t object) {
        const uint64_t place =
            NumberAt(trailer_.offsets + object * trailer_.offset_size, trailer_.offset_size);
        if (place < kHeaderSize || !Charge(place, 1)) return std::nullopt;
        const auto byte = static_cast<uint8_t>(file_[place]);
        return Marker{static_cast<uint8_t>(byte & 0xF0), static_cast<uint8_t>(byte & 0x0F), place + 1};
    }

    // The count of a text, data or container; moves the content behind a count of its own.
    std::optional<size_t> CountOf(Marker &marker) {
        if (marker.size != kCountFollows) return marker.size;
        if (!Charge(marker.content, 1)) return std::nullopt;
        const auto byte = static_cast<uint8_t>(file_[marker.content++]);
        const size_t size = size_t{1} << (byte & 0x0F);
        if ((byte & 0xF0) != kIntegerMarker || size > kMaxNumberSize || !Charge(marker.content, size)) {
            return std::nullopt;
        }
        const uint64_t count = NumberAt(marker.content, size);
        marker.content += size;
        if (count > file_.size()) return std::nullopt;
        return count;
    }

    // Reads a scalar, or begins a container. False for damage, and for an object inside itself.
    bool ReadObject(size_t index) {
        if (states_[index] != State::kUnread) return states_[index] == State::kRead;
        std::optional<Marker> marker = MarkerOf(index);
        if (!marker) return false;
        if (marker->type >= kArrayMarker) return BeginContainer(index, *marker);
        const std::optional<Value> value = ReadScalar(*marker);
        if (!value) return false;
        const bool has_length = value->type == ValueType::kString || value->type == ValueType::kData;
        objects_[index] = {*value, sizeof(Value) + (has_length ? value->length : 0)};
        states_[index] = State::kRead;
        return true;
    }

    std::optional<Value> ReadScalar(Marker marker) {
        switch (marker.type) {
            case 0:
                return ReadBoolean(marker.size);
            case kIntegerMarker:
                return ReadInteger(marker);
            case kRealMarker:
                return ReadReal(marker);
            case kDateMarker & 0xF0:
                if (marker.size != (kDateMarker & 0x0F) || !Charge(marker.content, 8)) return std::nullopt;
                return MakeDate(std::bit_cast<double>(NumberAt(marker.content, 8)));
            case kUidMarker:
                if (marker.size >= kMaxNumberSize || !Charge(marker.content, marker.size + size_t{1})) {
                    return std::nullopt;
                }
                return MakeUid(static_cast<int64_t>(NumberAt(marker.content, marker.size + size_t{1})));
            default:
                return ReadBytes(marker);
        }
    }

    static std::optional<Value> ReadBoolean(uint8_t size) {
        if (size != kTrueMarker && size != kFalseMarker) return std::nullopt;
        return MakeBoolean(size == kTrueMarker);
    }

    std::optional<Value> ReadInteger(const Marker &marker) {
        const size_t size = size_t{1} << marker.size;
        if (size > 2 * kMaxNumberSize || !Charge(marker.content, size)) return std::nullopt;
        if (size <= kMaxNumberSize) return MakeInteger(static_cast<int64_t>(NumberAt(marker.content, size)));
        return MakeWideInteger(static_cast<int64_t>(NumberAt(marker.content, 8)),
                               NumberAt(marker.content + 8, 8), builder_.document());
    }

    std::optional<Value> ReadReal(const Marker &marker) {
        const size_t size = size_t{1} << marker.size;
        if ((size != 4 && size != 8) || !Charge(marker.content, size)) return std::nullopt;
        const uint64_t bits = NumberAt(marker.content, size);
        return MakeReal(size == 8 ? std::bit_cast<double>(bits)
                                  : double{std::bit_cast<float>(static_cast<uint32_t>(bits))});
    }

    std::optional<Value> ReadBytes(Marker marker) {
        const std::optional<size_t> count = CountOf(marker);
        const size_t unit_size = marker.type == kUtf16Marker ? 2 : 1;
        if (!count || !Charge(marker.content, *count * unit_size)) return std::nullopt;
        const std::string_view bytes = file_.substr(marker.content, *count * unit_size);
        switch (marker.type) {
            case kDataMarker: {
                auto *copy = const_cast<char *>(builder_.document().CopyText(bytes));
                return MakeData(reinterpret_cast<uint8_t *>(copy), bytes.size());
            }
            case kAsciiMarker:
            case kUtf8Marker:
                return MakeString(builder_.document().CopyText(bytes), bytes.size(), IsAscii(bytes));
            case kUtf16Marker:
                return ReadUtf16(bytes);
            default:
                return std::nullopt;
        }
    }

    std::optional<Value> ReadUtf16(std::string_view bytes) {
        converted_.resize(bytes.size() / 2 * kMaxUtf8PerUnit);
        const char *end = Utf16ToUtf8(bytes.data(), bytes.size() / 2, true, converted_.data());
        const std::string_view text(converted_.data(), static_cast<size_t>(end - converted_.data()));
        if (limits::kListBytes.IsPassedBy(text.size())) return std::nullopt;
        return MakeString(builder_.document().CopyText(text), text.size(), IsAscii(text));
    }

    bool BeginContainer(size_t index, Marker marker) {
        const bool is_dictionary = marker.type == kDictionaryMarker;
        if (marker.type > kDictionaryMarker) return false;
        const std::optional<size_t> count = CountOf(marker);
        const size_t references = is_dictionary ? 2 : 1;
        if (!count || !Charge(marker.content, *count * references * trailer_.reference_size)) return false;
        if (!builder_.Open(is_dictionary ? ValueType::kDictionary : ValueType::kArray)) return false;
        states_[index] = State::kOpen;
        objects_[index].tree_size = sizeof(Value);
        open_.push_back({index, is_dictionary, marker.content, *count});
        return true;
    }

    // Reads the next item or pair of the innermost container, or closes it. An item that is itself a
    // container is only begun; it comes up here again when it has been closed.
    bool ReadNextChild() {
        OpenContainer &container = open_.back();
        if (container.next == container.count) return CloseContainer();
        const size_t item = container.is_dictionary ? container.count + container.next : container.next;
        if (container.is_dictionary && !builder_.AwaitsValue() && !ReadKey(container)) return false;
        const auto child = ReferenceAt(container.references + item * trailer_.reference_size);
        if (!child || !ReadObject(*child)) return false;
        if (states_[*child] == State::kOpen) return true;
        ++container.next;
        builder_.Push(objects_[*child].value);
        return AddTreeSize(container.object, objects_[*child].tree_size);
    }

    bool ReadKey(const OpenContainer &container) {
        const auto key = ReferenceAt(container.references + container.next * trailer_.reference_size);
        if (!key || !ReadObject(*key)) return false;
        const Object &object = objects_[*key];
        if (states_[*key] != State::kRead || object.value.type != ValueType::kString) return false;
        builder_.PushKey(TextOf(object.value), Has(object.value, kAscii));
        return AddTreeSize(container.object, object.tree_size);
    }

    bool AddTreeSize(size_t container, uint64_t size) {
        uint64_t &total = objects_[container].tree_size;
        total += size;
        return total <= limits::kListFreeBytes || !limits::kListExpansion.IsPassedBy(total / file_.size());
    }

    bool CloseContainer() {
        const size_t object = open_.back().object;
        objects_[object].value = builder_.Close();
        states_[object] = State::kRead;
        open_.pop_back();
        return true;
    }

    std::string_view file_;
    TreeBuilder builder_;
    Trailer trailer_ = {};
    std::vector<Object> objects_;
    std::vector<State> states_;  // of the objects
    std::vector<OpenContainer> open_;
    uint64_t bytes_left_ = 0;
    std::string converted_;
};

}  // namespace

std::optional<Value> ReadBinary(std::string_view bytes, Document &document) {
    return BinaryReader(bytes, document).Read();
}

}  // namespace core_foundation
