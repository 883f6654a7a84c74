#ifndef PLATFORM_WINDOWS_FILE_TRANSFER_H
#define PLATFORM_WINDOWS_FILE_TRANSFER_H

#include <cstddef>
#include <cstdio>

// Moves up to `count` bytes from where one file stands to where another stands, inside the system and without
// a way through this process. Both files must be unbuffered. Gives the number of bytes moved, which may be
// less for any reason, the end of the source and a full disk among them: whoever goes on by reading and
// writing learns it.
size_t TransferBytes(FILE *source, FILE *target, size_t count);

#endif
