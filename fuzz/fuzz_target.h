// What every fuzz target consists of.
#ifndef FUZZ_FUZZ_TARGET_H
#define FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// Runs one input. A fault ends the process, as a sanitizer does or Require.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size);

// Inputs that reach as much as a fault-free file does, for the fuzzer to begin with.
std::vector<std::string> FuzzSeeds();

// libFuzzer's own changes of bytes, for the mutators of targets. Gives the new size.
extern "C" size_t LLVMFuzzerMutate(uint8_t *bytes, size_t size, size_t most);

inline std::string_view AsText(const uint8_t *bytes, size_t size) {
    return {reinterpret_cast<const char *>(bytes), size};
}

// A promise that does not hold ends the process, so that the input is kept.
inline void Require(bool holds, const char *promise) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

// Texts that the driver makes are followed by a NUL.
inline void RequireTerminated(std::string_view text) {
    Require(text.data()[text.size()] == '\0', "a text is followed by a NUL");
}

// Puts a mutator's result into libFuzzer's room; one that does not fit is cut.
inline size_t Store(std::string_view result, uint8_t *bytes, size_t most) {
    const size_t size = result.size() < most ? result.size() : most;
    std::memcpy(bytes, result.data(), size);
    return size;
}

// One change of libFuzzer to a piece of an input.
inline std::string Mutated(std::string piece, size_t most_added = 64) {
    const size_t size = piece.size();
    piece.resize(size + most_added);
    piece.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t *>(piece.data()), size, piece.size()));
    return piece;
}

#endif
