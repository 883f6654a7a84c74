#include "platform/windows/file_transfer.h"

#include <unistd.h>

size_t TransferBytes(FILE *source, FILE *target, size_t count) {
    size_t moved = 0;
    while (moved < count) {
        const ssize_t step =
            copy_file_range(fileno(source), nullptr, fileno(target), nullptr, count - moved, 0);
        if (step <= 0) break;
        moved += static_cast<size_t>(step);
    }
    return moved;
}
