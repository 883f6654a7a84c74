// Small files that demand much.
#include <gtest/gtest.h>

#include "platform/itl_parser/inflate.h"
#include "platform/itl_parser/texts.h"
#include "platform/limits.h"
#include "tests/platform/itl_parser/parsed_library.h"
#include "tests/support/byte_text.h"

namespace {

std::string Repeated(const std::string &piece, size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

TEST(ItlLimits, ABodyThatExpandsTooFarIsGivenUpEarly) {
    const ItlFile file(ItlForm12());
    auto sections = file.Sections();
    sections.push_back(file.Section(4, Zeros(limits::kItlFreeBytes)));
    EXPECT_TRUE(ParsedLibrary(file.Bytes(sections)).valid) << "a small body may be as empty as it likes";
    sections.push_back(file.Section(4, Zeros(size_t{256} << 20)));
    const std::string bytes = file.Bytes(sections);
    const ParsedLibrary library(bytes);
    EXPECT_FALSE(library.valid);
    EXPECT_LT(library.bytes_read, bytes.size() / 2);
}

// Lists of 20 bytes are far smaller in the file than what is kept of each.
TEST(ItlLimits, AFileOfWhichTooMuchWouldBeKeptIsGivenUpEarly) {
    constexpr std::uint32_t kLists = 2'000'000;
    const ItlFile file(ItlForm12());
    const std::string list = "miph" + LittleEndian(20) + LittleEndian(20) + Zeros(8);
    ASSERT_EQ(list.size(), 20u);
    const auto bytes_with = [&](std::uint32_t count, const std::string &filler) {
        auto sections = file.Sections();
        sections[4] =
            file.Section(2, "mlph" + LittleEndian(12) + LittleEndian(count) + Repeated(list, count));
        // What does not compress keeps the expansion within its limit.
        sections.push_back(file.Section(4, filler));
        return file.Bytes(sections);
    };
    std::string noise;
    for (std::uint32_t i = 0, state = 1; i < 1'000'000; ++i, state = state * 1664525 + 1013904223)
        noise += static_cast<char>(state >> 24);
    EXPECT_TRUE(ParsedLibrary(bytes_with(20'000, noise)).valid);
    EXPECT_FALSE(ParsedLibrary(bytes_with(kLists, noise)).valid);
}

TEST(ItlLimits, ATextOfAnyLengthBelowTheLimitIsRead) {
    for (const size_t length : {limits::kItlTextBytes.value, limits::kItlTextBytes.value + 1}) {
        for (const ItlForm &form : {ItlForm8(), ItlForm12()}) {
            ItlFile file(form);
            file.AddTrack({.id = 1, .texts = {{kItlName, std::string(length, 'x')}}});
            EXPECT_EQ(ParsedLibrary(file.Bytes()).valid, length == limits::kItlTextBytes.value);
        }
    }
}

TEST(ItlLimits, ATypeThatIsNotReadMayHoldAnythingOfAnyLength) {
    ItlFile file(ItlForm8());
    file.AddTrack({.id = 1, .texts = {{kItlComments, std::string(3'000'000, 'x')}, {kItlName, "behind"}}});
    const ParsedLibrary library(file.Bytes());
    ASSERT_TRUE(library.valid);
    EXPECT_EQ(library.content.tracks[0]->name, "behind");
}

}  // namespace
