#ifndef HOST_ADD_PLAN_H
#define HOST_ADD_PLAN_H

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/options.h"

namespace velmarhost {

// One file that the user wants in iTunes.
struct PlannedCopy {
    std::string shown{};           // as the user named it, or found it in a folder so named
    std::filesystem::path file{};  // absolute; empty for standard input
    std::string name{};            // to ask for in the add folder: one that any system can hold
    std::string tree_path{};       // to tell the driver
    uint64_t bytes = 0;            // 0 for standard input, which is measured later
    // Whether the host has to read it: the driver cannot open it by its path, or would give it another name.
    bool through_host = false;
    std::string problem{};  // why it cannot be added; empty for what can
};

struct AddPlan {
    std::vector<PlannedCopy> copies;
    // What folders hold besides, by the reason for passing it over.
    std::map<std::string, std::vector<std::string>> passed_over;
    uint64_t total_bytes = 0;
};

// Walks the folders, sorted by name, each of them once. Opens no file.
AddPlan PlanAdd(const Options &options);

}  // namespace velmarhost

#endif
