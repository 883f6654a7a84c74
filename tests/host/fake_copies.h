// The copies of the fake driver: they go by the rules of the real ones, into a folder of the test.
#ifndef TESTS_HOST_FAKE_COPIES_H
#define TESTS_HOST_FAKE_COPIES_H

#include <filesystem>
#include <string>

#include "driver/itunes_driver.h"

// Environment variables:
//   FAKE_DRIVER_ADD_FOLDER   where the files go; without it the add folder of the private environment
//   FAKE_DRIVER_COPY_ERRORS  "name=number ...": copies that fail with this error; those of 5 and 6 half-way
//   FAKE_DRIVER_COPY_PAUSE   milliseconds before each chunk
//   FAKE_DRIVER_TAKES        "name ...": files that iTunes takes away before a batch is finished
class FakeCopies {
  public:
    FakeCopies();
    const std::filesystem::path &folder() const { return folder_; }  // empty without one
    bool open() const { return callback_ != nullptr; }               // whether a batch is

    void Start(CopyProgressCallback callback, void *context, int32_t chunk_size);
    int32_t Copy(const char *path_text, const CopySourceInfo &source);
    void Finish();

  private:
    struct Source;
    int32_t Tell(int32_t state, int32_t error);
    int32_t Transfer(Source &source, const std::filesystem::path &target);

    std::filesystem::path folder_;
    CopyProgressCallback callback_ = nullptr;
    void *context_ = nullptr;
    int32_t chunk_size_ = 1024;
    CopyProgress progress_{};
};

#endif
