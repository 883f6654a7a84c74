#ifndef TESTS_DRIVER_COPY_FIXTURE_H
#define TESTS_DRIVER_COPY_FIXTURE_H

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/content/media_tree.h"
#include "tests/support/folder_contents.h"

// A driver with a folder to copy into, and one source.
struct CopyFixture : MediaTree {
    static constexpr const char *kFolder = "media/Automatically Add to iTunes";

    CopySourceInfo source = {};
    std::vector<int32_t> answers = {0};  // of the callback, call by call; the last one from then on
    std::string reports;                 // "state:bytes" for each call, and "!error" where there is one
    // The bytes that a host stream delivers, and what it answers when they are at an end.
    std::string stream;
    int32_t stream_end = 0;

    CopyFixture() {
        std::filesystem::create_directories(folder.path() / kFolder);
        AllocVelmarAttribute(&source.source.attributes);
        source.copy_tag = 77;
    }
    ~CopyFixture() { FreeVelmarAttribute(source.source.attributes); }

    std::map<std::string, std::string> Files() const { return FolderContents(folder.path() / kFolder); }

    void Put(const char *key, const std::string &value) const {
        AddVelmarAttributeItem(source.source.attributes, key, value.c_str());
    }
    void Take(int32_t type, int64_t size, const void *handle) {
        source.source_type = type;
        source.source_size = size;
        source.source_handle = const_cast<void *>(handle);
    }
    void TakeStream(const std::string &bytes, int64_t size) {
        Take(0, size, this);
        stream = bytes;
        source.read_function = Read;
    }
    // `path` must outlive the copy.
    void TakeFile(const char *path, int64_t size) {
        Take(1, size, nullptr);
        source.source_path = path;
    }

    int32_t Copy(int32_t chunk = 4, const char *place = "library/music") {
        reports.clear();
        StartPathCopy(&driver, 0, Report, this, chunk);
        return CopyDriverPath(&driver, 0, place, &source);
    }

    static int32_t Report(const CopyProgress *progress, void *context) {
        auto &own = *static_cast<CopyFixture *>(context);
        EXPECT_EQ(progress->copy_tag, own.source.copy_tag);
        if (!own.reports.empty()) own.reports += ' ';
        own.reports += std::to_string(progress->copy_state) + ":" + std::to_string(progress->bytes_copied);
        if (progress->copy_error != 0) own.reports += "!" + std::to_string(progress->copy_error);
        const int32_t answer = own.answers.front();
        if (own.answers.size() > 1) own.answers.erase(own.answers.begin());
        return answer;
    }
    static int32_t Read(void *handle, void *buffer, int32_t count) {
        auto &own = *static_cast<CopyFixture *>(handle);
        if (own.stream.empty()) return own.stream_end;
        const size_t size = std::min(static_cast<size_t>(count), own.stream.size());
        std::memcpy(buffer, own.stream.data(), size);
        own.stream.erase(0, size);
        return static_cast<int32_t>(size);
    }
};

#endif
