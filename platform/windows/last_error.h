#ifndef PLATFORM_WINDOWS_LAST_ERROR_H
#define PLATFORM_WINDOWS_LAST_ERROR_H

#include "platform/windows/windows_api.h"

// The Windows error that tells the same as an errno value; ERROR_GEN_FAILURE where none does.
DWORD WindowsError(int error_number);

// The usual end of a call: sets the last error from errno unless it succeeded.
BOOL Succeeded(bool success);

// As Succeeded(false), with an error of the layer's own.
BOOL FailWith(DWORD error);

#endif
