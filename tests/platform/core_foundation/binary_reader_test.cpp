#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/limits.h"
#include "tests/platform/core_foundation/list_text.h"

namespace {

std::string BigEndian(uint64_t number, size_t size) {
    std::string bytes;
    while (size-- > 0)
        bytes += static_cast<char>(number >> (8 * size) & 0xFF);
    return bytes;
}

// A file of these objects, laid out one behind the other.
std::string Binary(const std::vector<std::string> &objects, size_t offset_size = 2, size_t reference_size = 1,
                   uint64_t root = 0) {
    std::string file = "bplist00", offsets;
    for (const std::string &object : objects) {
        offsets += BigEndian(file.size(), offset_size);
        file += object;
    }
    const size_t place = file.size();
    file += offsets + std::string(6, '\0') + BigEndian(offset_size, 1) + BigEndian(reference_size, 1);
    return file + BigEndian(objects.size(), 8) + BigEndian(root, 8) + BigEndian(place, 8);
}

// Arrays, each with the next one as all of its items, around a text.
std::string Chain(size_t levels, size_t items) {
    std::vector<std::string> objects;
    for (size_t i = 1; i <= levels; ++i)
        objects.push_back(static_cast<char>(0xA0 + items) + Repeat(BigEndian(i, 2), items));
    objects.push_back("\x51x");
    return Binary(objects, 2, 2);
}

using std::string_literals::operator""s;

TEST(BinaryReader, ReadsEveryKindOfScalar) {
    const std::pair<std::string, const char *> cases[] = {
        {"\x08", "F"},
        {"\x09", "T"},
        {"\x10\xFF", "i255"},
        {"\x11\xFF\xFE", "i65534"},
        {"\x12\xFF\xFF\xFF\xFF", "i4294967295"},
        {"\x13" + std::string(8, '\xFF'), "i-1"},
        {"\x14" + BigEndian(1, 8) + BigEndian(5, 8), "i18446744073709551621"},
        {"\x14" + BigEndian(0, 8) + std::string(8, '\xFF'), "i18446744073709551615"},
        {"\x22\x3F\xC0\0\0"s, "r3ff8000000000000"},
        {"\x23\x3F\xF8\0\0\0\0\0\0"s, "r3ff8000000000000"},
        {"\x33\x3F\xF8\0\0\0\0\0\0"s, "d1500"},
        {"\x42\x00\xFF"s, "<00ff>"},
        {"\x5F\x10\x10 123456789abcdef", "\" 123456789abcdef\""},
        {"\x52\xC3\xA9", "\"\\xc3\\xa9\""},
        {"\x65\x00\xE9\xDC\x00\xD8\x35\xDD\x62\xD8\x00"s,
         "\"\\xc3\\xa9\\xef\\xbf\\xbd\\xf0\\x9d\\x95\\xa2\\xef\\xbf\\xbd\""},
        {"\x72\xC3\xA9", "\"\\xc3\\xa9\""},
        {"\x81\x01\x02", "u258"}};
    for (const auto &[object, description] : cases)
        EXPECT_EQ(DescribeBytes(Binary({object})), description);
}

TEST(BinaryReader, ReadsContainersWithNumbersOfEverySize) {
    for (size_t offset_size = 1; offset_size <= 8; ++offset_size) {
        for (size_t size = 1; size <= 8; ++size) {
            const auto reference = [&](uint64_t number) { return BigEndian(number, size); };
            const std::string dictionary = "\xD2" + reference(1) + reference(2) + reference(3) + reference(4);
            const std::string array = "\xA2" + reference(1) + reference(1);
            const std::vector<std::string> objects = {dictionary, "\x51k", "\x51l", array,
                                                      "\xC1" + reference(1)};
            EXPECT_EQ(DescribeBytes(Binary(objects, offset_size, size)), R"({"k":["k","k"],"l":["k"]})");
        }
    }
    EXPECT_EQ(DescribeBytes(Binary({"\xD2\x01\x01\x02\x03", "\x51k", "\x08", "\x09"})), "{\"k\":T}");
}

TEST(BinaryReader, RefusesDamage) {
    const std::string whole = Binary({"\x51x", "\xA1\x00"s}, 2, 1, 1);
    ASSERT_EQ(DescribeBytes(whole), "[\"x\"]");
    for (size_t size = std::string_view("bplist0").size(); size < whole.size(); ++size)
        EXPECT_EQ(DescribeBytes(whole.substr(0, size)), "null") << size;
    // Markers and sizes that are none, contents beyond the end, references to no object, keys that are no
    // texts, and objects inside themselves.
    for (const std::string &file :
         {Binary({"\x00"s}), Binary({"\xE0"}), Binary({"\x15" + std::string(32, '\0')}),
          Binary({"\x21\0\0"s}), Binary({"\x5F\x51\x01"}), Binary({"\x51x"}, 0), Binary({"\x51x"}, 2, 9),
          Binary({"\x5F\x11\xFF\xFF"}), Binary({"\x33"}), Binary({"\x23"}), Binary({"\xAE"}),
          Binary({"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}), Binary({"\xA1\x02", "\x51x"}),
          Binary({"\x51x"}, 2, 1, 1), Binary({"\xD1\x01\x02", "\x10\x01", "\x51x"}),
          Binary({"\xD1\x01\x02", "\xA0", "\x51x"}), Binary({"\xA1\x00"s}), Binary({"\xA1\x01", "\xA1\x00"s}),
          Binary({"\xD1\x00\x01"s, "\x51x"})})
        EXPECT_EQ(DescribeBytes(file), "null") << testing::PrintToString(file);
}

TEST(EveryForm, RefusesTooDeepNesting) {
    constexpr size_t kDepth = limits::kListDepth.value;
    const auto xml = [](size_t depth) { return Repeat("<array>", depth) + Repeat("</array>", depth); };
    const auto old_style = [](size_t depth) { return std::string(depth, '(') + std::string(depth, ')'); };
    for (const std::string &list : {Chain(kDepth, 1), xml(kDepth), old_style(kDepth)})
        EXPECT_NE(ReadBytes(list), nullptr) << list;
    for (const std::string &list : {Chain(kDepth + 1, 1), xml(kDepth + 1), old_style(kDepth + 1),
                                    Repeat("<array>", 1'000'000), std::string(1'000'000, '(')})
        EXPECT_EQ(ReadBytes(list), nullptr) << list.substr(0, 2000);
}

// Sharing is allowed, but not to describe a tree out of proportion to the file.
TEST(BinaryReader, BoundsWhatSharingMultiplies) {
    EXPECT_EQ(DescribeBytes(Chain(2, 2)), R"([["x","x"],["x","x"]])");
    EXPECT_NE(ReadBytes(Chain(10, 2)), nullptr);
    EXPECT_EQ(ReadBytes(Chain(60, 2)), nullptr) << "billion_laughs";
}

// All objects name the same bytes as their content.
TEST(BinaryReader, RefusesOverlappingObjects) {
    constexpr size_t kObjects = 200;
    std::string file = "bplist00\xAF\x10" + BigEndian(kObjects, 1) +
                       std::string(kObjects, static_cast<char>(kObjects - 1)) + "\x51x";
    const size_t place = file.size();
    for (size_t i = 0; i + 1 < kObjects; ++i)
        file += BigEndian(8, 2);
    file += BigEndian(place - 2, 2) + std::string(6, '\0') + "\x02\x01" + BigEndian(kObjects, 8) +
            BigEndian(0, 8) + BigEndian(place, 8);
    EXPECT_NE(ReadBytes(file), nullptr) << "only one of them is used";
    // Now object i refers to object i + 1 as well: each counts all the references again.
    for (size_t i = 0; i < kObjects; ++i)
        file[11 + i] = static_cast<char>(i);
    EXPECT_EQ(ReadBytes(file), nullptr) << "excessive_alloc";
}

}  // namespace
