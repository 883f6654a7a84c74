#ifndef HOST_ADD_RECEIPT_H
#define HOST_ADD_RECEIPT_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_error.h"

namespace velmarhost {

enum class AddResult { kAdded, kWouldAdd, kFailed, kInterrupted };

// "added", "would-add", "failed", "interrupted".
std::string_view ResultWord(AddResult result);

// What became of one file that was to be added. A text is empty where there is nothing to tell.
struct AddReceipt {
    std::string source{};  // as the user named it
    AddResult result = AddResult::kFailed;
    std::string name{};      // in the add folder; of a file that would be added, the one to ask for
    std::string path{};      // in the tree
    std::string location{};  // of the added file
    uint64_t bytes = 0;
    std::string problem{};  // completes a sentence that begins with the source
};

std::string ReceiptLine(const AddReceipt &receipt);

// Counts, and what folders hold besides; with `all` each of that.
std::vector<std::string> AddSummary(const std::vector<AddReceipt> &receipts,
                                    const std::map<std::string, std::vector<std::string>> &passed_over,
                                    bool all);

// kOk when every file was added, or would be.
ExitCode AddExitCode(const std::vector<AddReceipt> &receipts);

}  // namespace velmarhost

#endif
