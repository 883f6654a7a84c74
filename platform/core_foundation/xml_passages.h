// What stands between the values of one dictionary stands between those of the next: most dictionaries of a
// library have the same keys in the same order, spelled and indented alike.
#ifndef PLATFORM_CORE_FOUNDATION_XML_PASSAGES_H
#define PLATFORM_CORE_FOUNDATION_XML_PASSAGES_H

#include <array>
#include <cstring>
#include <string_view>

#include "platform/core_foundation/value.h"
#include "platform/core_foundation/xml_element.h"

namespace core_foundation {

// From the end of one value to the content of the next, as "\n\t\t\t<key>Artist</key><string>".
struct XmlPassage {
    const Value *key = nullptr;  // that it names
    Element element = Element::kUnknown;
    bool is_empty = false;  // the element at its end
    uint8_t size = 0;
    std::array<char, 53> text = {};

    Tag TagBefore(const char *next) const { return {element, is_empty, next}; }
};
static_assert(sizeof(XmlPassage) == 64, "one line of the processor's cache");

// The latest passage behind each key. Only for keys that are shared, see TreeBuilder.
class XmlPassages {
  public:
    // The passage that stands at `begin`, before `limit`, behind the value of `last`, which is null at the
    // front of a dictionary. Null when another or none does.
    const XmlPassage *Find(const Value *last, const char *begin, const char *limit) const {
        const XmlPassage &passage = passages_[SlotOf(last)];
        const bool stands_here = passage.size != 0 && passage.size <= limit - begin &&
                                 std::memcmp(begin, passage.text.data(), passage.size) == 0;
        return stands_here ? &passage : nullptr;
    }

    // Remembers what leads to `key` and its start tag.
    void Remember(const Value *last, std::string_view text, const Value *key, const Tag &tag) {
        XmlPassage &passage = passages_[SlotOf(last)];
        if (text.size() > passage.text.size()) return;
        passage = {key, tag.element, tag.is_empty, static_cast<uint8_t>(text.size()), {}};
        std::memcpy(passage.text.data(), text.data(), text.size());
    }

  private:
    static constexpr size_t kSlots = 512;

    static size_t SlotOf(const Value *last) { return last == nullptr ? 0 : last->hash % kSlots; }

    std::array<XmlPassage, kSlots> passages_;
};

}  // namespace core_foundation

#endif
