#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/commands.h"
#include "host/get_plan.h"
#include "host/get_report.h"
#include "host/progress.h"
#include "host/target_file.h"
#include "host/thumbnail.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

constexpr int32_t kChunkBytes = 256 * 1024;

// Failures of the target that every further file would meet as well.
bool EndsEverything(const std::error_code &error) {
    return error == std::errc::no_space_on_device || error == std::errc::read_only_file_system;
}

struct Cover {
    std::string bytes;
    std::string extension;
};

// The largest picture of a file, as a file that any program can show. Throws HostError.
Cover ReadCover(LibrarySession &session, const std::string &path) {
    Picture picture = ReadThumbnail(session, path, std::nullopt);
    const PictureFormat format = FormatOf(picture);
    if (IsRaw(format)) return {AsPng(picture), ".png"};
    const std::string_view extension = FormatExtension(format);
    if (extension.empty()) {
        throw HostError(ExitCode::kIncomplete, "\"" + picture.path + "\" is no picture of a known format");
    }
    return {std::move(picture.bytes), std::string(extension)};
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
            if (GetOne(file) && !file.cover.empty()) GetCover(file);
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

    // True when the file is on the disk now.
    bool GetOne(const PlannedFile &file) {
        const fs::path target = plan_.folders[file.folder] / file.name;
        const Existing existing = LookAtTarget(target, file.size, file.modified);
        if (existing == Existing::kNothing || options_.overwrite) {
            return Fetch(file, target);
        }
        if (existing == Existing::kSame) {
            report_.AddAlreadyThere();
            return true;
        }
        report_.AddProblem("another file has the name already; --overwrite replaces it", target.string());
        return false;
    }

    bool Fetch(const PlannedFile &file, const fs::path &target) {
        StreamFailure failure;
        const std::unique_ptr<MediaStream> stream = session_.OpenStream(file.path, failure);
        if (!stream) {
            TellWhyNotOpened(file, failure);
            return false;
        }
        try {
            return Copy(*stream, file, target);
        } catch (const std::system_error &error) {
            Fail("could not be written: " + error.code().message(), target.string(), error.code());
            return false;
        }
    }

    bool Copy(MediaStream &stream, const PlannedFile &file, const fs::path &target) {
        TargetFile copy(target.parent_path());
        uint64_t bytes = 0;
        while (true) {
            const int32_t count = stream.Read(buffer_.data(), kChunkBytes);
            if (count == 0) break;
            if (count < 0 || count > kChunkBytes) {
                report_.AddProblem("could not be read to the end", file.path);
                return false;
            }
            copy.Write({buffer_.data(), static_cast<std::size_t>(count)});
            bytes += static_cast<uint64_t>(count);
            progress_.AddBytes(static_cast<uint64_t>(count));
        }
        copy.Finish(target, file.modified);
        report_.AddGot(bytes);
        // A stream has no way to tell a failing disk from the end of the file.
        if (bytes < file.size.value_or(0))
            report_.AddProblem("shorter than the library says; look at it", target.string());
        return true;
    }

    bool HasCover(const fs::path &folder, const std::string &stem) const {
        return std::any_of(kCoverExtensions.begin(), kCoverExtensions.end(), [&](std::string_view extension) {
            return LookAtTarget(folder / (stem + std::string(extension)), {}, {}) != Existing::kNothing;
        });
    }

    void GetCover(const PlannedFile &file) {
        const fs::path &folder = plan_.folders[file.folder];
        if (!options_.overwrite && HasCover(folder, file.cover)) return report_.AddCoverAlreadyThere();
        try {
            const Cover cover = ReadCover(session_, file.path);
            WriteWholeFile(folder / (file.cover + cover.extension), cover.bytes);
            report_.AddCover();
        } catch (const HostError &error) {
            report_.AddCoverLost(error.what());
        } catch (const std::system_error &error) {
            Fail("its cover could not be written: " + error.code().message(), file.path, error.code());
        }
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
