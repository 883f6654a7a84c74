#include <filesystem>
#include <string>
#include <system_error>

#include "host/commands.h"
#include "host/picture.h"
#include "host/target_file.h"
#include "host/text.h"
#include "host/thumbnail.h"

namespace velmarhost {
namespace {

namespace fs = std::filesystem;

// A device must not be replaced by a file.
void RefuseOddTarget(const fs::path &target) {
    const fs::file_status status = fs::status(target);
    if (!fs::exists(status) || fs::is_regular_file(status)) return;
    throw HostError(ExitCode::kIncomplete,
                    "\"" + target.string() + "\" is no file. -o - writes to standard output");
}

void WritePicture(const std::string &bytes, const fs::path &target) {
    try {
        RefuseOddTarget(target);
        WriteWholeFile(target, bytes);
    } catch (const std::system_error &error) {
        throw HostError(ExitCode::kIncomplete,
                        "\"" + target.string() + "\" could not be written: " + error.code().message());
    }
}

// "large: PNG, 400 x 400 pixels, 85.9 kB"
std::string Summary(const Picture &picture, bool as_png, std::size_t bytes) {
    const PictureFormat format = FormatOf(picture);
    std::string text = picture.path.substr(picture.path.rfind('/') + 1) + ": ";
    text += as_png ? "PNG" : FormatName(format);
    if (IsRaw(format) && !as_png) text += " \"" + picture.type + "\" (--png makes a PNG of them)";
    if (picture.width && picture.height) {
        text += ", " + std::to_string(*picture.width) + " x " + std::to_string(*picture.height) + " pixels";
    }
    return text + ", " + FormatSize(bytes);
}

}  // namespace

ExitCode RunThumb(const Options &options, LibrarySession &session, Output &output) {
    const Picture picture = ReadThumbnail(session, options.paths.front(), options.thumbnail_size);
    const std::string bytes = options.png ? AsPng(picture) : picture.bytes;
    if (options.file == "-") {
        output.Raw(bytes);
    } else {
        WritePicture(bytes, options.file);
        PrintMessage(Summary(picture, options.png, bytes.size()));
    }
    return ExitCode::kOk;
}

}  // namespace velmarhost
