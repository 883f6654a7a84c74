/* The boundary as a host in C sees it: the header compiles as C, and one round through the exports works. */
#include <stdio.h>
#include <string.h>

#include "driver/itunes_driver.h"

_Static_assert(sizeof(CopyProgress) == 32, "eight 32-bit words");
_Static_assert(sizeof(DriverStartupRecord) == 16, "four 32-bit words");

#define CHECK(condition)                                                     \
    do {                                                                     \
        if (!(condition)) {                                                  \
            fprintf(stderr, "line %d: %s is false\n", __LINE__, #condition); \
            return 1;                                                        \
        }                                                                    \
    } while (0)

int main(void) {
    LibraryDriver *driver = NULL;
    DriverPath *path = NULL;
    DriverStream *stream = NULL;
    DriverPathInfo info;
    void *name = NULL;
    char text[256];
    char bytes[4];

    CHECK(InitializeDriverPath(NULL, NULL, 0, &driver) == 0);
    CHECK(OpenDriverPath(driver, 0, "library/music", &path) == 0);
    CHECK(GetDriverPathInfo(path, &info) == 0);
    CHECK(info.kind == 1 && info.category == 2 && info.subcategory == 20);
    CHECK(strcmp(info.open_path, "library/music") == 0);
    CHECK(GetVelmarArrayItem(info.names, 0, &name) == 0);
    snprintf(text, sizeof text, "library/music/%s", (const char *)name);
    CHECK(CloseDriverPath(path) == 0);

    CHECK(OpenDriverStream(driver, 0, text, &stream) == 0);
    CHECK(ReadDriverStream(stream, bytes, 4) == 4);
    CHECK(SeekDriverStream(stream, 0, 0) == 0);
    CHECK(CloseDriverStream(stream) == 0);
    CHECK(UninitializeDriverPath(driver) == 0);
    puts("the C host is content");
    return 0;
}
