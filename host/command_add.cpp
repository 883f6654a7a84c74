#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/add_plan.h"
#include "host/add_receipt.h"
#include "host/added_names.h"
#include "host/cleanup.h"
#include "host/commands.h"
#include "host/copy_batch.h"
#include "host/copy_failure.h"
#include "host/file_owner.h"
#include "host/json_output.h"
#include "host/progress.h"
#include "host/standard_input.h"
#include "host/waiting_files.h"

namespace velmarhost {
namespace {

class Adder {
  public:
    // `input` is null where nothing is to come from there.
    Adder(const Options &options, LibrarySession &session, const AddPlan &plan, const MeasuredInput *input)
        : session_(session),
          plan_(plan),
          input_(input),
          receipts_(plan.copies.size()),
          progress_(WantsProgress() && !options.verbose, plan.copies.size(), plan.total_bytes) {}

    // The receipts, in the order of the plan. A signal that comes meanwhile stops it and is told by `stop`.
    std::vector<AddReceipt> Run(StopRequest &stop) {
        const std::vector<WaitingFile> before = ListWaitingFiles(session_);
        {
            CopyBatch batch(session_, [&](uint64_t bytes) {
                progress_.AddBytes(bytes - std::exchange(file_bytes_, bytes));
                return stop.signal() == 0;
            });
            for (std::size_t i = 0; i < plan_.copies.size(); ++i)
                CopyOne(batch, i);
            progress_.Clear();
        }
        NameCopies(before);
        return std::move(receipts_);
    }

  private:
    void CopyOne(CopyBatch &batch, std::size_t index) {
        const PlannedCopy &copy = plan_.copies[index];
        AddReceipt &receipt = receipts_[index];
        receipt.source = copy.shown;
        receipt.bytes = copy.bytes;
        receipt.problem = copy.problem;
        if (!copy.problem.empty()) return;
        if (disk_full_) {
            receipt.problem = "was not tried, as the disk is full";
            return;
        }
        progress_.BeginFile(copy.shown);
        file_bytes_ = 0;
        Settle(copy, Send(batch, copy, receipt), receipt);
        progress_.EndFile(copy.bytes);
    }

    // Empty when the host itself could not open the file; the receipt tells why.
    std::optional<CopyOutcome> Send(CopyBatch &batch, const PlannedCopy &copy, AddReceipt &receipt) {
        if (!copy.through_host) return batch.CopyFile(copy.tree_path, copy.file.string(), copy.bytes);
        if (copy.file.empty())
            return batch.CopyStream(copy.tree_path, copy.name, input_->stream(), copy.bytes);
        const FileOwner file = OpenToRead(copy.file);
        if (file) return batch.CopyStream(copy.tree_path, copy.name, file.get(), copy.bytes);
        receipt.problem = OpenFailure(errno);
        return std::nullopt;
    }

    void Settle(const PlannedCopy &copy, const std::optional<CopyOutcome> &outcome, AddReceipt &receipt) {
        if (!outcome) return;
        if (outcome->end == CopyEnd::kAdded) {
            receipt.result = AddResult::kAdded;
        } else if (outcome->end == CopyEnd::kStopped) {
            receipt.result = AddResult::kInterrupted;
            receipt.problem = outcome->bytes > 0 ? "was interrupted; nothing of it stays" : "was not tried";
        } else {
            receipt.problem = ExplainFailure(session_, copy, *outcome);
            disk_full_ = outcome->error == kTargetFull;
        }
    }

    // The driver does not tell which name a file got, but what waits in the folder now does.
    void NameCopies(const std::vector<WaitingFile> &before) {
        std::vector<CopiedFile> copied;
        std::vector<AddReceipt *> added;
        for (std::size_t i = 0; i < receipts_.size(); ++i) {
            if (receipts_[i].result != AddResult::kAdded) continue;
            copied.push_back({plan_.copies[i].name, plan_.copies[i].bytes});
            added.push_back(&receipts_[i]);
        }
        if (copied.empty()) return;
        const std::vector<WaitingFile> after = ListWaitingFiles(session_);
        const std::vector<std::optional<std::size_t>> found = FindCopies(copied, before, after);
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (!found[i]) continue;
            const WaitingFile &file = after[*found[i]];
            added[i]->name = file.name;
            added[i]->path = file.path;
            added[i]->location = file.location;
        }
    }

    LibrarySession &session_;
    const AddPlan &plan_;
    const MeasuredInput *input_;
    std::vector<AddReceipt> receipts_;
    Progress progress_;
    uint64_t file_bytes_ = 0;  // of the running copy
    bool disk_full_ = false;
};

// Reads standard input if the plan wants it, and completes the plan.
std::unique_ptr<MeasuredInput> MeasureInput(AddPlan &plan) {
    std::unique_ptr<MeasuredInput> input;
    for (PlannedCopy &copy : plan.copies) {
        if (!copy.file.empty() || !copy.problem.empty()) continue;
        input = std::make_unique<MeasuredInput>();
        copy.bytes = input->bytes();
        if (copy.bytes == 0) copy.problem = "is empty";
        plan.total_bytes += copy.bytes;
    }
    return input;
}

bool HasProblem(const PlannedCopy &copy) {
    return !copy.problem.empty();
}

// What can be told without a copy.
std::vector<AddReceipt> ReceiptsOfPlan(const AddPlan &plan) {
    std::vector<AddReceipt> receipts;
    for (const PlannedCopy &copy : plan.copies) {
        receipts.push_back(
            {.source = copy.shown, .name = copy.name, .bytes = copy.bytes, .problem = copy.problem});
        if (!HasProblem(copy)) receipts.back().result = AddResult::kWouldAdd;
    }
    return receipts;
}

void WriteReceipts(const Options &options, const AddPlan &plan, const std::vector<AddReceipt> &receipts,
                   Output &output) {
    if (options.json) {
        WriteJsonReceipts(receipts, output);
    } else {
        for (const AddReceipt &receipt : receipts) {
            output.Text(ReceiptLine(receipt));
            output.Raw("\n");
        }
    }
    output.Flush();
    for (const std::string &line : AddSummary(receipts, plan.passed_over, options.verbose))
        PrintMessage(line);
}

}  // namespace

ExitCode RunAdd(const Options &options, LibrarySession &session, Output &output) {
    AddPlan plan = PlanAdd(options);
    std::vector<AddReceipt> receipts;
    int signal = 0;
    const auto input = options.dry_run ? nullptr : MeasureInput(plan);
    // Without anything to copy there is no batch, which takes a second at least.
    if (options.dry_run || std::all_of(plan.copies.begin(), plan.copies.end(), HasProblem)) {
        receipts = ReceiptsOfPlan(plan);
    } else {
        StopRequest stop;
        receipts = Adder(options, session, plan, input.get()).Run(stop);
        stop.Release();
        signal = stop.signal();
    }
    WriteReceipts(options, plan, receipts, output);
    if (signal != 0) throw Interrupted(signal);
    return AddExitCode(receipts);
}

}  // namespace velmarhost
