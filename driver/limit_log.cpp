#include "driver/limit_log.h"

#include "driver/driver_log.h"

LimitLog::~LimitLog() {
    const Limit limit = TakeHitLimit();
    if (limit.name != nullptr) {
        WriteDriverLog("More than %llu %s: \"%s\"", static_cast<unsigned long long>(limit.value), limit.name,
                       path_.c_str());
    }
    hit_limit = outer_;
}
