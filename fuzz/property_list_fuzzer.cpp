// Reads an input as a property list of any form. What is read is written in all three forms and read back,
// twice, and the second time must change nothing.
//
// An input that begins with a byte 1 is a row of objects, each behind its length: they are put into a binary
// list, whose table and trailer a fuzzer does not make up.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fixtures/byte_text.h"
#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"
#include "platform/core_foundation/cf_owner.h"
#include "platform/core_foundation/core_foundation.h"
#include "platform/core_foundation/tree_walk.h"
#include "platform/core_foundation/value.h"
#include "platform/core_foundation/writer.h"

namespace {

using core_foundation::ToValue;
using core_foundation::TreeWalk;
using core_foundation::Value;
using core_foundation::ValueType;
using Writer = bool (*)(const Value &root, std::string &out);

constexpr char kObjectRow = 1;

constexpr Writer kWriters[] = {core_foundation::WriteXml, core_foundation::WriteBinary,
                               core_foundation::WriteOldStyle};

CFOwner Read(std::string_view bytes) {
    const CFOwner data(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                                    static_cast<CFIndex>(bytes.size())));
    return CFOwner(CFPropertyListCreateWithData(kCFAllocatorDefault, static_cast<CFDataRef>(data.get()),
                                                kCFPropertyListImmutable, nullptr, nullptr));
}

std::string BinaryList(Choices objects) {
    std::string file = "bplist00";
    std::string offsets;
    uint32_t count = 0;
    for (; !objects.AtEnd(); ++count) {
        offsets += BigEndian(static_cast<uint32_t>(file.size()));
        file += objects.Text();
    }
    const auto place = static_cast<uint32_t>(file.size());
    return file + offsets + Zeros(6) + "\4\1" + BigEndian(0) + BigEndian(count) + Zeros(8) + BigEndian(0) +
           BigEndian(place);
}

std::string ObjectRow(const std::vector<std::string> &objects) {
    std::string row(1, kObjectRow);
    for (const std::string &object : objects)
        row += static_cast<char>(object.size()) + object;
    return row;
}

void CheckTexts(const Value &root) {
    TreeWalk walk(root);
    while (walk.Next()) {
        if (walk.value().type == ValueType::kString) RequireTerminated(TextOf(walk.value()));
    }
    Require(!walk.is_too_deep(), "what is read is not deeper than what is written");
}

// What a form cannot hold exactly changes with the first writing: text that is not UTF-8, parts of a second.
void CheckRoundTrips(const Value &root, Writer write) {
    std::string before;
    if (!write(root, before)) return;
    for (int trip = 0; trip < 2; ++trip) {
        const CFOwner copy = Read(before);
        Require(copy != nullptr, "what is written can be read");
        std::string written;
        Require(write(*ToValue(copy.get()), written), "what was read from a form can be written in it");
        Require(trip == 0 || written == before, "a second round trip changes nothing");
        before = std::move(written);
    }
}

// The list in another form, if there is one and that can hold it.
std::optional<std::string> InOtherForm(std::string_view bytes, unsigned choice) {
    const CFOwner list = Read(bytes);
    std::string written;
    if (!list || !kWriters[choice % std::size(kWriters)](*ToValue(list.get()), written)) return std::nullopt;
    return written;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    std::string_view input = AsText(bytes, size);
    std::string row;
    if (input.starts_with(kObjectRow)) input = row = BinaryList(Choices(input.substr(1)));
    const CFOwner list = Read(input);
    if (!list) return 0;
    CheckTexts(*ToValue(list.get()));
    for (const Writer write : kWriters)
        CheckRoundTrips(*ToValue(list.get()), write);
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t most, unsigned seed) {
    constexpr unsigned kSeldom = 16;
    if (seed % kSeldom == 0) {
        const auto other = InOtherForm(AsText(bytes, size), seed / kSeldom);
        if (other && other->size() <= most) return Store(*other, bytes, most);
    }
    return LLVMFuzzerMutate(bytes, size, most);
}

std::vector<std::string> FuzzSeeds() {
    const std::string xml =
        "<?xml version=\"1.0\"?><!DOCTYPE plist><plist version=\"1.0\"><!-- all of it --><dict>"
        "<key>text &amp; "
        "more</key><string>&#233;<![CDATA[<>]]></string><key>number</key><integer>-7</integer>"
        "<key>hex</key><integer>0x1F</integer><key>real</key><real>1.5e3</real><key>date</key>"
        "<date>2010-10-08T15:43:59Z</date><key>data</key><data>AAEC /w==</data><key>list</key><array><true/>"
        "<false/><dict/><array/></array><key>uid</key><dict><key>CF$UID</key><integer>3</integer></dict>"
        "</dict></plist>";
    std::vector<std::string> seeds = {
        xml,
        "{ key = value; \"quoted \\\"\\U00e9\\012\" = (a, 'b', <00ff 10>, ); /* note */ } // end",
        "a = b;\n\"c\" = \"d\";\n",
        ObjectRow(
            {"\xD1\1\2", "\x51k", "\xA3\3\4\5", "\x10\7", "\x33" + Zeros(8), "\x61" + Zeros(1) + "\xE9"}),
    };
    seeds.push_back(InOtherForm(xml, 1).value_or(""));
    return seeds;
}
