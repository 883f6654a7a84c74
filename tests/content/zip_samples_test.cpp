// Archives of other programs, and Python's reader as a second opinion on both directions.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "content/zip_extract.h"
#include "content/zip_write.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

// Reads pairs of an archive and a folder and compares them both ways; gives a line for each: "equal",
// "different: NAME" or "unreadable".
constexpr const char *kCompareScript = R"(
import os, sys, zipfile
def compare(path, top):
    try:
        archive = zipfile.ZipFile(path)
        wanted = {i.filename: archive.read(i) for i in archive.infolist() if not i.is_dir()}
    except Exception:
        return "unreadable"
    found = {}
    for folder, _, names in os.walk(top):
        for name in names:
            path = os.path.join(folder, name)
            found[os.path.relpath(path, top)] = open(path, "rb").read()
    differing = [n for n in sorted(wanted.keys() | found.keys()) if wanted.get(n) != found.get(n)]
    return "different: " + differing[0] if differing else "equal"
pairs = sys.stdin.buffer.read().decode().split("\n")
for archive, folder in zip(pairs[::2], pairs[1::2]):
    print(ascii(compare(archive, folder)).strip("'"))
)";

class ZipSamplesTest : public ::testing::Test {
  protected:
    void Add(const fs::path &archive, const fs::path &folder, const std::string &expected) {
        pairs_ += archive.string() + "\n" + folder.string() + "\n";
        expected_.push_back(archive.filename().string() + ": " + expected);
    }

    // One line for each pair that was added, with the archive's name in front.
    std::vector<std::string> Compare() const {
        const std::string command = "python3 '" + folder_.Write("compare.py", kCompareScript).string() +
                                    "' <'" + folder_.Write("pairs", pairs_).string() + "'";
        const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
        std::string output(100000, '\0');
        output.resize(pipe ? fread(output.data(), 1, output.size(), pipe.get()) : 0);
        std::istringstream lines(output);
        std::vector<std::string> found;
        for (std::string line; found.size() < expected_.size() && std::getline(lines, line);)
            found.push_back(expected_[found.size()].substr(0, expected_[found.size()].find(": ") + 2) + line);
        return found;
    }

    TempFolder folder_;
    std::string pairs_;
    std::vector<std::string> expected_;
};

bool HasPython() {
    return std::system("python3 -c 'import zipfile'") == 0;
}

std::vector<fs::path> Samples(const std::string &kind) {
    std::vector<fs::path> paths;
    std::error_code absent;
    for (const auto &entry : fs::directory_iterator(fs::path(SAMPLES_FOLDER) / kind, absent))
        paths.push_back(entry.path());
    return paths;
}

TEST_F(ZipSamplesTest, UnpackedArchivesAgreeWithAnotherReader) {
    if (!HasPython()) GTEST_SKIP() << "no Python here";
    for (const char *kind : {"epub", "ipa", "zip"}) {
        for (const fs::path &sample : Samples(kind)) {
            if (!fs::is_regular_file(sample) || sample.extension() == ".plist") continue;
            const fs::path out = folder_.path() / kind / sample.filename();
            Add(sample, out, UnzipAll(sample.string(), out.string()) == 0 ? "equal" : "unreadable");
        }
    }
    if (expected_.empty()) GTEST_SKIP() << "no samples";
    EXPECT_EQ(Compare(), expected_);
}

TEST_F(ZipSamplesTest, PackedFoldersAgreeWithAnotherReader) {
    if (!HasPython()) GTEST_SKIP() << "no Python here";
    folder_.Write("made/OEBPS/chapter one.xhtml", std::string(100000, 'x'));
    folder_.Write("made/empty", "");
    std::vector<fs::path> folders = {folder_.path() / "made"};
    for (const fs::path &sample : Samples("epub")) {
        if (fs::is_directory(sample)) folders.push_back(sample);
    }
    for (const fs::path &folder : folders) {
        const fs::path zip = folder_.path() / (folder.filename().string() + ".zip");
        ASSERT_EQ(ZipFolder(folder.string(), zip.string()), 0) << folder;
        Add(zip, folder, "equal");
    }
    EXPECT_EQ(Compare(), expected_);
}

}  // namespace
