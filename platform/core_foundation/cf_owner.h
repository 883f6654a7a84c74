#ifndef PLATFORM_CORE_FOUNDATION_CF_OWNER_H
#define PLATFORM_CORE_FOUNDATION_CF_OWNER_H

#include <memory>

#include "platform/core_foundation/core_foundation.h"

struct CFReleaser {
    void operator()(const void *value) const { CFRelease(value); }
};

// One reference to a property-list value, released at the end of the scope.
using CFOwner = std::unique_ptr<const void, CFReleaser>;

#endif
