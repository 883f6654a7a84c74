#ifndef TESTS_SUPPORT_TEMP_FOLDER_H
#define TESTS_SUPPORT_TEMP_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

// A folder of the test's own, removed with everything in it at the end of the scope.
class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "itunes-driver-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::filesystem::path &path() const { return path_; }

    // Writes a file below the folder, with the folders that lead to it.
    std::filesystem::path Write(const std::filesystem::path &name, std::string_view bytes) const {
        std::filesystem::path target = path_ / name;
        std::filesystem::create_directories(target.parent_path());
        std::ofstream(target, std::ios::binary) << bytes;
        return target;
    }

  private:
    std::filesystem::path path_;
};

inline std::string ReadWholeFile(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

#endif
