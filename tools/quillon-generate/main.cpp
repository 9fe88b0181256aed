// quillon-generate: writes a synthetic, chemically consistent metabolite-identification report
// and the matching neutral-loss settings file. See --help.

#include "GeneratorOptions.h"
#include "ReportGenerator.h"

#include <quillon/platform/Exception.h>

#include <cstdio>
#include <exception>

int main(int argc, char* argv[]) {
    using namespace quillon::generate;
    GeneratorOptions options;
    std::string message;
    bool help = false;
    if (!ParseCommandLine(argc, argv, options, message, help)) {
        std::fputs(message.c_str(), help ? stdout : stderr);
        return help ? 0 : 2;
    }
    try {
        const BatchSummary summary = GenerateBatch(options);
        if (options.bulkMetabolites > 0)
            std::printf("Wrote 1 sample of %d metabolites to %s and %d neutral losses to %s\n",
                        options.bulkMetabolites, options.reportPath.c_str(), summary.neutralLosses,
                        SettingsPath(options).c_str());
        else
            std::printf("Wrote %zu samples to %s and %d neutral losses to %s\n",
                        summary.samples.size(), options.reportPath.c_str(), summary.neutralLosses,
                        SettingsPath(options).c_str());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "quillon-generate: %s\n", failure.what());
        return 1;
    }
    return 0;
}
