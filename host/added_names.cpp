#include "host/added_names.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/file_naming.h"
#include "host/text.h"

namespace velmarhost {
namespace {

constexpr std::size_t kMostDigits = 6;  // of a number that the driver puts behind a stem

// Letter case makes no difference between names in the folder.
FileName Folded(const std::string &name) {
    return TreeFileName(FoldCase(name));
}

std::string Numbered(const FileName &name, std::size_t number) {
    return number == 0 ? name.Whole() : name.stem + std::to_string(number) + name.extension;
}

class Finder {
  public:
    Finder(const std::vector<WaitingFile> &before, const std::vector<WaitingFile> &after) : after_(after) {
        for (const WaitingFile &file : before)
            taken_.insert(FoldCase(file.name));
        for (std::size_t i = 0; i < after.size(); ++i) {
            const FileName name = Folded(after[i].name);
            if (!taken_.contains(name.Whole())) AddNew(name, i);
        }
        for (auto &[wanted, candidates] : candidates_)
            std::sort(candidates.begin(), candidates.end());
    }

    // By the name that the driver must have given, if the folder holds nothing but what the tree shows of it.
    std::optional<std::size_t> Expected(const CopiedFile &copy) {
        const auto found = new_names_.find(NextFree(Folded(copy.name)));
        return found != new_names_.end() && Claim(found->second, copy) ? std::optional(found->second)
                                                                       : std::nullopt;
    }

    // To be called when nothing more is expected: what is found already is looked at no more.
    void DropClaimed() {
        for (auto &[wanted, candidates] : candidates_) {
            std::erase_if(candidates,
                          [this](const auto &candidate) { return claimed_.contains(candidate.second); });
        }
    }

    // By a name with any number: something that the tree does not show had the expected one.
    std::optional<std::size_t> AnyNumber(const CopiedFile &copy) {
        for (const auto &[number, index] : candidates_[Folded(copy.name).Whole()]) {
            if (Claim(index, copy)) return index;
        }
        return std::nullopt;
    }

  private:
    void AddNew(const FileName &name, std::size_t index) {
        new_names_.emplace(name.Whole(), index);
        candidates_[name.Whole()].emplace_back(0, index);
        // Every end of the stem that is a number may be the driver's.
        std::size_t number = 0;
        std::size_t scale = 1;
        for (std::size_t digits = 1; digits <= std::min(kMostDigits, name.stem.size());
             ++digits, scale *= 10) {
            const std::size_t begin = name.stem.size() - digits;
            const char digit = name.stem[begin];
            if (digit < '0' || digit > '9') break;
            number += static_cast<std::size_t>(digit - '0') * scale;
            if (digit != '0')
                candidates_[name.stem.substr(0, begin) + name.extension].emplace_back(number, index);
        }
    }

    std::string NextFree(const FileName &name) {
        std::size_t &number = next_numbers_[name.Whole()];
        while (!taken_.insert(Numbered(name, number)).second)
            ++number;
        return Numbered(name, number);
    }

    bool Claim(std::size_t index, const CopiedFile &copy) {
        const std::optional<int64_t> size = after_[index].size;
        if (size && static_cast<uint32_t>(*size) != static_cast<uint32_t>(copy.bytes)) return false;
        return claimed_.insert(index).second;
    }

    const std::vector<WaitingFile> &after_;
    std::unordered_set<std::string> taken_;  // all names are folded
    std::unordered_map<std::string, std::size_t> new_names_;
    // By the wanted name: the new files that it can have become, by their numbers.
    std::unordered_map<std::string, std::vector<std::pair<std::size_t, std::size_t>>> candidates_;
    std::unordered_map<std::string, std::size_t> next_numbers_;
    std::unordered_set<std::size_t> claimed_;
};

}  // namespace

std::vector<std::optional<std::size_t>> FindCopies(const std::vector<CopiedFile> &copied,
                                                   const std::vector<WaitingFile> &before,
                                                   const std::vector<WaitingFile> &after) {
    Finder finder(before, after);
    std::vector<std::optional<std::size_t>> found;
    found.reserve(copied.size());
    for (const CopiedFile &copy : copied)
        found.push_back(finder.Expected(copy));
    finder.DropClaimed();
    for (std::size_t i = 0; i < copied.size(); ++i) {
        if (!found[i]) found[i] = finder.AnyNumber(copied[i]);
    }
    return found;
}

}  // namespace velmarhost
