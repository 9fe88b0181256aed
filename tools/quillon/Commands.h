#pragma once

// The subcommands of the quillon tool; main.cpp registers each in turn.

#include "Tool.h"

#include <map>

namespace quillon::tool {

void RegisterInfo(CLI::App& app, GlobalOptions& options);
void RegisterMetabolites(CLI::App& app, GlobalOptions& options);
void RegisterSummary(CLI::App& app, GlobalOptions& options);
void RegisterFragments(CLI::App& app, GlobalOptions& options);
void RegisterStability(CLI::App& app, GlobalOptions& options);
void RegisterPlot(CLI::App& app, GlobalOptions& options);
void RegisterExport(CLI::App& app, GlobalOptions& options);
void RegisterEdit(CLI::App& app, GlobalOptions& options);
void RegisterMolfiles(CLI::App& app, GlobalOptions& options);
void RegisterCheck(CLI::App& app, GlobalOptions& options);
void RegisterServe(CLI::App& app, GlobalOptions& options);
void RegisterHtml(CLI::App& app, GlobalOptions& options);

} // namespace quillon::tool
