#include "content/folder_walk.h"

#include <cwchar>
#include <set>

#include "driver/limit_log.h"
#include "platform/limits.h"
#include "platform/windows/folder_search.h"
#include "platform/windows/text.h"

namespace {

bool IsFolder(const WIN32_FIND_DATAW &entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsOwnOrParentFolder(const WIN32_FIND_DATAW &entry) {
    return std::wcscmp(entry.cFileName, L".") == 0 || std::wcscmp(entry.cFileName, L"..") == 0;
}

class FolderWalk {
  public:
    FolderWalk(FolderDepth depth, const FileVisitor &visit) : depth_(depth), visit_(visit) {}

    void Enter(const std::wstring &folder, unsigned level) {
        const LimitLog limit_log(WideToUtf8(folder));
        if (limits::kFolderDepth.IsPassedBy(level)) return;
        FolderSearch search(folder + L"\\*", FindExInfoBasic);
        const auto identity = search.Identity(folder);
        if (!identity || !entered_.insert(*identity).second) return;
        for (const WIN32_FIND_DATAW &entry : search) {
            if (IsOwnOrParentFolder(entry)) continue;
            if (!IsFolder(entry)) {
                visit_(folder, entry);
            } else if (depth_ == FolderDepth::kAllLevels) {
                Enter(folder + L"\\" + entry.cFileName, level + 1);
            }
        }
    }

  private:
    const FolderDepth depth_;
    const FileVisitor &visit_;
    std::set<FolderIdentity> entered_;
};

}  // namespace

void WalkFolder(const std::wstring &folder, FolderDepth depth, const FileVisitor &visit) {
    FolderWalk(depth, visit).Enter(folder, 1);
}
