// Built with 32-bit pointers, every record at the boundary has the word positions that hosts of that time
// rely on.
#include <cstddef>

#include "driver/itunes_driver.h"

namespace {

template <typename Record>
constexpr bool HasWords(size_t words) {
    return sizeof(void *) != 4 || sizeof(Record) == words * 4;
}

constexpr bool AtWord(size_t offset, size_t word) {
    return sizeof(void *) != 4 || offset == word * 4;
}

static_assert(sizeof(DriverStartupRecord) == 16);
static_assert(sizeof(CopyProgress) == 32);
static_assert(offsetof(CopyProgress, bytes_copied) == 16 && offsetof(CopyProgress, copy_error) == 24);

static_assert(HasWords<DriverPathInfo>(8));
static_assert(AtWord(offsetof(DriverPathInfo, kind), 1));
static_assert(AtWord(offsetof(DriverPathInfo, category), 2));
static_assert(AtWord(offsetof(DriverPathInfo, subcategory), 3));
static_assert(AtWord(offsetof(DriverPathInfo, names), 5));
static_assert(AtWord(offsetof(DriverPathInfo, attributes), 6));
static_assert(AtWord(offsetof(DriverPathInfo, reserved7), 7));

static_assert(HasWords<CopySourceInfo>(18));
static_assert(AtWord(offsetof(CopySourceInfo, source_type), 8));
static_assert(AtWord(offsetof(CopySourceInfo, source_handle), 9));
static_assert(AtWord(offsetof(CopySourceInfo, source_path), 10));
static_assert(AtWord(offsetof(CopySourceInfo, read_function), 11));
static_assert(AtWord(offsetof(CopySourceInfo, source_size), 14));
static_assert(AtWord(offsetof(CopySourceInfo, copy_tag), 17));

}  // namespace
