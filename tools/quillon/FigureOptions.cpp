#include "FigureOptions.h"

namespace quillon::tool {

void AddFigureSizeOption(CLI::App& command, FigureSize& size) {
    command.add_option_function<std::string>(
        "--size",
        [&size](const std::string& text) {
            if (!ParseFigureSize(text, size))
                throw CLI::ValidationError("--size", "'" + text +
                                                         "' is no size: WIDTHxHEIGHT in pixels, "
                                                         "200-8000 by 150-8000, e.g. 800x450");
        },
        "The figure's size in pixels, WIDTHxHEIGHT (default 960x540)");
}

} // namespace quillon::tool
