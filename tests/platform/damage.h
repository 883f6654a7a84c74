#ifndef TESTS_PLATFORM_DAMAGE_H
#define TESTS_PLATFORM_DAMAGE_H

#include <algorithm>
#include <random>
#include <string>

// Seeded damage to the bytes of a file.
class Damage {
  public:
    explicit Damage(unsigned seed) : random_(seed) {}

    // The bytes with one to three damages.
    std::string Of(std::string bytes) {
        for (size_t count = 1 + Below(3); count > 0 && !bytes.empty(); --count)
            DamageOnce(bytes);
        return bytes;
    }

  private:
    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random_); }

    void DamageOnce(std::string &bytes) {
        const size_t place = Below(bytes.size());
        const size_t kind = Below(5);
        if (kind == 0) bytes[place] = static_cast<char>(Below(256));
        if (kind == 1) bytes[place] = static_cast<char>(bytes[place] ^ (1 << Below(8)));
        if (kind == 2) bytes.erase(place, 1 + Below(8));
        if (kind == 3) bytes.insert(place, bytes.substr(Below(bytes.size()), 1 + Below(40)));
        // A number that is extreme wherever it is taken for one.
        if (kind == 4) {
            const size_t size = std::min<size_t>(4, bytes.size() - place);
            bytes.replace(place, size, std::string(size, Below(2) == 0 ? '\xFF' : '\0'));
        }
    }

    std::mt19937 random_;
};

#endif
