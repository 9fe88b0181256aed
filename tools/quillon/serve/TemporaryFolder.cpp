#include "TemporaryFolder.h"

#include "../Tool.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace quillon::tool::serve {

TemporaryFolder::TemporaryFolder(const std::string& prefix) {
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw ToolError("cannot create a temporary folder: " + std::string(std::strerror(errno)));
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace quillon::tool::serve
