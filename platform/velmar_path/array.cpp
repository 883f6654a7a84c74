#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/memory/pool.h"
#include "platform/velmar_path/velmar_path.h"

// Grown by realloc, which moves a large array without touching its pages.
struct VelmarArray : Pooled {
    void **items = nullptr;
    int32_t count = 0;
    int32_t room = 0;

    VelmarArray() = default;
    ~VelmarArray() { std::free(items); }
    VelmarArray(const VelmarArray &) = delete;
    VelmarArray &operator=(const VelmarArray &) = delete;

    bool Has(int32_t index) const { return index >= 0 && index < count; }

    bool Grow() {
        if (room > INT32_MAX / 2) return false;
        const int32_t larger = room == 0 ? kFirstRoom : room * 2;
        void *moved = std::realloc(items, static_cast<size_t>(larger) * sizeof(void *));
        if (moved == nullptr) return false;
        items = static_cast<void **>(moved);
        room = larger;
        return true;
    }

  private:
    static constexpr int32_t kFirstRoom = 4;
};

int32_t AllocVelmarArray(VelmarArray **array) {
    if (array == nullptr) return -1;
    VelmarArray *made = new VelmarArray;
    if (made == nullptr) return -1;
    *array = made;
    return 0;
}

int32_t AddVelmarArrayItem(VelmarArray *array, void *item) {
    if (array == nullptr || (array->count == array->room && !array->Grow())) return -1;
    array->items[array->count++] = item;
    return 0;
}

int32_t GetVelmarArraySize(VelmarArray *array) {
    return array == nullptr ? 0 : array->count;
}

int32_t GetVelmarArrayItem(VelmarArray *array, int32_t index, void **item) {
    if (array == nullptr || item == nullptr || !array->Has(index)) return -1;
    *item = array->items[index];
    return 0;
}

int32_t DeleteVelmarArrayItem(VelmarArray *array, int32_t index) {
    if (array == nullptr || !array->Has(index)) return -1;
    std::copy(array->items + index + 1, array->items + array->count, array->items + index);
    --array->count;
    return 0;
}

int32_t FreeVelmarArray(VelmarArray *array) {
    if (array == nullptr) return -1;
    delete array;
    return 0;
}
