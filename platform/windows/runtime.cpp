#include <glib.h>

#include <cstring>

#include "platform/windows/windows_api.h"

int _fseeki64(FILE *file, int64_t offset, int origin) {
    return fseeko(file, offset, origin);
}

int64_t _ftelli64(FILE *file) {
    return ftello(file);
}

// Letters beyond ASCII differ, as in the runtime's own default locale.
int _stricmp(const char *left, const char *right) {
    return g_ascii_strcasecmp(left, right);
}

char *_strdup(const char *text) {
    return strdup(text);
}
