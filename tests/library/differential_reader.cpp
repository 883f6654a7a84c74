#include "tests/library/differential_reader.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string_view>

namespace {

std::string Utf8(unsigned long point) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80U | (point >> shift & 0x3FU)); };
    if (point < 0x80) return {static_cast<char>(point)};
    if (point < 0x800) return {static_cast<char>(0xC0U | point >> 6), tail(0)};
    if (point < 0x10000) return {static_cast<char>(0xE0U | point >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0U | point >> 18), tail(12), tail(6), tail(0)};
}

// `name` is what stands between "&" and ";".
std::string Reference(const std::string &name) {
    if (name == "amp") return "&";
    if (name == "lt") return "<";
    if (name == "gt") return ">";
    if (name == "quot") return "\"";
    if (name == "apos") return "'";
    if (name.starts_with("#x")) return Utf8(std::stoul(name.substr(2), nullptr, 16));
    if (name.starts_with("#")) return Utf8(std::stoul(name.substr(1)));
    throw std::runtime_error("unknown reference " + name);
}

class SlowReader {
  public:
    explicit SlowReader(const std::string &xml) : xml_(xml) {}

    SlowValue ReadRoot() {
        while (NextTag() != "plist version=\"1.0\"") {
        }
        return ReadValue(NextTag());
    }

  private:
    // What stands between the next "<" and its ">".
    std::string NextTag() {
        const std::size_t start = Find("<");
        position_ = start;
        const std::size_t end = Find(">");
        position_ = end + 1;
        return xml_.substr(start + 1, end - start - 1);
    }

    std::size_t Find(std::string_view what) const {
        const std::size_t found = xml_.find(what, position_);
        if (found == std::string::npos) throw std::runtime_error("no " + std::string(what));
        return found;
    }

    std::string ReadUntil(std::string_view end) {
        const std::size_t found = Find(end);
        std::string text = xml_.substr(position_, found - position_);
        position_ = found + end.size();
        return text;
    }

    // The characters of an element up to its end tag, which is passed over.
    std::string ReadText(const std::string &element) {
        std::string text;
        for (;;) {
            const char c = xml_.at(position_);
            if (xml_.compare(position_, 9, "<![CDATA[") == 0) {
                position_ += 9;
                text += ReadUntil("]]>");
            } else if (c == '<') {
                if (NextTag() != "/" + element) throw std::runtime_error("unexpected tag in " + element);
                return text;
            } else if (c == '&') {
                ++position_;
                text += Reference(ReadUntil(";"));
            } else {
                text += c;
                ++position_;
            }
        }
    }

    SlowValue ReadValue(const std::string &tag) {
        SlowValue value;
        value.element = tag.ends_with("/") ? tag.substr(0, tag.size() - 1) : tag;
        if (tag.ends_with("/")) return value;
        if (tag != "dict" && tag != "array") {
            value.text = ReadText(tag);
            return value;
        }
        for (std::string inner = NextTag(); inner != "/" + tag; inner = NextTag()) {
            if (tag == "dict") {
                value.keys.push_back(ReadText("key"));
                inner = NextTag();
            }
            value.items.push_back(ReadValue(inner));
        }
        return value;
    }

    const std::string &xml_;
    std::size_t position_ = 0;
};

std::optional<std::string> IntegerText(const std::string &digits) {
    errno = 0;
    const long long number = std::strtoll(digits.c_str(), nullptr, 10);
    if (errno == ERANGE) return std::nullopt;
    return std::to_string(number);
}

std::optional<std::string> RealText(const std::string &digits) {
    const double number = std::strtod(digits.c_str(), nullptr);
    if (number != std::floor(number) || std::abs(number) >= 0x1p63) return std::nullopt;
    return std::to_string(static_cast<long long>(number));
}

// The fields are those of UTC, read as if they were local time; moments before 1970 have no number but -1.
std::string DateText(const std::string &moment) {
    std::tm fields{};
    if (std::sscanf(moment.c_str(), "%d-%d-%dT%d:%d:%dZ", &fields.tm_year, &fields.tm_mon, &fields.tm_mday,
                    &fields.tm_hour, &fields.tm_min, &fields.tm_sec) != 6) {
        throw std::runtime_error("no date: " + moment);
    }
    fields.tm_year -= 1900;
    fields.tm_mon -= 1;
    return std::to_string(std::max<std::time_t>(-1, std::mktime(&fields)));
}

// Base64 in a file is broken into lines; an attribute has it in one piece.
std::string DataText(std::string digits) {
    std::erase_if(digits, [](char c) { return c == ' ' || c == '\n' || c == '\t'; });
    return digits;
}

}  // namespace

const SlowValue *SlowValue::Find(const std::string &key) const {
    if (element != "dict") return nullptr;
    const auto found = std::find(keys.begin(), keys.end(), key);
    return found == keys.end() ? nullptr : &items[static_cast<std::size_t>(found - keys.begin())];
}

SlowValue ReadSlowPropertyList(const std::string &xml) {
    return SlowReader(xml).ReadRoot();
}

std::optional<std::string> SlowText(const SlowValue *value) {
    if (value == nullptr) return std::nullopt;
    if (value->element == "integer") return IntegerText(value->text);
    if (value->element == "real") return RealText(value->text);
    if (value->element == "true" || value->element == "false") return value->element;
    if (value->element == "date") return DateText(value->text);
    if (value->element == "data") return DataText(value->text);
    if (value->element == "string" && !value->text.empty()) return value->text;
    return std::nullopt;
}

std::string SlowPath(const std::string &url) {
    std::string rest = url;
    for (const std::string prefix : {"file://localhost/", "file:///"}) {
        if (url.starts_with(prefix)) {
            rest = url.substr(prefix.size());
            break;
        }
    }
    std::string path;
    while (!rest.empty()) {
        std::size_t used = 1;
        if (rest[0] != '%') {
            path += rest[0];
        } else if (rest.starts_with("%%")) {
            path += '%';
            used = 2;
        } else if (rest.size() < 3) {
            break;
        } else {
            path += static_cast<char>(std::strtoul(rest.substr(1, 2).c_str(), nullptr, 16));
            used = 3;
        }
        rest.erase(0, used);
    }
    // Attribute values are texts that end at the first zero.
    return path.substr(0, path.find('\0'));
}
