#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "platform/memory/pool.h"
#include "platform/velmar_path/velmar_path.h"

struct VelmarArray : Pooled {
    std::vector<void *> items;

    bool Has(int32_t index) const { return index >= 0 && static_cast<size_t>(index) < items.size(); }
};

int32_t AllocVelmarArray(VelmarArray **array) {
    if (array == nullptr) return -1;
    VelmarArray *made = new VelmarArray;
    if (made == nullptr) return -1;
    *array = made;
    return 0;
}

int32_t AddVelmarArrayItem(VelmarArray *array, void *item) {
    if (array == nullptr || array->items.size() >= INT32_MAX) return -1;
    try {
        array->items.push_back(item);
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int32_t GetVelmarArraySize(VelmarArray *array) {
    return array == nullptr ? 0 : static_cast<int32_t>(array->items.size());
}

int32_t GetVelmarArrayItem(VelmarArray *array, int32_t index, void **item) {
    if (array == nullptr || item == nullptr || !array->Has(index)) return -1;
    *item = array->items[static_cast<size_t>(index)];
    return 0;
}

int32_t DeleteVelmarArrayItem(VelmarArray *array, int32_t index) {
    if (array == nullptr || !array->Has(index)) return -1;
    array->items.erase(array->items.begin() + index);
    return 0;
}

int32_t FreeVelmarArray(VelmarArray *array) {
    if (array == nullptr) return -1;
    delete array;
    return 0;
}
