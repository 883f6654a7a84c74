#ifndef PLATFORM_WINDOWS_NATIVE_PATH_H
#define PLATFORM_WINDOWS_NATIVE_PATH_H

#include <string>
#include <string_view>

/* The one place where a Windows path becomes a path of this system, for the calls of windows_api.h and for
 * the libraries that open files themselves.
 *
 * On Windows the path itself is the result. Elsewhere:
 *   - both separators count, a run of them is one, and a final one is dropped;
 *   - a drive `X:` is the link or folder `dosdevices/x:` below the folder that WINEPREFIX names, by default
 * `.wine` in the home folder, and ".." does not lead out of it;
 *   - a path that begins with a separator stands as it is, one that begins with neither starts at the root
 * folder;
 *   - a component that is not there under its exact name is looked for without regard to letter case, then in
 * the other Unicode normal form. Of several such names the first in the order of their bytes counts.
 *
 * The components from the first that is not there keep their spelling. The text ends at a zero byte; bytes
 * that are not UTF-8 are kept. An empty path gives an empty one. */
std::string NativePath(std::string_view windows_path);
std::string NativePath(std::wstring_view windows_path);

/* True if Windows can hold a file under this name, which is one component of a path: no control character,
 * none of
 * `<>:"|?*`, no separator, not empty, not "." or "..". Whatever creates a file asks this first. */
bool IsWindowsFileName(std::string_view name);

#endif
