#pragma once

// The options every figure takes.

#include "Svg.h"

#include <CLI/CLI.hpp>

namespace quillon::tool {

// --size WxH into size (default 960x540); anything else is a usage error naming the option.
void AddFigureSizeOption(CLI::App& command, FigureSize& size);

} // namespace quillon::tool
