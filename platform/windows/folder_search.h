#ifndef PLATFORM_WINDOWS_FOLDER_SEARCH_H
#define PLATFORM_WINDOWS_FOLDER_SEARCH_H

#include <cstddef>
#include <iterator>
#include <optional>
#include <string>

#include "platform/windows/folder_identity.h"
#include "platform/windows/windows_api.h"

/* A folder search as a range, to be walked once:
 *
 *     for (const WIN32_FIND_DATAW &entry : FolderSearch(folder + L"\\*")) ...
 *
 * Every entry comes, "." and ".." too. A search that cannot start is an empty range. The entry is valid until
 * the next step of the loop. With FindExInfoBasic only its name and attributes count, which costs far less.
 */
class FolderSearch {
  public:
    explicit FolderSearch(const std::wstring &pattern, FINDEX_INFO_LEVELS level = FindExInfoStandard)
        : search_(FindFirstFileExW(pattern.c_str(), level, &entry_, FindExSearchNameMatch, nullptr,
                                   FIND_FIRST_EX_LARGE_FETCH)) {
        if (search_ == INVALID_HANDLE_VALUE) error_ = GetLastError();
    }
    ~FolderSearch() { Close(); }
    FolderSearch(const FolderSearch &) = delete;
    FolderSearch &operator=(const FolderSearch &) = delete;

    class Iterator {
      public:
        using iterator_concept = std::input_iterator_tag;
        using value_type = WIN32_FIND_DATAW;
        using difference_type = std::ptrdiff_t;

        explicit Iterator(FolderSearch *search) : search_(search) {}
        const WIN32_FIND_DATAW &operator*() const { return search_->entry_; }
        const WIN32_FIND_DATAW *operator->() const { return &search_->entry_; }
        Iterator &operator++() {
            search_->Advance();
            return *this;
        }
        void operator++(int) { search_->Advance(); }
        bool operator==(std::default_sentinel_t) const { return search_->search_ == INVALID_HANDLE_VALUE; }

      private:
        FolderSearch *search_;
    };

    // Which folder is searched, of which `folder` is the path. Empty for a search that has not started.
    std::optional<FolderIdentity> Identity(const std::wstring &folder) const {
        return search_ == INVALID_HANDLE_VALUE ? std::nullopt : IdentifySearch(search_, folder);
    }

    // True when the search is at its end, and not because the folder could not be read on.
    bool IsComplete() const { return error_ == ERROR_NO_MORE_FILES || error_ == ERROR_FILE_NOT_FOUND; }
    DWORD error() const { return error_; }

    Iterator begin() { return Iterator(this); }
    std::default_sentinel_t end() const { return std::default_sentinel; }

  private:
    void Advance() {
        if (FindNextFileW(search_, &entry_) != FALSE) return;
        error_ = GetLastError();
        Close();
    }
    void Close() {
        if (search_ != INVALID_HANDLE_VALUE) FindClose(search_);
        search_ = INVALID_HANDLE_VALUE;
    }

    WIN32_FIND_DATAW entry_ = {};
    HANDLE search_;
    DWORD error_ = ERROR_SUCCESS;
};

#endif
