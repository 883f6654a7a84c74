// Every cut and thousands of damages. The sanitizers are the judges of what happens inside.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/platform/itl_parser/parsed_library.h"
#include "tests/support/byte_text.h"

namespace {

// More of them by hand: ITL_DAMAGES=100000.
int Rounds() {
    const char *text = std::getenv("ITL_DAMAGES");
    return text == nullptr ? 4000 : std::atoi(text);
}

class Damage {
  public:
    explicit Damage(unsigned seed) : random_(seed) {}

    std::string Of(std::string bytes) {
        for (size_t count = 1 + Below(3); count > 0 && !bytes.empty(); --count)
            DamageOnce(bytes);
        return bytes;
    }

  private:
    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random_); }

    void DamageOnce(std::string &bytes) {
        const size_t place = Below(bytes.size());
        switch (Below(5)) {
            case 0:
                bytes[place] = static_cast<char>(Below(256));
                break;
            case 1:
                bytes[place] = static_cast<char>(bytes[place] ^ (1 << Below(8)));
                break;
            case 2:
                bytes.erase(place, 1 + Below(8));
                break;
            case 3:
                bytes.insert(place, bytes.substr(Below(bytes.size()), 1 + Below(40)));
                break;
            default:
                // A number that is extreme wherever it is taken for one.
                bytes.replace(place, std::min<size_t>(4, bytes.size() - place),
                              Below(2) == 0 ? "\xFF\xFF\xFF\xFF" : Zeros(4), 0,
                              std::min<size_t>(4, bytes.size() - place));
        }
    }

    std::mt19937 random_;
};

// The length in the envelope put right, so that the damage behind it is met.
std::string WithLength(std::string bytes) {
    if (bytes.size() >= 12) bytes.replace(8, 4, BigEndian(static_cast<std::uint32_t>(bytes.size())));
    return bytes;
}

std::string SmallBody(const ItlFile &file) {
    std::string body;
    for (const std::string &section : file.Sections())
        body += section;
    return body;
}

TEST(DamagedItl, NoCutIsTaken) {
    for (const ItlForm &form : AllItlForms()) {
        const std::string bytes = SmallLibrary(form).Bytes();
        for (size_t length = 0; length < bytes.size(); ++length) {
            ASSERT_EQ(Describe(bytes.substr(0, length)), "refused") << form.version << " " << length;
            ASSERT_EQ(Describe(WithLength(bytes.substr(0, length))), "refused")
                << form.version << " " << length;
        }
        EXPECT_EQ(Describe(bytes + "x"), "refused") << form.version;
    }
}

// A larger body is inflated on a thread of its own, which ends wherever the file, or the interest in it,
// does.
TEST(DamagedItl, OfALargeFileIsRefusedWhereverItLies) {
    const ItlFile file = SmallLibrary(ItlForm12());
    std::string noise;
    for (std::uint32_t i = 0, state = 1; i < (3U << 20); ++i, state = state * 1664525 + 1013904223)
        noise += static_cast<char>(state >> 24);
    auto sections = file.Sections();
    sections.push_back(file.Section(4, noise));
    const std::string bytes = file.Bytes(sections);
    ASSERT_GT(bytes.size(), size_t{3} << 20);
    EXPECT_EQ(Describe(bytes), Describe(file.Bytes()));
    for (size_t part = 1; part < 16; ++part)
        EXPECT_EQ(Describe(WithLength(bytes.substr(0, bytes.size() * part / 16))), "refused") << part;
    sections.insert(sections.begin(), "no section");
    EXPECT_EQ(Describe(file.Bytes(sections)), "refused");
    sections[0] = std::string(noise.rbegin(), noise.rend());
    EXPECT_EQ(Describe(file.Bytes(sections)), "refused");
}

TEST(DamagedItl, OfTheWholeFile) {
    Damage damage(19040101);
    for (const ItlForm &form : AllItlForms()) {
        const std::string bytes = SmallLibrary(form).Bytes();
        for (int round = 0; round < Rounds() / 5; ++round) {
            const std::string damaged = WithLength(damage.Of(bytes));
            const std::string text = Describe(damaged);
            const bool same_body = damaged.substr(std::min(form.envelope_header, 144u)) ==
                                   bytes.substr(std::min(form.envelope_header, 144u));
            // A checksum ends a compressed body: what is read of a damaged one is what was written.
            if (form.compressed && !same_body && damaged.starts_with(bytes.substr(0, 8)) &&
                text != "refused") {
                EXPECT_EQ(text.substr(text.find('\n')),
                          SmallLibraryText(form).substr(SmallLibraryText(form).find('\n')));
            }
        }
    }
}

// Damage inside a body that is itself well packed meets the records.
TEST(DamagedItl, OfTheRecords) {
    Damage damage(20190101);
    int valid = 0;
    for (const ItlForm &form : {ItlForm10(), ItlForm12()}) {
        const ItlFile file = SmallLibrary(form);
        const std::string body = SmallBody(file);
        for (int round = 0; round < Rounds() / 2; ++round) {
            const std::string damaged = damage.Of(body);
            if (ParsedLibrary(file.BytesAround(ItlDeflated(damaged), 6)).valid) ++valid;
        }
    }
    EXPECT_GT(valid, Rounds() / 20) << "most fields may hold anything";
    EXPECT_LT(valid, Rounds());
}

}  // namespace
