#ifndef LIBRARY_MY_MUSIC_H
#define LIBRARY_MY_MUSIC_H

#include <optional>
#include <string>

// The current user's My Music folder, without a final separator; empty when there is none.
std::optional<std::wstring> MyMusicFolder();

#endif
