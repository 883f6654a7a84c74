// Files of fuzz targets, for the parts of the driver that take a path. The log is silent from then on.
#ifndef FUZZ_WORK_FOLDER_H
#define FUZZ_WORK_FOLDER_H

#include <filesystem>
#include <set>
#include <string>

#include "fixtures/temp_folder.h"
#include "fuzz/fuzz_target.h"
#include "platform/velmar_path/velmar_path.h"

// A folder with a folder "temp" for temporary files, below folders that nothing may touch. One for the
// process; each input clears what it has made.
class WorkFolder {
  public:
    WorkFolder() {
        std::filesystem::create_directories(Temp());
        setenv("TEMP", Temp().c_str(), 1);
        SetVelmarLogHandler([](const char *, void *) {}, nullptr);
    }

    std::filesystem::path Place() const { return outer_.path() / "a" / "b" / "c"; }
    std::filesystem::path Temp() const { return Place() / "temp"; }

    // Writes the file that an input stands for.
    void Write(const std::string &name, std::string_view bytes) {
        outer_.Write(std::filesystem::relative(Place(), outer_.path()) / name, bytes);
        files_.insert(name);
    }

    // Whatever is there must have been written here, or lie in "temp". Removes all of it.
    void CheckAndClear() {
        namespace fs = std::filesystem;
        const fs::path folders[] = {outer_.path(), outer_.path() / "a", outer_.path() / "a" / "b"};
        for (const fs::path &folder : folders)
            Require(std::distance(fs::directory_iterator(folder), {}) == 1, "nothing is written above");
        for (const fs::directory_entry &entry : fs::directory_iterator(Place())) {
            const std::string name = entry.path().filename().string();
            if (name == "temp") continue;
            Require(files_.count(name) == 1, "nothing is written beside the temporary folder");
            fs::remove_all(entry.path());
        }
        for (const fs::directory_entry &entry : fs::directory_iterator(Temp()))
            fs::remove_all(entry.path());
        files_.clear();
    }

  private:
    TempFolder outer_;
    std::set<std::string> files_;
};

#endif
