#include "content/zip_entry.h"

#include <algorithm>
#include <string_view>

#include "content/glib_owner.h"
#include "content/zip_archive.h"

namespace {

constexpr uLong kEncryptedFlag = 1;
constexpr int kIgnoreCase = 2;
constexpr size_t kReadBlockBytes = 64 << 10;

bool IsUtf8(const std::string &text) {
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

// GLib takes a pattern for UTF-8 without a look, and then reads beyond its end. One that is not could match
// no name either.
GRegexOwner CompilePattern(const std::string &pattern) {
    if (limits::kPatternBytes.IsPassedBy(pattern.size()) || !IsUtf8(pattern)) return nullptr;
    const std::string limited =
        "(*LIMIT_MATCH=" + std::to_string(limits::kPatternSteps.value) + ")" + pattern;
    return GRegexOwner(g_regex_new(limited.c_str(), G_REGEX_CASELESS, GRegexMatchFlags(0), nullptr));
}

enum class Match { kYes, kNo, kTooCostly };

// GLib refuses text that is not UTF-8: such a name matches nothing.
Match MatchName(const GRegex *regex, const std::string &name) {
    if (!IsUtf8(name)) return Match::kNo;
    const auto size = static_cast<gssize>(name.size());
    GError *failure = nullptr;
    const bool matches =
        g_regex_match_full(regex, name.c_str(), size, 0, G_REGEX_MATCH_ANCHORED, nullptr, &failure) != FALSE;
    const GErrorOwner failure_owner(failure);
    if (failure != nullptr) {
        limits::kPatternSteps.Hit();
        return Match::kTooCostly;
    }
    return matches ? Match::kYes : Match::kNo;
}

}  // namespace

std::optional<ZipEntry> CurrentZipEntry(unzFile zip) {
    unz_file_info64 info;
    std::string name(limits::kZipNameBytes.value, '\0');
    if (unzGetCurrentFileInfo64(zip, &info, name.data(), name.size(), nullptr, 0, nullptr, 0) != UNZ_OK) {
        return std::nullopt;
    }
    // minizip ends a name with a zero byte only where there is room for one.
    name.resize(std::min(name.find('\0'), name.size()));
    return ZipEntry{std::move(name), info.uncompressed_size, (info.flag & kEncryptedFlag) != 0};
}

bool LocateZipEntry(unzFile zip, const std::string &name) {
    return unzLocateFile(zip, name.c_str(), kIgnoreCase) == UNZ_OK;
}

std::optional<std::string> FindEntryByRegex(unzFile zip, const std::string &pattern) {
    const GRegexOwner regex = CompilePattern(pattern);
    if (!regex) return std::nullopt;
    for (ZipCursor cursor(zip); cursor.Valid(); cursor.Next()) {
        std::optional<ZipEntry> entry = CurrentZipEntry(zip);
        if (!entry) continue;
        const Match match = MatchName(regex.get(), entry->name);
        if (match == Match::kYes) return std::move(entry->name);
        if (match == Match::kTooCostly) return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> ReadCurrentZipEntry(unzFile zip, const Limit &limit) {
    const std::optional<ZipEntry> entry = CurrentZipEntry(zip);
    if (!entry) return std::nullopt;
    ZipEntryStream stream(zip, *entry);
    if (!stream) return std::nullopt;
    // The room grows with the bytes that really come: the size in the archive is only a claim.
    std::string bytes;
    std::string block(kReadBlockBytes, '\0');
    for (;;) {
        const int count = stream.Read(block);
        if (count < 0) return std::nullopt;
        if (count == 0) return bytes;
        if (limit.IsPassedBy(bytes.size() + static_cast<size_t>(count))) return std::nullopt;
        bytes.append(block, 0, static_cast<size_t>(count));
    }
}

void ZipCursor::Next() {
    valid_ = unzGoToNextFile(zip_) == UNZ_OK;
    exceeded_ = valid_ && limits::kZipEntries.IsPassedBy(++steps_);
    valid_ = valid_ && !exceeded_;
}
