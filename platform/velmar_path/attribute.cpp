#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

#include "platform/memory/pool.h"
#include "platform/velmar_path/velmar_path.h"

namespace {

// An item lies in one piece, so that a search runs through memory in order:
//
//   offset 0   uint32  room of the value, terminator included
//          4   uint32  bytes of the key; the top bit tells that the value has moved out
//          8   value   text and terminator, or the address of a text of its own once it has outgrown the room
//   8 + room   key     text and terminator
//
// The next item follows at the next multiple of 4.
struct Item {
    uint32_t room;
    uint32_t key_bytes : 31;
    uint32_t moved : 1;

    char *Room() { return reinterpret_cast<char *>(this + 1); }
    std::string_view Key() { return {Room() + room, key_bytes}; }
    char *Value() {
        if (!moved) return Room();
        char *text = nullptr;
        std::memcpy(&text, Room(), sizeof text);
        return text;
    }
    Item *Next() {
        const size_t bytes = sizeof(Item) + room + key_bytes + 1;
        return reinterpret_cast<Item *>(reinterpret_cast<char *>(this) + RoundUp(bytes));
    }

    static constexpr size_t RoundUp(size_t bytes) { return (bytes + 3) & ~size_t{3}; }
};

static_assert(sizeof(Item) == 8);

constexpr size_t kLongestText = size_t{1} << 30;
constexpr uint32_t kKeyBytesMask = 0x7FFFFFFF;

// Items, one behind the other. Blocks never move, so a value that a caller has found stays valid while items
// are added.
struct Block {
    Block *next = nullptr;
    size_t size = 0;  // bytes of the whole block
    size_t used = 0;  // bytes of `items`

    Item *Begin() { return reinterpret_cast<Item *>(this + 1); }
    Item *End() { return reinterpret_cast<Item *>(reinterpret_cast<char *>(this + 1) + used); }
    size_t Left() const { return size - sizeof(Block) - used; }
};

// A track has about 600 bytes of attributes, most lists have one item.
constexpr size_t kFirstBlockBytes = 256;
constexpr size_t kSecondBlockBytes = 448;
constexpr size_t kFurtherBlockBytes = 160;

Block *NewBlock(size_t usual, size_t least) {
    const size_t size = std::max(usual, sizeof(Block) + least);
    void *memory = TakeFromPool(size);
    if (memory == nullptr) throw std::bad_alloc();
    return new (memory) Block{nullptr, size, 0};
}

// One bit of 64 for a key: a bit that no stored key has set tells an absent key without a look at the items.
uint64_t KeyBit(std::string_view key) {
    uint32_t hash = static_cast<uint32_t>(key.size());
    for (const char letter : key)
        hash = hash * 31 + static_cast<unsigned char>(letter);
    return uint64_t{1} << ((hash ^ (hash >> 6)) & 63);
}

// The least room in which a value can later give way to the address of a longer one.
size_t RoomFor(std::string_view value) {
    return std::max(value.size() + 1, sizeof(char *));
}

void Store(char *place, std::string_view text) {
    // The text may be the one that stands there, or a piece of it.
    std::memmove(place, text.data(), text.size());
    place[text.size()] = '\0';
}

}  // namespace

struct VelmarAttribute : Pooled {
    uint64_t key_bits = 0;
    Block *first = nullptr;
    Block *last = nullptr;
    int32_t count = 0;
    // Where the last GetVelmarAttributeItem was, so that a walk over the items takes one step for each.
    int32_t walk_index = 0;
    Block *walk_block = nullptr;
    Item *walk_item = nullptr;

    VelmarAttribute() = default;
    ~VelmarAttribute() {
        for (Block *block = first; block != nullptr;) {
            for (Item *item = block->Begin(); item != block->End(); item = item->Next()) {
                if (item->moved) delete[] item->Value();
            }
            Block *next = block->next;
            ReturnToPool(block, block->size);
            block = next;
        }
    }
    VelmarAttribute(const VelmarAttribute &) = delete;
    VelmarAttribute &operator=(const VelmarAttribute &) = delete;

    Item *Find(std::string_view key, uint64_t bit) const {
        if ((key_bits & bit) == 0) return nullptr;
        for (Block *block = first; block != nullptr; block = block->next) {
            for (Item *item = block->Begin(); item != block->End(); item = item->Next()) {
                if (item->Key() == key) return item;
            }
        }
        return nullptr;
    }

    void Append(std::string_view key, uint64_t bit, std::string_view value) {
        if (std::max(key.size(), value.size()) > kLongestText) throw std::bad_alloc();
        const size_t room = RoomFor(value);
        const size_t bytes = Item::RoundUp(sizeof(Item) + room + key.size() + 1);
        if (last == nullptr || last->Left() < bytes) AddBlock(bytes);
        Item *item = new (last->End())
            Item{static_cast<uint32_t>(room), static_cast<uint32_t>(key.size()) & kKeyBytesMask, 0};
        Store(item->Room(), value);
        Store(item->Room() + room, key);
        last->used += bytes;
        key_bits |= bit;
        ++count;
    }

    void AddBlock(size_t least) {
        const size_t usual = first == nullptr ? kFirstBlockBytes
                             : first == last  ? kSecondBlockBytes
                                              : kFurtherBlockBytes;
        Block *block = NewBlock(usual, least);
        (last == nullptr ? first : last->next) = block;
        last = block;
    }

    static void Replace(Item &item, std::string_view value) {
        if (!item.moved && value.size() < item.room) {
            Store(item.Room(), value);
            return;
        }
        char *text = new char[value.size() + 1];
        Store(text, value);
        if (item.moved) delete[] item.Value();
        std::memcpy(item.Room(), &text, sizeof text);
        item.moved = 1;
    }

    // `index` is in range.
    Item *ItemAt(int32_t index) {
        if (walk_item == nullptr || index < walk_index) {
            walk_block = first;
            walk_item = first->Begin();
            walk_index = 0;
        }
        while (true) {
            if (walk_item == walk_block->End()) {
                walk_block = walk_block->next;
                walk_item = walk_block->Begin();
            }
            if (walk_index == index) return walk_item;
            walk_item = walk_item->Next();
            ++walk_index;
        }
    }
};

int32_t AllocVelmarAttribute(VelmarAttribute **attribute) {
    if (attribute == nullptr) return -1;
    VelmarAttribute *made = new VelmarAttribute;
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
            VelmarAttribute::Replace(*item, value);
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
    Item *item = attribute->Find(key, KeyBit(key));
    if (item == nullptr) return -1;
    *value = item->Value();
    return 0;
}

int32_t FreeVelmarAttribute(VelmarAttribute *attribute) {
    if (attribute == nullptr) return -1;
    delete attribute;
    return 0;
}

int32_t GetVelmarAttributeSize(VelmarAttribute *attribute) {
    return attribute == nullptr ? 0 : attribute->count;
}

int32_t GetVelmarAttributeItem(VelmarAttribute *attribute, int32_t index, const char **key,
                               const char **value) {
    if (index < 0 || index >= GetVelmarAttributeSize(attribute)) return -1;
    Item *item = attribute->ItemAt(index);
    if (key != nullptr) *key = item->Key().data();
    if (value != nullptr) *value = item->Value();
    return 0;
}
