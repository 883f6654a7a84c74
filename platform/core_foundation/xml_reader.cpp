// The XML form:
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN"
//   "http://www.apple.com/DTDs/PropertyList-1.0.dtd"> <plist version="1.0"> <dict>
//       <key>Major Version</key><integer>1</integer>
//       <key>Date</key><date>2010-08-30T17:46:37Z</date>
//       ...
//
// One pass over the file. The usual spelling of each tag is recognised by one comparison; whatever else XML
// permits (attributes, space in tags, comments, references, CDATA) takes a slower way to the same result.
// Walks need no check for the end of the window, because a '<' stands there that begins no tag.
//
// What begins in the window and does not end there looks like damage. So nothing takes effect before it has
// been read whole: whatever fails is tried again with more of the file, and is damage when there is no more.

#include <cstring>
#include <iterator>
#include <limits>

#include "platform/core_foundation/reader.h"
#include "platform/core_foundation/scalar_text.h"
#include "platform/core_foundation/tree_builder.h"
#include "platform/core_foundation/xml_element.h"
#include "platform/core_foundation/xml_passages.h"
#include "platform/core_foundation/xml_text.h"

namespace core_foundation {

namespace {

struct ElementNames {
    std::string_view name;
    std::string_view end_tag;
};

// In the order of Element.
constexpr ElementNames kElements[] = {{"string", "</string>"}, {"integer", "</integer>"}, {"key", "</key>"},
                                      {"date", "</date>"},     {"dict", "</dict>"},       {"true", "</true>"},
                                      {"false", "</false>"},   {"array", "</array>"},     {"data", "</data>"},
                                      {"real", "</real>"},     {"plist", "</plist>"}};
static_assert(std::size(kElements) == static_cast<size_t>(Element::kUnknown));

constexpr std::string_view EndTag(Element element) {
    return kElements[static_cast<size_t>(element)].end_tag;
}

Element ElementOf(std::string_view name) {
    size_t index = 0;
    while (index < std::size(kElements) && kElements[index].name != name)
        ++index;
    return static_cast<Element>(index);
}

template <size_t kSize>
bool StartsWith(const char *text, const char (&literal)[kSize]) {
    return std::memcmp(text, literal, kSize - 1) == 0;
}

const char *SkipSpace(const char *cursor) {
    while (IsSpace(*cursor))
        ++cursor;
    return cursor;
}

// The end of the name that begins a tag.
const char *NameEnd(const char *name) {
    while (*name >= 'a' && *name <= 'z')
        ++name;
    return name;
}

Element ElementAt(const char *name) {
    return ElementOf({name, static_cast<size_t>(NameEnd(name) - name)});
}

// A tag in any spelling, with its attributes, which mean nothing here.
Tag ReadAnyTag(const char *name) {
    char quote = '\0';
    const char *cursor = NameEnd(name);
    for (; quote != '\0' || *cursor != '>'; ++cursor) {
        if (*cursor == '<') return {Element::kUnknown, false, nullptr};
        if (*cursor == quote) {
            quote = '\0';
        } else if (quote == '\0' && (*cursor == '"' || *cursor == '\'')) {
            quote = *cursor;
        }
    }
    return {ElementAt(name), cursor[-1] == '/', cursor + 1};
}

inline Tag ReadTag(const char *name) {
    switch (*name) {
        case 'k':
            if (StartsWith(name, "key>")) return {Element::kKey, false, name + 4};
            break;
        case 's':
            if (StartsWith(name, "string>")) return {Element::kString, false, name + 7};
            break;
        case 'i':
            if (StartsWith(name, "integer>")) return {Element::kInteger, false, name + 8};
            break;
        case 'd':
            if (StartsWith(name, "date>")) return {Element::kDate, false, name + 5};
            if (StartsWith(name, "dict>")) return {Element::kDict, false, name + 5};
            break;
        case 't':
            if (StartsWith(name, "true/>")) return {Element::kTrue, true, name + 6};
            break;
        default:
            break;
    }
    return ReadAnyTag(name);
}

// The document type names a fixed grammar and is not looked at. Its declarations, in brackets, are skipped
// with it: an entity that they declare is unknown.
const char *SkipDoctype(const char *cursor, const char *limit) {
    char quote = '\0';
    size_t brackets = 0;
    for (; cursor != limit; ++cursor) {
        if (quote != '\0') {
            if (*cursor == quote) quote = '\0';
        } else if (*cursor == '"' || *cursor == '\'') {
            quote = *cursor;
        } else if (*cursor == '[') {
            ++brackets;
        } else if (*cursor == ']' && brackets > 0) {
            --brackets;
        } else if (*cursor == '>' && brackets == 0) {
            return cursor + 1;
        }
    }
    return nullptr;
}

class XmlReader {
  public:
    XmlReader(InputWindow &window, Document &document, const DictionaryWatch *watch)
        : window_(window), limit_(window.end()), builder_(document), watch_(watch) {}

