// Libraries for the target that calls the exports, as its input decides.
#ifndef FUZZ_CHOSEN_LIBRARY_H
#define FUZZ_CHOSEN_LIBRARY_H

#include "fixtures/library_place.h"
#include "fuzz/choices.h"

// Writes the library XML of the place: tracks and lists with keys that the driver knows, and values of any
// kind.
void WriteChosenLibrary(const LibraryPlace &place, Choices &choices);

// Writes, changes or deletes one file of the media folder.
void ChangeMediaFile(const LibraryPlace &place, Choices &choices);

// The bytes of a small media file, book or application, or any bytes.
std::string ChosenMediaBytes(Choices &choices);

#endif
