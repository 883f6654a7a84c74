#ifndef TESTS_LIBRARY_DIFFERENTIAL_GENERATOR_H
#define TESTS_LIBRARY_DIFFERENTIAL_GENERATOR_H

#include <cstdint>
#include <string>

// The XML of a small library that no real program would write but every reader must take: any subset of keys
// with values of any type, odd characters in every spelling, lists of any kind, at any place, with any items.
// One seed, one library. All tracks stand in the master list, so that a host can reach each of them.
std::string GenerateOddLibrary(std::uint64_t seed);

#endif