    std::optional<Value> Read() {
        const char *cursor = window_.begin();
        do {
            cursor = ReadWindow(cursor);
        } while (Advance(cursor));
        const bool is_whole = root_ && !in_plist_ && builder_.depth() == 0;
        if (window_.failed() || !is_whole || SkipSpace(cursor) != limit_) return std::nullopt;
        return root_;
    }

  private:
    // Reads on until something does not end in the window, and gives its beginning.
    const char *ReadWindow(const char *cursor) {
        const char *next = cursor;
        while (next != nullptr) {
            cursor = next;
            next = ReadFamiliarPair(cursor);
            if (next != nullptr) continue;
            if (!builder_.AwaitsValue()) passage_ = builder_.AwaitsSharedKey() ? cursor : nullptr;
            cursor = SkipSpace(cursor);
            next = *cursor == '<' ? ReadMarkup(cursor) : nullptr;
        }
        return cursor;
    }

    bool Advance(const char *&cursor) {
        if (!window_.Advance(cursor)) return false;
        cursor = window_.begin();
        limit_ = window_.end();
        passage_ = nullptr;
        return true;
    }

    // Takes a key and its value where both tags and all that stands around them is as it was behind the same
    // key before. Null where they are not, and where the value is damaged or incomplete: then nothing has
    // been taken.
    const char *ReadFamiliarPair(const char *cursor) {
        if (!builder_.AwaitsSharedKey()) return nullptr;
        const XmlPassage *passage = passages_.Find(builder_.LastKey(), cursor, limit_);
        if (passage == nullptr) return nullptr;
        builder_.PushSharedKey(passage->key);
        const char *next = ReadValue(passage->TagBefore(cursor + passage->size));
        if (next == nullptr) builder_.DropKey();
        return next;
    }

    // Each of these takes what begins at its place and gives the place behind it, or null.

    const char *ReadMarkup(const char *cursor) {
        switch (cursor[1]) {
            case '/':
                return CloseElement(cursor);
            case '!':
                if (!root_ && builder_.depth() == 0 && StartsWith(cursor, "<!DOCTYPE")) {
                    return SkipDoctype(cursor, limit_);
                }
                [[fallthrough]];
            case '?':
                return SkipXmlComment(cursor, limit_);
            default:
                return ReadElement(cursor + 1);
        }
    }

    const char *ReadElement(const char *name) {
        const Tag tag = ReadTag(name);
        if (tag.next == nullptr) return nullptr;
        if (tag.element == Element::kKey) return ReadKey(tag);
        if (!ExpectsValue()) return nullptr;
        if (passage_ != nullptr) RememberPassage(tag);
        return ReadValue(tag);
    }

    void RememberPassage(const Tag &tag) {
        const auto size = static_cast<size_t>(tag.next - passage_);
        passages_.Remember(builder_.LastKey(), {passage_, size}, builder_.NextKey(), tag);
        passage_ = nullptr;
    }

    const char *ReadValue(const Tag &tag) {
        switch (tag.element) {
            case Element::kString:
                return ReadString(tag);
            case Element::kInteger:
                return ReadInteger(tag);
            case Element::kReal:
                return ReadScalar<Element::kReal>(tag);
            case Element::kDate:
                return ReadScalar<Element::kDate>(tag);
            case Element::kTrue:
            case Element::kFalse:
                return ReadBoolean(tag);
            case Element::kData:
                return ReadData(tag);
            case Element::kDict:
                return OpenContainer(tag, ValueType::kDictionary);
            case Element::kArray:
                return OpenContainer(tag, ValueType::kArray);
            case Element::kPlist:
                return OpenPlist(tag);
            default:
                return nullptr;
        }
    }

    // Whether a value may stand here: in a dictionary behind a key, and but once outside of all containers.
    bool ExpectsValue() const {
        switch (builder_.container()) {
            case ValueType::kDictionary:
                return builder_.AwaitsValue();
            case ValueType::kArray:
                return true;
            default:
                return !root_;
        }
    }

    // Puts a value where one was expected.
    void Accept(const Value &value) {
        if (builder_.container() == ValueType::kNone) {
            root_ = value;
        } else {
            builder_.Push(value);
        }
    }

    XmlText TakeText(const Tag &tag, Element element) {
        if (tag.is_empty) return {{}, true, tag.next};
        return texts_.Take(tag.next, EndTag(element), limit_);
    }

    const char *ReadKey(const Tag &tag) {
        if (builder_.container() != ValueType::kDictionary || builder_.AwaitsValue()) return nullptr;
        const XmlText text = TakeText(tag, Element::kKey);
        if (text.next != nullptr) builder_.PushKey(text.text, text.is_ascii);
        return text.next;
    }

    const char *ReadString(const Tag &tag) {
        const XmlText text = TakeText(tag, Element::kString);
        if (text.next == nullptr) return nullptr;
        Accept(MakeString(builder_.document().CopyText(text.text), text.text.size(), text.is_ascii));
        return text.next;
    }

