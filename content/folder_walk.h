#ifndef CONTENT_FOLDER_WALK_H
#define CONTENT_FOLDER_WALK_H

#include <functional>
#include <string>

#include "platform/windows/windows_api.h"

enum class FolderDepth { kOneLevel, kAllLevels };

// Takes the folder that holds the file, and the file's entry, of which only the name and the attributes are
// filled in.
using FileVisitor = std::function<void(const std::wstring &folder, const WIN32_FIND_DATAW &file)>;

// Visits the files of a folder in the order in which the system gives them; a subfolder is walked at once
// when the walk comes to it. A folder that cannot be read holds no files. A folder that links lead to a
// second time is passed over, so the walk ends.
void WalkFolder(const std::wstring &folder, FolderDepth depth, const FileVisitor &visit);

#endif
