#ifndef PLATFORM_MEMORY_PAGES_H
#define PLATFORM_MEMORY_PAGES_H

#include <cstddef>

// Memory straight from the system, which has it back as soon as it is released: for the blocks of a library,
// of which there are hundreds of megabytes for a while. Large pages are not asked for: they save a tenth of a
// load where the system has them at hand, and cost half a load where a virtual machine has to fetch them
// first.

// Zeroed, or null. `bytes` is not 0, and the same in both calls. The pages of a block of usual size, which is
// filled as soon as it is there, are fetched at once.
void *MapPages(size_t bytes);
void UnmapPages(void *memory, size_t bytes);

#endif
