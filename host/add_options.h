#ifndef HOST_ADD_OPTIONS_H
#define HOST_ADD_OPTIONS_H

#include "host/options.h"

namespace velmarhost {

// Checks what the command "add" was given, and sets what follows from it. Throws HostError with code kUsage.
void CompleteAddOptions(Options &options);

}  // namespace velmarhost

#endif
