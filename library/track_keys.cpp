#include "library/track_keys.h"

namespace {

constexpr size_t kSlotCount = 128;
constexpr uint8_t kFreeSlot = 0xFF;
constexpr size_t kLengthFactor = 1;
constexpr size_t kFirstFactor = 2;
constexpr size_t kMiddleFactor = 19;

// Every key of every track is looked up, so each of the table's keys has a slot of its own, by its length and
// three of its letters.
constexpr size_t SlotOf(std::string_view key) {
    const auto letter = [key](size_t at) { return static_cast<size_t>(static_cast<unsigned char>(key[at])); };
    return (key.size() * kLengthFactor + letter(0) * kFirstFactor + letter(key.size() / 2) * kMiddleFactor +
            letter(key.size() - 1)) %
           kSlotCount;
}

constexpr std::array<uint8_t, kSlotCount> MakeSlots() {
    std::array<uint8_t, kSlotCount> slots = {};
    slots.fill(kFreeSlot);
    for (size_t row = 0; row < kTrackKeyCount; ++row)
        slots[SlotOf(TrackKeyTable[row].xml_key)] = static_cast<uint8_t>(row);
    return slots;
}

constexpr auto kSlots = MakeSlots();

constexpr bool AllRowsAreFound() {
    for (size_t row = 0; row < kTrackKeyCount; ++row) {
        if (kSlots[SlotOf(TrackKeyTable[row].xml_key)] != row) return false;
    }
    return true;
}

static_assert(AllRowsAreFound(), "two keys share a slot: choose other factors");

}  // namespace

std::optional<size_t> FindTrackKey(std::string_view xml_key) {
    if (xml_key.empty()) return std::nullopt;
    const uint8_t row = kSlots[SlotOf(xml_key)];
    if (row == kFreeSlot || xml_key != TrackKeyTable[row].xml_key) return std::nullopt;
    return row;
}
