#include "fuzz/archive_input.h"

#include <algorithm>
#include <random>

#include "content/zip_archive.h"
#include "content/zip_entry.h"
#include "fixtures/byte_text.h"
#include "fixtures/preference_file.h"
#include "fixtures/temp_folder.h"
#include "fixtures/zip_builder.h"
#include "fuzz/choices.h"
#include "fuzz/fuzz_target.h"

namespace {

constexpr std::string_view kArchiveStart = "PK";
constexpr size_t kLongestName = 0xFF;
constexpr size_t kLongestContent = 0xFFFF;

std::vector<ArchiveMember> ParseMembers(std::string_view input) {
    std::vector<ArchiveMember> members;
    Choices choices(input);
    while (!choices.AtEnd()) {
        ArchiveMember member;
        member.flags = static_cast<uint8_t>(choices.Number(1));
        member.name = choices.Text();
        member.content = choices.LongText();
        members.push_back(std::move(member));
    }
    return members;
}

std::string WriteMembers(const std::vector<ArchiveMember> &members) {
    std::string input;
    for (const ArchiveMember &member : members) {
        const std::string name = member.name.substr(0, kLongestName);
        const std::string content = member.content.substr(0, kLongestContent);
        input += BigEndian(member.flags, 1) + BigEndian(static_cast<uint32_t>(name.size()), 1) + name;
        input += BigEndian(static_cast<uint32_t>(content.size()), 2) + content;
    }
    return input;
}

ZipBuilderEntry EntryOf(const ArchiveMember &member) {
    ZipBuilderEntry entry = (member.flags & kDeflated) != 0 ? DeflatedEntry(member.name, member.content)
                                                            : StoredEntry(member.name, member.content);
    if ((member.flags & kEncrypted) != 0) entry.flags |= 1;
    if ((member.flags & kWrongChecksum) != 0) entry.crc ^= 1;
    if ((member.flags & kClaimsMore) != 0) entry.claimed_size = 0x7FFFFFFF;
    if ((member.flags & kClaimsNothing) != 0) entry.claimed_size = 0;
    return entry;
}

std::vector<ArchiveMember> ReadMembers(std::string_view archive) {
    const TempFolder folder;
    const ZipReadHandle zip = OpenZipForRead(BackslashPath(folder.Write("archive", archive)));
    std::vector<ArchiveMember> members;
    if (!zip) return members;
    for (ZipCursor cursor(zip.get()); cursor.Valid(); cursor.Next()) {
        const auto entry = CurrentZipEntry(zip.get());
        const auto content = ReadCurrentZipEntry(zip.get(), {"bytes of a member", kLongestContent});
        if (entry) members.push_back({0, entry->name, content.value_or("")});
    }
    return members;
}

void MutateMember(std::vector<ArchiveMember> &members, std::minstd_rand &random) {
    ArchiveMember &member = members[random() % members.size()];
    switch (random() % 16) {
        case 0:
            member.flags = static_cast<uint8_t>(random());
            break;
        case 1:
            members.push_back(ArchiveMember(member));
            break;
        case 2:
            member.content = members[random() % members.size()].content;
            break;
        case 3:
            std::swap(member, members.back());
            break;
        case 4:
        case 5:
            member.name = Mutated(member.name, 16);
            break;
        default:
            member.content = Mutated(member.content);
    }
}

}  // namespace

std::string ArchiveOf(std::string_view input) {
    if (input.starts_with(kArchiveStart)) return std::string(input);
    std::vector<ZipBuilderEntry> entries;
    for (const ArchiveMember &member : ParseMembers(input))
        entries.push_back(EntryOf(member));
    return BuildZip(entries);
}

std::string MembersInput(std::string_view archive) {
    return WriteMembers(ReadMembers(archive));
}

size_t MutateArchive(uint8_t *bytes, size_t size, size_t most, unsigned seed) {
    std::minstd_rand random(seed);
    const std::string_view input = AsText(bytes, size);
    const bool is_archive = input.starts_with(kArchiveStart);
    if (random() % (is_archive ? 2 : 8) == 0) return LLVMFuzzerMutate(bytes, size, most);
    std::vector<ArchiveMember> members = is_archive ? ReadMembers(input) : ParseMembers(input);
    if (members.empty()) return LLVMFuzzerMutate(bytes, size, most);
    MutateMember(members, random);
    return Store(WriteMembers(members), bytes, most);
}
