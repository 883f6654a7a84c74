#include "host/standard_input.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "host/host_error.h"
#include "host/system.h"

namespace velmarhost {
namespace {

constexpr std::size_t kPieceBytes = 256 * 1024;

[[noreturn]] void Refuse(const std::string &words) {
    throw HostError(ExitCode::kIncomplete, words + ": " + std::strerror(errno));
}

}  // namespace

MeasuredInput::MeasuredInput() {
    if (const std::optional<uint64_t> bytes = RemainingInput()) {
        bytes_ = *bytes;
    } else {
        Spool();
    }
}

void MeasuredInput::Spool() {
    folder_ = std::make_unique<ScratchPath>(&MakePrivateFolder);
    errno = 0;
    copy_.reset(std::fopen((folder_->path() / "input").c_str(), "w+bx"));
    const std::string failure =
        "standard input could not be kept in the temporary folder, which TMPDIR can name anew";
    if (!copy_) Refuse(failure);
    std::vector<char> piece(kPieceBytes);
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), stdin)) {
        if (std::fwrite(piece.data(), 1, count, copy_.get()) != count) Refuse(failure);
        bytes_ += count;
    }
    if (std::ferror(stdin) != 0) Refuse("standard input could not be read");
    if (std::fseek(copy_.get(), 0, SEEK_SET) != 0) Refuse(failure);  // writes what is buffered, too
}

}  // namespace velmarhost
