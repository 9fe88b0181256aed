#include "LoadReports.h"

#include "../Tool.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace quillon::tool::serve {

namespace {

// A folder of its own under the system's temporary folder, removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "quillon-serve-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw ToolError("cannot create a temporary folder: " +
                            std::string(std::strerror(errno)));
        m_path = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace

ServedReports LoadReports(const std::vector<std::string>& paths, const GlobalOptions& options) {
    const TemporaryFolder molfiles;
    InstallServerHooks(molfiles.Path());
    ServedReports reports;
    for (const std::string& path : paths) {
        if (!CMolfile::StartList())
            throw ToolError("cannot write the molfile list in " + molfiles.Path());
        reports.push_back(std::make_unique<ServedReport>(path, molfiles.Path(), options));
    }
    return reports;
}

} // namespace quillon::tool::serve
