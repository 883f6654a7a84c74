#ifndef HOST_PREFERENCE_FILE_H
#define HOST_PREFERENCE_FILE_H

#include <string>
#include <string_view>

namespace velmarhost {

// The iTunes preference file that names a library XML file and a media folder, as the driver reads it: a
// property list whose locations are data blocks of UTF-16 text, least byte first, without a mark at the start
// or end. Both paths are UTF-8; slashes in them become backslashes, as the driver cuts the library's folder
// off at the last one.
std::string PreferenceFileText(std::string_view library_path, std::string_view media_folder);

}  // namespace velmarhost

#endif
