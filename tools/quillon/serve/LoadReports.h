#pragma once

// Reads the reports a server or a snapshot shows, with the molfiles they embed kept in memory.

#include "Api.h"

#include "../Tool.h"

#include <string>
#include <vector>

namespace quillon::tool::serve {

// Installs the server's host hooks and reads each report as the other subcommands do (a progress
// bar on a terminal, a warning line for a damaged report, refused with --strict; throws ToolError
// naming the first that cannot be read). Embedded molfiles are extracted into a private temporary
// folder, kept in memory and the folder removed.
ServedReports LoadReports(const std::vector<std::string>& paths, const GlobalOptions& options = {});

} // namespace quillon::tool::serve
