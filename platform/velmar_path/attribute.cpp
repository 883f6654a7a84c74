#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "platform/velmar_path/velmar_path.h"

namespace {

// Texts lie in blocks that never move, so a value that a caller has found stays valid while items are added.
constexpr size_t kFirstBlockBytes = 256;
constexpr size_t kLargestBlockBytes = 4096;

struct Item {
    char *key;
    char *value;
};

// One bit of 64 for a key: a bit that no stored key has set tells an absent key without a look at the items.
uint64_t KeyBit(std::string_view key) {
    uint32_t hash = static_cast<uint32_t>(key.size());
    for (const char letter : key) hash = hash * 31 + static_cast<unsigned char>(letter);
    return uint64_t{1} << ((hash ^ (hash >> 6)) & 63);
}

}  // namespace

struct VelmarAttribute {
    std::vector<Item> items;
    std::vector<std::unique_ptr<char[]>> blocks;
    char *room = nullptr;
    size_t room_bytes = 0;
    uint64_t key_bits = 0;

    char *Store(std::string_view text) {
        if (text.size() + 1 > room_bytes) AddBlock(text.size() + 1);
        char *stored = room;
        std::copy(text.begin(), text.end(), stored);
        stored[text.size()] = '\0';
        room += text.size() + 1;
        room_bytes -= text.size() + 1;
        return stored;
    }

    void AddBlock(size_t least) {
        const size_t usual = std::min(kFirstBlockBytes << std::min<size_t>(blocks.size(), 8), kLargestBlockBytes);
        const size_t bytes = std::max(usual, least);
        blocks.push_back(std::unique_ptr<char[]>(new char[bytes]));
        room = blocks.back().get();
        room_bytes = bytes;
    }

    Item *Find(std::string_view key, uint64_t bit) {
        if ((key_bits & bit) == 0) return nullptr;
        // The terminator takes part in the comparison, so a longer key does not match.
        const auto same = [key](const Item &item) {
            return item.key[0] == key.data()[0] && std::memcmp(item.key, key.data(), key.size()) == 0 &&
                   item.key[key.size()] == '\0';
        };
        const auto found = std::find_if(items.begin(), items.end(), same);
        return found == items.end() ? nullptr : &*found;
    }

    void Append(std::string_view key, uint64_t bit, std::string_view value) {
        char *stored_key = Store(key);
        items.push_back({stored_key, Store(value)});
        key_bits |= bit;
    }

    void Replace(Item &item, std::string_view value) {
        if (value.size() <= std::strlen(item.value)) {
            // `value` may be the stored text itself, or a piece of it.
            std::memmove(item.value, value.data(), value.size());
            item.value[value.size()] = '\0';
        } else {
            item.value = Store(value);
        }
    }
};

int32_t AllocVelmarAttribute(VelmarAttribute **attribute) {
    if (attribute == nullptr) return -1;
    VelmarAttribute *made = new (std::nothrow) VelmarAttribute;
    if (made == nullptr) return -1;
    *attribute = made;
    return 0;
}

int32_t AddVelmarAttributeItem(VelmarAttribute *attribute, const char *key, const char *value) {
    if (attribute == nullptr || key == nullptr || value == nullptr) return -1;
    try {
        attribute->Append(key, KeyBit(key), value);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int32_t SetVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char *value) {
    if (attribute == nullptr || key == nullptr || value == nullptr) return -1;
    const uint64_t bit = KeyBit(key);
    try {
        if (Item *item = attribute->Find(key, bit)) {
            attribute->Replace(*item, value);
        } else {
            attribute->Append(key, bit, value);
        }
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int32_t FindVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char **value) {
    if (attribute == nullptr || key == nullptr || value == nullptr) return -1;
    const Item *item = attribute->Find(key, KeyBit(key));
    if (item == nullptr) return -1;
    *value = item->value;
    return 0;
}

int32_t FreeVelmarAttribute(VelmarAttribute *attribute) {
    if (attribute == nullptr) return -1;
    delete attribute;
    return 0;
}

int32_t GetVelmarAttributeSize(VelmarAttribute *attribute) {
    return attribute == nullptr ? 0 : static_cast<int32_t>(attribute->items.size());
}

int32_t GetVelmarAttributeItem(VelmarAttribute *attribute, int32_t index, const char **key, const char **value) {
    if (index < 0 || index >= GetVelmarAttributeSize(attribute)) return -1;
    const Item &item = attribute->items[static_cast<size_t>(index)];
    if (key != nullptr) *key = item.key;
    if (value != nullptr) *value = item.value;
    return 0;
}
