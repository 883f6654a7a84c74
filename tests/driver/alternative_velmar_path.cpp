// Another host's container library: it keeps the promises of the twelve operations and not one more. Handles
// are numbers, results that nobody may read are odd, and texts move at every change of their container.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/velmar_path/velmar_path.h"

namespace {

constexpr int32_t kUnreadResult = 41;
constexpr int32_t kAbsent = 17;

// Texts of a container, copied to a new place at each change; the old place is scribbled over before it goes.
struct Attributes {
    struct Item {
        std::string key;
        std::unique_ptr<char[]> value;
        size_t bytes = 0;
    };
    std::vector<Item> items;

    static std::unique_ptr<char[]> Copy(const char *text, size_t bytes) {
        auto copy = std::make_unique<char[]>(bytes);
        std::memcpy(copy.get(), text, bytes);
        return copy;
    }
    void MoveTexts() {
        for (Item &item : items) {
            auto moved = Copy(item.value.get(), item.bytes);
            std::memset(item.value.get(), '#', item.bytes - 1);
            item.value = std::move(moved);
        }
    }
    Item *Find(const char *key) {
        for (Item &item : items) {
            if (item.key == key) return &item;
        }
        return nullptr;
    }
    void Set(const char *key, const char *value) {
        auto copy = Copy(value, std::strlen(value) + 1);
        MoveTexts();
        Item *item = Find(key);
        if (item == nullptr) item = &items.emplace_back(Item{key, nullptr, 0});
        item->value = std::move(copy);
        item->bytes = std::strlen(item->value.get()) + 1;
    }
};

template <typename Container, typename Handle>
class Registry {
  public:
    Handle *Add() {
        const std::lock_guard lock(mutex_);
        const uintptr_t number = next_ += 2;  // odd, so that a cast behind a handle goes wrong
        containers_[number] = std::make_unique<Container>();
        return reinterpret_cast<Handle *>(number);
    }
    Container &At(Handle *handle) {
        const std::lock_guard lock(mutex_);
        return *containers_.at(reinterpret_cast<uintptr_t>(handle));
    }
    void Remove(Handle *handle) {
        const std::lock_guard lock(mutex_);
        containers_.erase(reinterpret_cast<uintptr_t>(handle));
    }

  private:
    std::mutex mutex_;
    uintptr_t next_ = 4097;
    std::unordered_map<uintptr_t, std::unique_ptr<Container>> containers_;
};

Registry<std::vector<void *>, VelmarArray> arrays;
Registry<Attributes, VelmarAttribute> attributes;

VelmarLogHandler log_handler = nullptr;
void *log_context = nullptr;

}  // namespace

int32_t AllocVelmarArray(VelmarArray **array) {
    *array = arrays.Add();
    return kUnreadResult;
}

int32_t AddVelmarArrayItem(VelmarArray *array, void *item) {
    arrays.At(array).push_back(item);
    return kUnreadResult;
}

int32_t GetVelmarArraySize(VelmarArray *array) {
    return static_cast<int32_t>(arrays.At(array).size());
}

int32_t GetVelmarArrayItem(VelmarArray *array, int32_t index, void **item) {
    const std::vector<void *> &items = arrays.At(array);
    if (index < 0 || static_cast<size_t>(index) >= items.size()) return -5;
    *item = items[static_cast<size_t>(index)];
    return 0;
}

int32_t DeleteVelmarArrayItem(VelmarArray *array, int32_t index) {
    std::vector<void *> &items = arrays.At(array);
    items.erase(items.begin() + index);
    return kUnreadResult;
}

int32_t FreeVelmarArray(VelmarArray *array) {
    arrays.Remove(array);
    return kUnreadResult;
}

int32_t AllocVelmarAttribute(VelmarAttribute **attribute) {
    *attribute = attributes.Add();
    return kUnreadResult;
}

int32_t AddVelmarAttributeItem(VelmarAttribute *attribute, const char *key, const char *value) {
    attributes.At(attribute).Set(key, value);
    return kUnreadResult;
}

int32_t SetVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char *value) {
    attributes.At(attribute).Set(key, value);
    return kUnreadResult;
}

int32_t FindVelmarAttributeValue(VelmarAttribute *attribute, const char *key, const char **value) {
    const Attributes::Item *item = attributes.At(attribute).Find(key);
    if (item == nullptr) return kAbsent;
    *value = item->value.get();
    return 0;
}

int32_t FreeVelmarAttribute(VelmarAttribute *attribute) {
    attributes.Remove(attribute);
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

int32_t GetVelmarAttributeSize(VelmarAttribute *attribute) {
    return static_cast<int32_t>(attributes.At(attribute).items.size());
}

int32_t GetVelmarAttributeItem(VelmarAttribute *attribute, int32_t index, const char **key,
                               const char **value) {
    const Attributes::Item &item = attributes.At(attribute).items.at(static_cast<size_t>(index));
    *key = item.key.c_str();
    *value = item.value.get();
    return 0;
}

void SetVelmarLogHandler(VelmarLogHandler handler, void *context) {
    log_context = context;
    log_handler = handler;
}
