#include "platform/windows/file_names.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "platform/windows/text.h"

namespace {

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

wchar_t FoldCharacter(wchar_t c) {
    return static_cast<wchar_t>(g_unichar_tolower(g_unichar_toupper(static_cast<gunichar>(c))));
}

// Composed; a name that is not UTF-8 has no other form.
std::string ComposedName(std::string_view name) {
    const std::unique_ptr<char, decltype(&g_free)> composed(
        g_utf8_normalize(name.data(), static_cast<gssize>(name.size()), G_NORMALIZE_NFC), g_free);
    return composed ? composed.get() : std::string(name);
}

}  // namespace

std::wstring FoldName(std::string_view name) {
    std::wstring folded = Utf8ToWide(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), FoldCharacter);
    return folded;
}

std::wstring NameKey(std::string_view name) {
    return FoldName(IsAscii(name) ? std::string(name) : ComposedName(name));
}

bool MatchesPattern(std::wstring_view pattern, std::wstring_view name) {
    size_t p = 0;
    size_t n = 0;
    // After a mismatch only the last `*` has to take one more character: what stood before it matches
    // already.
    size_t star = std::wstring_view::npos;
    size_t star_end = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            star_end = n;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::wstring_view::npos) {
            p = star + 1;
            n = ++star_end;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

NearestName::NearestName(std::string_view wanted)
    : wanted_(wanted), wanted_is_ascii_(IsAscii(wanted)), folded_(FoldName(wanted)), key_(NameKey(wanted)) {}

bool NearestName::IsSurelyOther(std::string_view name) const {
    if (!wanted_is_ascii_ || !IsAscii(name)) return false;
    return name.size() != wanted_.size() ||
           g_ascii_strncasecmp(name.data(), wanted_.data(), static_cast<gsize>(name.size())) != 0;
}

void NearestName::Offer(std::string_view name) {
    if (IsSurelyOther(name)) return;
    const bool case_alone = FoldName(name) == folded_;
    if (!case_alone && NameKey(name) != key_) return;
    const bool nearer = case_alone && !best_differs_in_case_alone_;
    const bool equal = case_alone == best_differs_in_case_alone_;
    if (best_ && !nearer && !(equal && name < *best_)) return;
    best_ = name;
    best_differs_in_case_alone_ = case_alone;
}
