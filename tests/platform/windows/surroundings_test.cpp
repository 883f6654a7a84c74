#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "fixtures/scoped_environment.h"
#include "fixtures/temp_folder.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_api.h"

namespace {

TEST(Environment, SizesAsTheApi) {
    const ScopedEnvironment variable("DRIVER_TEST_VALUE", "\xC3\xA9\xFFz");
    std::array<wchar_t, 4> buffer;
    EXPECT_EQ(GetEnvironmentVariableW(L"DRIVER_TEST_VALUE", nullptr, 0), 4U);
    EXPECT_EQ(GetEnvironmentVariableW(L"DRIVER_TEST_VALUE", buffer.data(), 3), 4U);
    EXPECT_EQ(GetEnvironmentVariableW(L"DRIVER_TEST_VALUE", buffer.data(), 4), 3U);
    EXPECT_EQ(WideToUtf8(buffer.data()), "\xC3\xA9\xFFz");
    EXPECT_EQ(GetEnvironmentVariableW(L"DRIVER_TEST_ABSENT", buffer.data(), 4), 0U);
    EXPECT_EQ(GetLastError(), ERROR_ENVVAR_NOT_FOUND);
}

TEST(Environment, TempIsTheSystemsFolderWhileUnset) {
    const ScopedEnvironment temp("TEMP", std::nullopt);
    const ScopedEnvironment no_unix_name("TMPDIR", std::nullopt);
    const auto temp_folder = [] {
        std::array<wchar_t, 64> buffer;
        return WideToUtf8({buffer.data(), GetEnvironmentVariableW(L"TEMP", buffer.data(), 64)});
    };
    EXPECT_EQ(temp_folder(), P_tmpdir);
    const ScopedEnvironment unix_name("TMPDIR", "/elsewhere");
    EXPECT_EQ(temp_folder(), "/elsewhere");
    const ScopedEnvironment set("TEMP", "C:\\Temp");
    EXPECT_EQ(temp_folder(), "C:\\Temp");
}

std::string MusicFolder() {
    std::array<wchar_t, MAX_PATH> path;
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_MYMUSIC, nullptr, SHGFP_TYPE_CURRENT, path.data());
    return result == S_OK ? WideToUtf8(path.data()) : "failure";
}

TEST(MusicFolder, GoesByTheUserFoldersAndIsElseMusicInTheHomeFolder) {
    const TempFolder home;
    const std::string place = home.path().string();
    const ScopedEnvironment home_variable("HOME", place);
    const ScopedEnvironment no_config("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(MusicFolder(), place + "/Music");
    home.Write(
        ".config/user-dirs.dirs",
        "# XDG_MUSIC_DIR=\"/c\"\nXDG_VIDEOS_DIR=\"/v\"\n  XDG_MUSIC_DIR=\"$HOME/My \\\"Music\\\"/\"\n");
    EXPECT_EQ(MusicFolder(), place + "/My \"Music\"");
    home.Write("other/user-dirs.dirs", "XDG_MUSIC_DIR=\"/srv/music\"\n");
    const ScopedEnvironment config("XDG_CONFIG_HOME", place + "/other");
    EXPECT_EQ(MusicFolder(), "/srv/music");
    home.Write("other/user-dirs.dirs", "XDG_MUSIC_DIR=\"relative\"\nXDG_MUSIC_DIR=\n");
    EXPECT_EQ(MusicFolder(), place + "/Music");
    const ScopedEnvironment long_home("HOME", "/" + std::string(MAX_PATH - 8, 'h'));
    EXPECT_EQ(MusicFolder(), "/" + std::string(MAX_PATH - 8, 'h') + "/Music");
    const ScopedEnvironment too_long_home("HOME", "/" + std::string(MAX_PATH - 7, 'h'));
    EXPECT_EQ(MusicFolder(), "failure");
    std::array<wchar_t, MAX_PATH> path;
    EXPECT_TRUE(FAILED(SHGetFolderPathW(nullptr, 5, nullptr, 0, path.data())));
}

TEST(DynamicLibrary, LoadsByNameAndByPath) {
    HMODULE library = LoadLibraryW(L"libm.so.6");
    const auto cosine = reinterpret_cast<double (*)(double)>(GetProcAddress(library, "cos"));
    EXPECT_TRUE(cosine != nullptr && cosine(0.0) == 1.0);
    EXPECT_EQ(GetProcAddress(library, "absent"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_EQ(FreeLibrary(library), TRUE);
    const TempFolder folder;
    const std::string text = folder.Write("libm.so.6", "no library").string();
    for (const std::string &name : std::initializer_list<std::string>{"MediaInfo-absent.dll", "", text}) {
        EXPECT_EQ(LoadLibraryW(Utf8ToWide(name).c_str()), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    }
    EXPECT_TRUE(GetProcAddress(nullptr, "cos") == nullptr && FreeLibrary(nullptr) == FALSE);
}

}  // namespace
