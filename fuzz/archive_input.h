// Inputs of the targets that read zip archives.
//
// An input that begins as an archive does is one, byte for byte. Any other is a row of members, of which an
// archive is made:
//
//   1 byte    MemberFlag
//   1 byte    length of the name, and the name
//   2 bytes   length of the content, and the content
#ifndef FUZZ_ARCHIVE_INPUT_H
#define FUZZ_ARCHIVE_INPUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum MemberFlag : uint8_t {
    kDeflated = 1,
    kEncrypted = 2,
    kWrongChecksum = 4,
    kClaimsMore = 8,
    kClaimsNothing = 16,
};

struct ArchiveMember {
    uint8_t flags = 0;
    std::string name;
    std::string content;
};

// The archive that an input stands for.
std::string ArchiveOf(std::string_view input);

// The input that stands for an archive of the same members.
std::string MembersInput(std::string_view archive);

// One change that leaves the lengths right, or any change.
size_t MutateArchive(uint8_t *bytes, size_t size, size_t most, unsigned seed);

#endif
