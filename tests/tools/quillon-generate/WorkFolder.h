#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace quillon::generate::testing {

// A work folder of this test process's own (the test runner runs tests in parallel processes,
// which must not write each other's reports), removed with everything in it when the process
// ends.
inline const std::string& ProcessWorkFolder() {
    struct Folder {
        Folder()
            : path(std::string(QUILLON_GENERATE_WORK_DIR) + "/process-" +
                   std::to_string(::getpid())) {
            std::filesystem::create_directories(path);
        }
        ~Folder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
        std::string path;
    };
    static const Folder folder;
    return folder.path;
}

} // namespace quillon::generate::testing
