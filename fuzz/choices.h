#ifndef FUZZ_CHOICES_H
#define FUZZ_CHOICES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Takes decisions off an input, front to back, for targets that build something of it. Behind the end every
// number is 0 and every text is empty.
class Choices {
  public:
    explicit Choices(std::string_view bytes) : rest_(bytes) {}

    bool AtEnd() const { return rest_.empty(); }
    std::string_view Rest() const { return rest_; }

    uint64_t Number(int bytes) {
        uint64_t number = 0;
        for (; bytes > 0; --bytes)
            number = number << 8 | static_cast<unsigned char>(Byte());
        return number;
    }
    // 0 to `count` - 1.
    size_t Below(size_t count) { return count < 2 ? 0 : Number(count > 256 ? 2 : 1) % count; }
    bool Flag() { return Below(2) != 0; }
    // Up to 255 bytes, behind a byte that tells how many.
    std::string Text() { return Take(Number(1)); }
    // The same up to 65,535 bytes.
    std::string LongText() { return Take(Number(2)); }

  private:
    char Byte() {
        if (rest_.empty()) return '\0';
        const char byte = rest_.front();
        rest_.remove_prefix(1);
        return byte;
    }
    std::string Take(size_t size) {
        std::string text(rest_.substr(0, size));
        rest_.remove_prefix(text.size());
        return text;
    }

    std::string_view rest_;
};

#endif
