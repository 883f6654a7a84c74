#ifndef PLATFORM_WINDOWS_FILE_NAMES_H
#define PLATFORM_WINDOWS_FILE_NAMES_H

#include <optional>
#include <string>
#include <string_view>

// A name without regard to letter case, character by character as Windows compares names.
std::wstring FoldName(std::string_view name);

// Equal for the names that name one file to a Windows program: without regard to letter case and normal form.
std::wstring NameKey(std::string_view name);

// Whether the whole of `name` fits `pattern`, both folded: `*` stands for any characters, `?` for one.
bool MatchesPattern(std::wstring_view pattern, std::wstring_view name);

/* Finds in the names of a folder the one that comes nearest to a wanted name that is not there itself: one
 * that differs in letter case alone before one that differs in its normal form, and of equals the first in
 * the order of bytes. */
class NearestName {
  public:
    explicit NearestName(std::string_view wanted);
    void Offer(std::string_view name);
    const std::optional<std::string> &best() const { return best_; }

  private:
    // Cheap: whether `name` can be told from the wanted one by its bytes.
    bool IsSurelyOther(std::string_view name) const;

    std::string wanted_;
    bool wanted_is_ascii_;
    std::wstring folded_;
    std::wstring key_;
    bool best_differs_in_case_alone_ = false;
    std::optional<std::string> best_;
};

#endif
