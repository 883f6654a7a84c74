#include <bit>
#include <unordered_map>

#include "platform/core_foundation/binary_format.h"
#include "platform/core_foundation/tree_walk.h"
#include "platform/core_foundation/utf_text.h"
#include "platform/core_foundation/writer.h"

namespace core_foundation {

namespace {

// The bytes that hold every number up to `largest`.
size_t SizeOf(uint64_t largest) {
    size_t size = 1;
    while (size < kMaxNumberSize && largest >> (8 * size) != 0)
        ++size;
    return size;
}

void AppendNumber(uint64_t number, size_t size, std::string &out) {
    while (size-- > 0)
        out += static_cast<char>(number >> (8 * size) & 0xFF);
}

// An integer object: 1, 2, 4 or 8 bytes. The shorter ones have no sign.
void AppendInteger(int64_t integer, std::string &out) {
    const size_t size = integer < 0 ? kMaxNumberSize : std::bit_ceil(SizeOf(static_cast<uint64_t>(integer)));
    out += static_cast<char>(kIntegerMarker | std::countr_zero(size));
    AppendNumber(static_cast<uint64_t>(integer), size, out);
}

void AppendMarker(BinaryMarker type, size_t count, std::string &out) {
    if (count < kCountFollows) {
        out += static_cast<char>(type | count);
        return;
    }
    out += static_cast<char>(type | kCountFollows);
    AppendInteger(static_cast<int64_t>(count), out);
}

// Bytes that are not UTF-8 have no place in this form; each becomes the replacement character.
void AppendString(const Value &string, std::string &out) {
    if (Has(string, kAscii)) {
        AppendMarker(kAsciiMarker, string.length, out);
        out += TextOf(string);
        return;
    }
    const std::string units = Utf8ToUtf16BigEndian(TextOf(string));
    AppendMarker(kUtf16Marker, units.size() / 2, out);
    out += units;
}

void AppendReal(BinaryMarker marker, double real, std::string &out) {
    out += static_cast<char>(marker);
    AppendNumber(std::bit_cast<uint64_t>(real), 8, out);
}

void AppendWide(const WideInteger &wide, std::string &out) {
    out += static_cast<char>(kIntegerMarker | 4);
    AppendNumber(static_cast<uint64_t>(wide.high), 8, out);
    AppendNumber(wide.low, 8, out);
}

void AppendNumberObject(const Value &number, std::string &out) {
    if (Has(number, kReal)) {
        AppendReal(static_cast<BinaryMarker>(kRealMarker | 3), number.real, out);
    } else if (Has(number, kWide)) {
        AppendWide(*number.wide, out);
    } else {
        AppendInteger(number.integer, out);
    }
}

void AppendUid(const Value &uid, std::string &out) {
    const size_t size = SizeOf(static_cast<uint64_t>(uid.integer));
    out += static_cast<char>(kUidMarker | (size - 1));
    AppendNumber(static_cast<uint64_t>(uid.integer), size, out);
}

bool AppendScalar(const Value &value, std::string &out) {
    switch (value.type) {
        case ValueType::kString:
            AppendString(value, out);
            return true;
        case ValueType::kNumber:
            AppendNumberObject(value, out);
            return true;
        case ValueType::kBoolean:
            out += static_cast<char>(value.integer != 0 ? kTrueMarker : kFalseMarker);
            return true;
        case ValueType::kDate:
            AppendReal(kDateMarker, value.real, out);
            return true;
        case ValueType::kData:
            AppendMarker(kDataMarker, value.length, out);
            out.append(reinterpret_cast<const char *>(value.bytes), value.length);
            return true;
        case ValueType::kUid:
            AppendUid(value, out);
            return true;
        default:
            return false;
    }
}

class BinaryWriter {
  public:
    explicit BinaryWriter(std::string &out) : out_(out) {}

    bool Write(const Value &root) {
        if (!NumberObjects(root)) return false;
        out_ += "bplist00";
        const size_t reference_size = SizeOf(objects_.size() - 1);
        std::vector<uint64_t> offsets;
        for (const Object &object : objects_) {
            offsets.push_back(out_.size());
            if (!AppendObject(object, reference_size)) return false;
        }
        AppendOffsets(offsets, reference_size);
        return true;
    }

  private:
    struct Object {
        const Value *value;
        std::vector<uint32_t> children;  // key, value, key, value and so on for a dictionary
    };

    bool NumberObjects(const Value &root) {
        std::vector<uint32_t> open;
        TreeWalk walk(root);
        while (walk.Next()) {
            if (walk.event() == TreeWalk::Event::kClose) {
                open.pop_back();
                continue;
            }
            const uint32_t number = NumberOf(walk.value());
            if (!open.empty()) objects_[open.back()].children.push_back(number);
            if (walk.event() == TreeWalk::Event::kOpen) open.push_back(number);
        }
        return !walk.is_too_deep();
    }

    // Equal strings and equal short integers are one object: a library repeats its keys in each track.
    uint32_t NumberOf(const Value &value) {
        const auto next = static_cast<uint32_t>(objects_.size());
        uint32_t number = next;
        if (value.type == ValueType::kString) {
            number = strings_.try_emplace(TextOf(value), next).first->second;
        } else if (value.type == ValueType::kNumber && !Has(value, kReal) && !Has(value, kWide)) {
            number = integers_.try_emplace(value.integer, next).first->second;
        }
        if (number == next) objects_.push_back({&value, {}});
        return number;
    }

    bool AppendObject(const Object &object, size_t reference_size) {
        if (!IsContainer(*object.value)) return AppendScalar(*object.value, out_);
        AppendContainer(object, reference_size);
        return true;
    }

    void AppendContainer(const Object &object, size_t reference_size) {
        const bool is_dictionary = object.value->type == ValueType::kDictionary;
        const size_t step = is_dictionary ? 2 : 1;
        AppendMarker(is_dictionary ? kDictionaryMarker : kArrayMarker, object.children.size() / step, out_);
        for (size_t first = 0; first < step; ++first) {
            for (size_t i = first; i < object.children.size(); i += step) {
                AppendNumber(object.children[i], reference_size, out_);
            }
        }
    }

    void AppendOffsets(const std::vector<uint64_t> &offsets, size_t reference_size) {
        const size_t place = out_.size();
        const size_t offset_size = SizeOf(place);
        for (const uint64_t offset : offsets)
            AppendNumber(offset, offset_size, out_);
        out_.append(6, '\0');
        AppendNumber(offset_size, 1, out_);
        AppendNumber(reference_size, 1, out_);
        AppendNumber(offsets.size(), 8, out_);
        AppendNumber(0, 8, out_);
        AppendNumber(place, 8, out_);
    }

    std::string &out_;
    std::vector<Object> objects_;
    std::unordered_map<std::string_view, uint32_t> strings_;
    std::unordered_map<int64_t, uint32_t> integers_;
};

}  // namespace

bool WriteBinary(const Value &root, std::string &out) {
    return BinaryWriter(out).Write(root);
}

}  // namespace core_foundation
