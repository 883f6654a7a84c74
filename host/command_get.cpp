#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/commands.h"
#include "host/get_plan.h"
#include "host/get_report.h"
#include "host/progress.h"
#include "host/target_file.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

constexpr int32_t kChunkBytes = 256 * 1024;

// Failures of the target that every further file would meet as well.
bool EndsEverything(const std::error_code &error) {
    return error == std::errc::no_space_on_device || error == std::errc::read_only_file_system;
}

class Getter {
  public:
    Getter(const Options &options, LibrarySession &session, const GetPlan &plan)
        : options_(options),
          session_(session),
          plan_(plan),
          progress_(WantsProgress() && !options.verbose, plan.files.size(), plan.total_bytes),
          buffer_(kChunkBytes) {}

    ExitCode Run() {
        for (const PassedOver &entry : plan_.passed_over) {
            report_.AddProblem(std::string(ReachWords(entry.reason)), entry.path);
        }
        MakeFolders();
        for (const PlannedFile &file : plan_.files) {
            if (stopped_) break;
            progress_.BeginFile(file.name);
            GetOne(file);
            progress_.EndFile(file.size.value_or(0));
        }
        progress_.Clear();
        for (const std::string &line : report_.Lines(options_.verbose))
            PrintMessage(line);
        return report_.Result();
    }

  private:
    void MakeFolders() {
        for (const fs::path &folder : plan_.folders) {
            std::error_code error;
            fs::create_directories(folder, error);
            if (error) Fail("the folder could not be made: " + error.message(), folder.string(), error);
        }
    }

    void GetOne(const PlannedFile &file) {
        const fs::path target = plan_.folders[file.folder] / file.name;
        const Existing existing = LookAtTarget(target, file.size, file.modified);
        if (existing == Existing::kNothing || options_.overwrite) {
            Fetch(file, target);
        } else if (existing == Existing::kSame) {
            report_.AddAlreadyThere();
        } else {
            report_.AddProblem("another file has the name already; --overwrite replaces it", target.string());
        }
    }

    void Fetch(const PlannedFile &file, const fs::path &target) {
        StreamFailure failure;
        const std::unique_ptr<MediaStream> stream = session_.OpenStream(file.path, failure);
        if (!stream) return TellWhyNotOpened(file, failure);
        try {
            Copy(*stream, file, target);
        } catch (const std::system_error &error) {
            Fail("could not be written: " + error.code().message(), target.string(), error.code());
        }
    }

    void Copy(MediaStream &stream, const PlannedFile &file, const fs::path &target) {
        TargetFile copy(target.parent_path());
        uint64_t bytes = 0;
        while (true) {
            const int32_t count = stream.Read(buffer_.data(), kChunkBytes);
            if (count == 0) break;
            if (count < 0 || count > kChunkBytes)
                return report_.AddProblem("could not be read to the end", file.path);
            copy.Write({buffer_.data(), static_cast<std::size_t>(count)});
            bytes += static_cast<uint64_t>(count);
            progress_.AddBytes(static_cast<uint64_t>(count));
        }
        copy.Finish(target, file.modified);
        report_.AddGot(bytes);
        // A stream has no way to tell a failing disk from the end of the file.
        if (bytes < file.size.value_or(0))
            report_.AddProblem("shorter than the library says; look at it", target.string());
    }

    void TellWhyNotOpened(const PlannedFile &file, const StreamFailure &failure) {
        constexpr int32_t kNotPacked = -2;
        if (file.location.empty()) {
            report_.AddProblem("no file on this machine (kept in the cloud, or lost)", file.path);
        } else if (failure.result == kNotPacked) {
            report_.AddProblem("a folder that could not be packed", file.path);
        } else {
            report_.AddNotFound(file.path, file.location);
        }
    }

    void Fail(const std::string &reason, const std::string &path, const std::error_code &error) {
        report_.AddProblem(reason, path);
        stopped_ = stopped_ || EndsEverything(error);
    }

    const Options &options_;
    LibrarySession &session_;
    const GetPlan &plan_;
    GetReport report_;
    Progress progress_;
    std::vector<char> buffer_;
    bool stopped_ = false;
};

}  // namespace

ExitCode RunGet(const Options &options, LibrarySession &session, Output &) {
    const GetPlan plan = PlanGet(session, options);
    return Getter(options, session, plan).Run();
}

}  // namespace velmarhost
