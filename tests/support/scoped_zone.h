#ifndef TESTS_SUPPORT_SCOPED_ZONE_H
#define TESTS_SUPPORT_SCOPED_ZONE_H

#include <optional>

#include "platform/windows/windows_api.h"
#include "tests/support/scoped_environment.h"

// The zone of local time, for a scope.
class ScopedZone {
  public:
    explicit ScopedZone(const char *zone) : environment_(std::in_place, "TZ", zone) { _tzset(); }
    ~ScopedZone() {
        environment_.reset();
        _tzset();
    }
    ScopedZone(const ScopedZone &) = delete;
    ScopedZone &operator=(const ScopedZone &) = delete;

  private:
    std::optional<ScopedEnvironment> environment_;
};

#endif
