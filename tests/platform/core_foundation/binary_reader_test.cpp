#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/core_foundation/value.h"
#include "platform/limits.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

std::string BigEndian(uint64_t number, size_t size) {
    std::string bytes;
    while (size-- > 0)
        bytes += static_cast<char>(number >> (8 * size) & 0xFF);
    return bytes;
}

struct Layout {
    size_t offset_size = 2;
    size_t reference_size = 1;
    uint64_t root = 0;
};

// A file of these objects, laid out one behind the other.
std::string Binary(const std::vector<std::string> &objects, const Layout &layout = {}) {
    std::string file = "bplist00", offsets;
    for (const std::string &object : objects) {
        offsets += BigEndian(file.size(), layout.offset_size);
        file += object;
    }
    const size_t place = file.size();
    file += offsets + std::string(6, '\0') + BigEndian(layout.offset_size, 1) +
            BigEndian(layout.reference_size, 1);
    return file + BigEndian(objects.size(), 8) + BigEndian(layout.root, 8) + BigEndian(place, 8);
}

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

TEST(BinaryReader, ReadsEveryKindOfScalar) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {Bytes({0x08}), "F"},
        {Bytes({0x09}), "T"},
        {Bytes({0x10, 0xFF}), "i255"},
        {Bytes({0x11, 0xFF, 0xFE}), "i65534"},
        {Bytes({0x12}) + BigEndian(0xFFFFFFFF, 4), "i4294967295"},
        {Bytes({0x13}) + std::string(8, '\xFF'), "i-1"},
        {Bytes({0x14}) + std::string(16, '\xFF'), "i-1"},
        {Bytes({0x14}) + BigEndian(1, 8) + BigEndian(5, 8), "i18446744073709551621"},
        {Bytes({0x14}) + BigEndian(0, 8) + std::string(8, '\xFF'), "i18446744073709551615"},
        {Bytes({0x22, 0x3F, 0xC0, 0, 0}), "r3ff8000000000000"},
        {Bytes({0x23, 0x3F, 0xF8, 0, 0, 0, 0, 0, 0}), "r3ff8000000000000"},
        {Bytes({0x33, 0x3F, 0xF8, 0, 0, 0, 0, 0, 0}), "d1500"},
        {Bytes({0x42, 0x00, 0xFF}), "<00ff>"},
        {Bytes({0x53}) + "abc", "\"abc\""},
        {Bytes({0x5F, 0x10, 0x10}) + "0123456789abcdef", "\"0123456789abcdef\""},
        {Bytes({0x52, 0xC3, 0xA9}), "\"\\xc3\\xa9\""},
        {Bytes({0x62, 0x00, 0xE9, 0xDC, 0x00}), "\"\\xc3\\xa9\\xef\\xbf\\xbd\""},
        {Bytes({0x62, 0xD8, 0x35, 0xDD, 0x62}), "\"\\xf0\\x9d\\x95\\xa2\""},
        {Bytes({0x72, 0xC3, 0xA9}), "\"\\xc3\\xa9\""},
        {Bytes({0x81, 0x01, 0x02}), "u258"},
    };
    for (const auto &[object, description] : cases)
        EXPECT_EQ(DescribeBytes(Binary({object})), description);
}

TEST(BinaryReader, ReadsContainersWithNumbersOfEverySize) {
    for (size_t offset_size = 1; offset_size <= 8; ++offset_size) {
        for (size_t size = 1; size <= 8; ++size) {
            const auto reference = [&](uint64_t number) { return BigEndian(number, size); };
            const std::string dictionary =
                Bytes({0xD2}) + reference(1) + reference(2) + reference(3) + reference(4);
            const std::string array = Bytes({0xA2}) + reference(1) + reference(1);
            const std::string set = Bytes({0xC1}) + reference(1);
            EXPECT_EQ(
                DescribeBytes(Binary({dictionary, "\x51k", "\x51l", array, set}, {offset_size, size, 0})),
                R"({"k":["k","k"],"l":["k"]})");
        }
    }
    EXPECT_EQ(DescribeBytes(Binary({"\x51x", Bytes({0xA1, 0x00})}, {2, 1, 1})), "[\"x\"]");
    EXPECT_EQ(DescribeBytes(Binary({Bytes({0xD2, 1, 1, 2, 3}), "\x51k", Bytes({8}), Bytes({9})})),
              "{\"k\":T}");
}

