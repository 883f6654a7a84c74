#include "host/add_receipt.h"

#include <algorithm>
#include <array>

#include "host/text.h"

namespace velmarhost {
namespace {

bool IsGood(const AddReceipt &receipt) {
    return receipt.result == AddResult::kAdded || receipt.result == AddResult::kWouldAdd;
}

std::string AddedLine(const AddReceipt &receipt) {
    if (receipt.name.empty())
        return "added      " + receipt.source +
               ", which does not show in the tree: iTunes may have taken it already";
    return "added      " + receipt.source + " as " + receipt.name +
           (receipt.path.empty() ? "" : ", now " + receipt.path);
}

}  // namespace

std::string_view ResultWord(AddResult result) {
    constexpr std::array<std::string_view, 4> kWords = {"added", "would-add", "failed", "interrupted"};
    return kWords.at(static_cast<std::size_t>(result));
}

std::string ReceiptLine(const AddReceipt &receipt) {
    switch (receipt.result) {
        case AddResult::kAdded:
            return AddedLine(receipt);
        case AddResult::kWouldAdd:
            return "would add  " + receipt.source + " as " + receipt.name;
        case AddResult::kFailed:
        case AddResult::kInterrupted:
            break;
    }
    return "not added  " + receipt.source + ": " + receipt.problem;
}

std::vector<std::string> AddSummary(const std::vector<AddReceipt> &receipts,
                                    const std::map<std::string, std::vector<std::string>> &passed_over,
                                    bool all) {
    std::size_t good = 0;
    uint64_t bytes = 0;
    bool dry = false;
    for (const AddReceipt &receipt : receipts) {
        dry = dry || receipt.result == AddResult::kWouldAdd;
        if (!IsGood(receipt)) continue;
        ++good;
        bytes += receipt.bytes;
    }
    std::vector<std::string> lines = {(dry ? "would add " : "added ") + FormatCount(good, "file", "files") +
                                      " (" + FormatSize(bytes) + ")"};
    if (good < receipts.size()) lines.front() += ", " + std::to_string(receipts.size() - good) + " not";
    for (const auto &[reason, paths] : passed_over) {
        lines.push_back("  passed over " + FormatCount(paths.size(), "entry", "entries") + ": " + reason);
        if (!all) continue;
        for (const std::string &path : paths)
            lines.push_back("    " + path);
    }
    return lines;
}

ExitCode AddExitCode(const std::vector<AddReceipt> &receipts) {
    return std::all_of(receipts.begin(), receipts.end(), IsGood) ? ExitCode::kOk : ExitCode::kIncomplete;
}

}  // namespace velmarhost
