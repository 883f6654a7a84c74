// The bytes of the pictures in the fake tree, as the tests expect to get them.
#ifndef TESTS_HOST_FAKE_PICTURES_H
#define TESTS_HOST_FAKE_PICTURES_H

#include <array>
#include <cstddef>
#include <string>

// Six pixels in two columns and three rows: red, green, blue, alpha.
using FakePixel = std::array<unsigned char, 4>;
inline constexpr std::array<FakePixel, 6> kFakePixels = {
    {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}, {1, 2, 3, 255}, {200, 150, 100, 7}, {9, 8, 7, 0}}};

// Where the colours of a pixel lie: for each of its four bytes the index in FakePixel.
using FakeOrder = std::array<std::size_t, 4>;
inline constexpr FakeOrder kAlphaFirst = {3, 0, 1, 2};
inline constexpr FakeOrder kBlueFirst = {2, 1, 0, 3};

inline std::string FakePixels(const FakeOrder &order) {
    std::string bytes;
    for (const FakePixel &pixel : kFakePixels) {
        for (const std::size_t index : order)
            bytes += static_cast<char>(pixel[index]);
    }
    return bytes;
}

// No real pictures: the host looks at their first bytes only.
inline std::string FakePng(const std::string &text) {
    return "\x89PNG\r\n\x1A\n" + text;
}
inline std::string FakeJpeg() {
    return "\xFF\xD8\xFF\xE0 cover";
}

#endif