TEST(BinaryReader, RefusesDamage) {
    const std::string whole = Binary({Bytes({0xA1, 0x01}), "\x51x"});
    ASSERT_EQ(DescribeBytes(whole), "[\"x\"]");
    for (size_t size = std::string_view("bplist0").size(); size < whole.size(); ++size) {
        EXPECT_EQ(DescribeBytes(whole.substr(0, size)), "null") << size;
    }
    const std::vector<std::pair<const char *, std::string>> damaged = {
        {"null_object", Binary({Bytes({0x00})})},
        {"unknown_marker", Binary({Bytes({0xE0})})},
        {"text_beyond_end", Binary({Bytes({0x5F, 0x11, 0xFF, 0xFF})})},
        {"huge_count", Binary({Bytes({0xAF, 0x13, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF})})},
        {"count_is_no_integer", Binary({Bytes({0x5F, 0x51, 0x01})})},
        {"integer_of_32_bytes", Binary({Bytes({0x15}) + std::string(32, '\0')})},
        {"real_of_2_bytes", Binary({Bytes({0x21, 0, 0})})},
        {"reference_beyond_objects", Binary({Bytes({0xA1, 0x02}), "\x51x"})},
        {"key_is_a_number", Binary({Bytes({0xD1, 1, 2}), Bytes({0x10, 1}), "\x51x"})},
        {"key_is_a_container", Binary({Bytes({0xD1, 1, 2}), Bytes({0xA0}), "\x51x"})},
        {"array_holds_itself", Binary({Bytes({0xA1, 0x00})})},
        {"cycle_of_two", Binary({Bytes({0xA1, 0x01}), Bytes({0xA1, 0x00})})},
        {"dictionary_is_its_key", Binary({Bytes({0xD1, 0x00, 0x01}), "\x51x"})},
        {"root_beyond_objects", Binary({"\x51x"}, {2, 1, 1})},
        {"offset_size_0", Binary({"\x51x"}, {0, 1, 0})},
        {"reference_size_9", Binary({"\x51x"}, {2, 9, 0})},
    };
    for (const auto &[fault, file] : damaged)
        EXPECT_EQ(DescribeBytes(file), "null") << fault;
}

TEST(BinaryReader, RefusesTooDeepNesting) {
    const auto nested = [](size_t depth) {
        std::vector<std::string> objects;
        for (size_t i = 1; i < depth; ++i)
            objects.push_back(Bytes({0xA1}) + BigEndian(i, 2));
        objects.push_back(Bytes({0xA0}));
        return Binary(objects, {2, 2, 0});
    };
    EXPECT_NE(DescribeBytes(nested(limits::kListDepth.value)), "null");
    EXPECT_EQ(DescribeBytes(nested(limits::kListDepth.value + 1)), "null");
}

// Sharing is allowed, but not to describe a tree out of proportion to the file.
TEST(BinaryReader, BoundsWhatSharingMultiplies) {
    const auto doubling = [](int levels) {
        std::vector<std::string> objects;
        for (int i = 1; i <= levels; ++i)
            objects.push_back(Bytes({0xA2, i, i}));
        objects.push_back("\x51x");
        return Binary(objects);
    };
    EXPECT_EQ(DescribeBytes(doubling(2)), R"([["x","x"],["x","x"]])");
    EXPECT_NE(ReadBytes(doubling(10)), nullptr);
    EXPECT_EQ(ReadBytes(doubling(60)), nullptr) << "billion_laughs";
}

// All objects name the same bytes as their content.
TEST(BinaryReader, RefusesOverlappingObjects) {
    constexpr size_t kObjects = 200;
    std::string references;
    for (size_t i = 0; i < kObjects; ++i)
        references += BigEndian(kObjects - 1, 1);
    std::string file = "bplist00" + Bytes({0xAF, 0x10, static_cast<int>(kObjects)}) + references + "\x51x";
    const size_t place = file.size();
    for (size_t i = 0; i + 1 < kObjects; ++i)
        file += BigEndian(8, 2);
    file += BigEndian(place - 2, 2) + std::string(6, '\0') + Bytes({2, 1}) + BigEndian(kObjects, 8) +
            BigEndian(0, 8) + BigEndian(place, 8);
    EXPECT_NE(ReadBytes(file), nullptr) << "only one of them is used";
    // Now object i refers to object i + 1 as well: each counts all the references again.
    for (size_t i = 0; i < kObjects; ++i)
        file[11 + i] = static_cast<char>(i);
    EXPECT_EQ(ReadBytes(file), nullptr) << "excessive_alloc";
}

}  // namespace
