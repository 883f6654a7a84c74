#ifndef TESTS_SUPPORT_SAMPLE_LOOSE_FILES_H
#define TESTS_SUPPORT_SAMPLE_LOOSE_FILES_H

#include "tests/support/library_place.h"

// The files of the sample library that the library XML does not name: ringtones, books, applications, a film,
// and what waits in the folder "Automatically Add to iTunes".
void WriteLooseFiles(const LibraryPlace &place);

#endif
