#ifndef HOST_COPY_FAILURE_H
#define HOST_COPY_FAILURE_H

#include <string>

#include "host/add_plan.h"
#include "host/copy_batch.h"

namespace velmarhost {

// Why a file that was to be added cannot be opened, by errno; completes a sentence that begins with the file.
std::string OpenFailure(int error);

// Why a copy failed and what to do next, in the same form.
std::string ExplainFailure(const LibrarySession &session, const PlannedCopy &copy,
                           const CopyOutcome &outcome);

}  // namespace velmarhost

#endif
