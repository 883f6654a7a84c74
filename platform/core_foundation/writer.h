// The three writers. Each appends a whole list to `out`; false if the list holds what the format cannot.
#ifndef PLATFORM_CORE_FOUNDATION_WRITER_H
#define PLATFORM_CORE_FOUNDATION_WRITER_H

#include <string>

#include "platform/core_foundation/value.h"

namespace core_foundation {

bool WriteXml(const Value &root, std::string &out);
bool WriteBinary(const Value &root, std::string &out);
bool WriteOldStyle(const Value &root, std::string &out);

}  // namespace core_foundation

#endif