    // The usual spelling, a few decimal digits, is read without a look at where it ends.
    const char *ReadInteger(const Tag &tag) {
        const bool is_negative = *tag.next == '-';
        const char *digits = tag.next + (is_negative ? 1 : 0);
        const char *end = digits;
        const int64_t integer = TakeDigits(end, kSafeDigits);
        if (end == digits || tag.is_empty || !StartsWith(end, "</integer>"))
            return ReadScalar<Element::kInteger>(tag);
        Accept(MakeInteger(is_negative ? -integer : integer));
        return end + EndTag(Element::kInteger).size();
    }

    // A template, so that the end tag is compared as a constant.
    template <Element kElement>
    const char *ReadScalar(const Tag &tag) {
        const XmlText text = TakeText(tag, kElement);
        if (text.next == nullptr) return nullptr;
        const std::optional<Value> value = ParseScalar(kElement, text.text);
        if (!value) return nullptr;
        Accept(*value);
        return text.next;
    }

    std::optional<Value> ParseScalar(Element element, std::string_view text) {
        if (element == Element::kInteger) return ParseInteger(text, builder_.document());
        const std::optional<double> real = element == Element::kDate ? ParseDate(text) : ParseReal(text);
        if (!real) return std::nullopt;
        return element == Element::kDate ? MakeDate(*real) : MakeReal(*real);
    }

    const char *ReadBoolean(const Tag &tag) {
        const XmlText text = TakeText(tag, tag.element);
        if (text.next == nullptr || !TrimSpace(text.text).empty()) return nullptr;
        Accept(MakeBoolean(tag.element == Element::kTrue));
        return text.next;
    }

    const char *ReadData(const Tag &tag) {
        const XmlText text = TakeText(tag, Element::kData);
        if (text.next == nullptr) return nullptr;
        char *bytes = builder_.document().AllocateBytes(Base64Room(text.text.size()));
        const std::optional<size_t> size = DecodeBase64(text.text, bytes);
        if (!size) return nullptr;
        Accept(MakeData(reinterpret_cast<uint8_t *>(bytes), *size));
        return text.next;
    }

    const char *OpenContainer(const Tag &tag, ValueType type) {
        const bool begins_watch = watch_ != nullptr && builder_.depth() == 1 &&
                                  type == ValueType::kDictionary && builder_.AwaitsValue() &&
                                  TextOf(*builder_.NextKey()) == watch_->key;
        if (!builder_.Open(type)) return nullptr;
        if (begins_watch) watched_depth_ = builder_.depth();
        if (tag.is_empty) CloseContainer();
        return tag.next;
    }

    // <plist> stands around the root, or is left out altogether.
    const char *OpenPlist(const Tag &tag) {
        if (tag.is_empty || in_plist_ || builder_.depth() > 0) return nullptr;
        in_plist_ = true;
        return tag.next;
    }

    const char *CloseElement(const char *cursor) {
        if (StartsWith(cursor, "</dict>")) return Close(Element::kDict) ? cursor + 7 : nullptr;
        const char *name = cursor + 2;
        const char *tail = SkipSpace(NameEnd(name));
        return *tail == '>' && Close(ElementAt(name)) ? tail + 1 : nullptr;
    }

    bool Close(Element element) {
        switch (builder_.container()) {
            case ValueType::kDictionary:
                if (element != Element::kDict || builder_.AwaitsValue()) return false;
                break;
            case ValueType::kArray:
                if (element != Element::kArray) return false;
                break;
            default:
                if (element != Element::kPlist || !in_plist_ || !root_) return false;
                in_plist_ = false;
                return true;
        }
        CloseContainer();
        return true;
    }

    void CloseContainer() {
        const size_t depth = builder_.depth();
        Accept(builder_.Close());
        if (depth == watched_depth_) {
            watch_ = nullptr;
            watched_depth_ = kNoDepth;
        } else if (depth == watched_depth_ + 1) {
            watch_->on_entry({builder_.LastKey(), builder_.LastValue()});
        }
    }

    static constexpr size_t kNoDepth = std::numeric_limits<size_t>::max() - 1;

    InputWindow &window_;
    const char *limit_;  // the end of the window
    TreeBuilder builder_;
    XmlTextReader texts_;
    XmlPassages passages_;
    const char *passage_ = nullptr;  // where the one began that is being read; null: it cannot be remembered
    std::optional<Value> root_;
    bool in_plist_ = false;
    const DictionaryWatch *watch_;  // null: nothing to be told, or no more
    size_t watched_depth_ = kNoDepth;
};

}  // namespace

bool LooksLikeXml(std::string_view text) {
    if (text.size() < 2 || text[0] != '<') return false;
    if (text[1] == '?' || text[1] == '!') return true;
    size_t end = 1;
    while (end < text.size() && text[end] >= 'a' && text[end] <= 'z')
        ++end;
    return ElementOf(text.substr(1, end - 1)) != Element::kUnknown;
}

std::optional<Value> ReadXml(InputWindow &window, Document &document, const DictionaryWatch *watch) {
    return XmlReader(window, document, watch).Read();
}

}  // namespace core_foundation
