// Another host's container library: it keeps the promises of the twelve operations and not one more. Handles
// are numbers, results that nobody may read are odd, and texts move at every change of their container.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/velmar_path/velmar_path.h"

namespace {

constexpr int32_t kUnreadResult = 41;
constexpr int32_t kAbsent = 17;

struct Item {
    std::string key;
    std::vector<char> value;
};
using Items = std::vector<Item>;

Item *Find(Items &items, const std::string &key) {
    for (Item &item : items) {
        if (item.key == key) return &item;
    }
    return nullptr;
}

// Texts are copied to a new place at each change; the old place is scribbled over before it goes.
int32_t Set(Items &items, const char *key, const char *value) {
    const std::vector<char> copy(value, value + std::strlen(value) + 1);
    for (Item &item : items) {
        std::vector<char> moved(item.value);
        std::fill(item.value.begin(), item.value.end() - 1, '#');
        item.value = std::move(moved);
    }
    Item *item = Find(items, key);
    if (item == nullptr) item = &items.emplace_back(Item{key, {}});
    item->value = copy;
    return kUnreadResult;
}

// One thread at a time calls these operations.
std::unordered_map<const void *, std::vector<void *>> arrays;
std::unordered_map<const void *, Items> attributes;

template <typename Containers, typename Handle>
int32_t Add(Containers &containers, Handle **handle) {
    static uintptr_t last = 4097;
    // Odd, so that a cast behind a handle goes wrong.
    *handle = reinterpret_cast<Handle *>(last += 2);
    containers[*handle];
    return kUnreadResult;
}

VelmarLogHandler log_handler = nullptr;
void *log_context = nullptr;

}  // namespace

int32_t AllocVelmarArray(VelmarArray **array) {
    return Add(arrays, array);
}

int32_t AddVelmarArrayItem(VelmarArray *array, void *item) {
    arrays.at(array).push_back(item);
    return kUnreadResult;
}

int32_t GetVelmarArraySize(VelmarArray *array) {
    return static_cast<int32_t>(arrays.at(array).size());
}

int32_t GetVelmarArrayItem(VelmarArray *array, int32_t index, void **item) {
    const std::vector<void *> &items = arrays.at(array);
    if (index < 0 || static_cast<size_t>(index) >= items.size()) return -5;
    *item = items[static_cast<size_t>(index)];
    return 0;
}

int32_t DeleteVelmarArrayItem(VelmarArray *array, int32_t index) {
    arrays.at(array).erase(arrays.at(array).begin() + index);
    return kUnreadResult;
}

int32_t FreeVelmarArray(VelmarArray *array) {
    arrays.erase(array);
    return kUnreadResult;
}

int32_t AllocVelmarAttribute(VelmarAttribute **attribute) {
    return Add(attributes, attribute);
}

int32_t AddVelmarAttributeItem(VelmarAttribute *attribute, const char *key, const char *value) {
    return Set(attributes.at(attribute), key, value);
}

int32_t SetVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char *value) {
    return Set(attributes.at(attribute), key, value);
}

int32_t FindVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char **value) {
    const Item *item = Find(attributes.at(attribute), key);
    if (item == nullptr) return kAbsent;
    *value = item->value.data();
    return 0;
}

int32_t FreeVelmarAttribute(VelmarAttribute *attribute) {
    attributes.erase(attribute);
    return kUnreadResult;
}

int32_t WriteVelmarLog(const char *format, ...) {
    char line[4096];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (log_handler != nullptr) log_handler(line, log_context);
    return kUnreadResult;
}

// What this host's own side needs.

void SetVelmarLogHandler(VelmarLogHandler handler, void *context) {
    log_context = context;
    log_handler = handler;
}
