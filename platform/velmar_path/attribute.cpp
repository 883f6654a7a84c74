#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

#include "platform/memory/pool.h"
#include "platform/velmar_path/key_table.h"
#include "platform/velmar_path/velmar_path.h"

namespace {

// An item lies in one piece, so that a search runs through memory in order:
//
//   offset 0   uint16  number of the key
//          2   uint16  room of the value, in words of 4 bytes; the top bit tells that the value has moved out
//          4   room    the value's text and terminator, or the address of a text of its own
//
// The next item follows. A key without a number stands in front of such a text, which is then never in the
// room.
struct Item {
    uint16_t key;
    uint16_t words : 15;
    uint16_t moved : 1;

    static constexpr size_t kWord = 4;

    char *Room() { return reinterpret_cast<char *>(this + 1); }
    size_t RoomBytes() const { return words * kWord; }
    Item *Next() { return reinterpret_cast<Item *>(Room() + RoomBytes()); }

    char *Outside() {
        char *text = nullptr;
        std::memcpy(&text, Room(), sizeof text);
        return text;
    }
    void SetOutside(const char *text) {
        std::memcpy(Room(), &text, sizeof text);
        moved = 1;
    }

    std::string_view Key() { return key != kUnknownKey ? TextOfKey(key) : std::string_view(Outside()); }
    char *Value() {
        if (!moved) return Room();
        return key != kUnknownKey ? Outside() : Outside() + std::strlen(Outside()) + 1;
    }
};

static_assert(sizeof(Item) == 4);

constexpr size_t kLongestText = size_t{1} << 30;
constexpr size_t kLongestInside = 4096;
// Room for the address of a longer value that may come later.
constexpr size_t kLeastRoom = sizeof(char *);

// Items, one behind the other. Blocks never move, so a value that a caller has found stays valid while items
// are added.
struct Block {
    Block *next = nullptr;
    uint32_t size = 0;  // of the items' room
    uint32_t used = 0;

    Item *Begin() { return reinterpret_cast<Item *>(this + 1); }
    Item *End() { return reinterpret_cast<Item *>(reinterpret_cast<char *>(this + 1) + used); }
    size_t Left() const { return size - used; }
};

// Most nodes have a few items and find room in the container itself; a track has about 400 bytes of them.
constexpr size_t kFirstBytes = 128;
constexpr size_t kSecondBytes = 320;
constexpr size_t kFurtherBytes = 160;

// One bit of 64 for a key: a bit that no stored key has set tells an absent key without a look at the items.
uint64_t KeyBit(uint16_t key) {
    return uint64_t{1} << (key & 63);
}

void Store(char *place, std::string_view text) {
    // The text may be the one that stands there, or a piece of it.
    std::memmove(place, text.data(), text.size());
    place[text.size()] = '\0';
}

// A value outside of its item, behind the item's key if that has no number.
char *NewOutside(uint16_t key, const char *key_text, std::string_view value) {
    const std::string_view stored_key = key == kUnknownKey ? key_text : "";
    const size_t key_bytes = key == kUnknownKey ? stored_key.size() + 1 : 0;
    if (std::max(key_bytes, value.size()) > kLongestText) throw std::bad_alloc();
    char *text = new char[key_bytes + value.size() + 1];
    if (key_bytes != 0) Store(text, stored_key);
    Store(text + key_bytes, value);
    return text;
}

}  // namespace

struct VelmarAttribute : Pooled {
    uint64_t key_bits = 0;
    Block *last = &first;
    int32_t count = 0;
    bool has_moved = false;
    // Where the last GetVelmarAttributeItem was, so that a walk over the items takes one step for each.
    int32_t walk_index = 0;
    Block *walk_block = nullptr;
    Item *walk_item = nullptr;
    Block first{nullptr, kFirstBytes, 0};
    char first_items[kFirstBytes];

