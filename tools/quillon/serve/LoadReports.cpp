#include "LoadReports.h"

#include "TemporaryFolder.h"

#include "../Tool.h"

namespace quillon::tool::serve {

ServedReports LoadReports(const std::vector<std::string>& paths, const GlobalOptions& options) {
    const TemporaryFolder molfiles("quillon-serve");
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