    VelmarAttribute() = default;
    ~VelmarAttribute() {
        if (has_moved) FreeMoved();
        for (Block *block = first.next; block != nullptr;) {
            Block *next = block->next;
            ReturnToPool(block, sizeof(Block) + block->size);
            block = next;
        }
    }
    VelmarAttribute(const VelmarAttribute &) = delete;
    VelmarAttribute &operator=(const VelmarAttribute &) = delete;

    // The first item that `matches`, or null.
    template <typename Matches>
    Item *FindIf(Matches matches) {
        for (Block *block = &first; block != nullptr; block = block->next) {
            Item *const end = block->End();
            for (Item *item = block->Begin(); item != end; item = item->Next()) {
                if (matches(*item)) return item;
            }
        }
        return nullptr;
    }

    // The length of a text is asked for only where it has no number, here and below.
    Item *Find(uint16_t key, const char *text) {
        if ((key_bits & KeyBit(key)) == 0) return nullptr;
        if (key != kUnknownKey) return FindIf([key](const Item &item) { return item.key == key; });
        return FindIf([text](Item &item) { return item.key == kUnknownKey && item.Key() == text; });
    }

    void Append(uint16_t key, const char *key_text, std::string_view value) {
        const bool is_inside = key != kUnknownKey && value.size() < kLongestInside;
        const size_t room = is_inside ? std::max(value.size() + 1, kLeastRoom) : kLeastRoom;
        const auto words = static_cast<uint16_t>((room + Item::kWord - 1) / Item::kWord);
        const size_t bytes = sizeof(Item) + words * Item::kWord;
        if (last->Left() < bytes) AddBlock(bytes);
        Item &item = *new (last->End()) Item{key, static_cast<uint16_t>(words & 0x7FFF), 0};
        if (is_inside) {
            Store(item.Room(), value);
        } else {
            item.SetOutside(NewOutside(key, key_text, value));
            has_moved = true;
        }
        last->used += static_cast<uint32_t>(bytes);
        key_bits |= KeyBit(key);
        ++count;
    }

    void Replace(Item &item, std::string_view value) {
        if (!item.moved && value.size() < item.RoomBytes()) {
            Store(item.Room(), value);
            return;
        }
        char *text = NewOutside(item.key, item.Key().data(), value);
        if (item.moved) delete[] item.Outside();
        item.SetOutside(text);
        has_moved = true;
    }

    // `index` is in range.
    Item *ItemAt(int32_t index) {
        if (walk_item == nullptr || index < walk_index) {
            walk_block = &first;
            walk_item = first.Begin();
            walk_index = 0;
        }
        while (true) {
            while (walk_item == walk_block->End()) {
                walk_block = walk_block->next;
                walk_item = walk_block->Begin();
            }
            if (walk_index == index) return walk_item;
            walk_item = walk_item->Next();
            ++walk_index;
        }
    }

  private:
    void AddBlock(size_t least) {
        const size_t size = std::max(last == &first ? kSecondBytes : kFurtherBytes, least);
        void *memory = TakeFromPool(sizeof(Block) + size);
        if (memory == nullptr) throw std::bad_alloc();
        last->next = new (memory) Block{nullptr, static_cast<uint32_t>(size), 0};
        last = last->next;
    }

    void FreeMoved() {
        FindIf([](Item &item) {
            if (item.moved) delete[] item.Outside();
            return false;
        });
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
        attribute->Append(TakeKey(key), key, value);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int32_t SetVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char *value) {
    if (attribute == nullptr || key == nullptr || value == nullptr) return -1;
    const uint16_t number = TakeKey(key);
    try {
        if (Item *item = attribute->Find(number, key)) {
            attribute->Replace(*item, value);
        } else {
            attribute->Append(number, key, value);
        }
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int32_t FindVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char **value) {
    if (attribute == nullptr || key == nullptr || value == nullptr) return -1;
    Item *item = attribute->Find(FindKey(key), key);
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
