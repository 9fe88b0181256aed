#include "GeneratorOptions.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace quillon::generate {

namespace {

constexpr const char* kUsage =
    "Usage: quillon-generate [options]\n"
    "Writes a synthetic metabolite-identification report and its neutral-loss settings file.\n"
    "  -o, --output PATH      report file to write (default report.txt)\n"
    "      --ini PATH         settings file to write (default Tarnwick.ini beside the report)\n"
    "      --samples N        number of samples (default 6)\n"
    "      --metabolites N    searched biotransformations besides the parent (default 12)\n"
    "      --unexpected N     unexpected products in the data (default 3)\n"
    "      --points N         points per chromatogram trace (default 600)\n"
    "      --spectra N        extra survey spectra per mass spectrometry function (default 1)\n"
    "      --noise-peaks N    random noise peaks per mass spectrum (default 12)\n"
    "      --seed N           random seed (default 20260312)\n"
    "      --half-life MIN    the parent's half-life in the incubations (default 55)\n"
    "      --variation X      scale of the sample-to-sample variation, 0 for none (default 1)\n"
    "      --crlf             write Windows line ends\n"
    "      --bulk-metabolites N write one sample of N metabolites, each with its high-energy\n"
    "                         partner and product-ion spectrum, and nothing else\n"
    "  -h, --help             show this text\n"
    "      --version          show the generator's version\n";

template <typename T>
bool ParseNumber(std::string_view text, T& value, T minimum, T maximum) {
    T parsed{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || parsed < minimum ||
        parsed > maximum) {
        return false;
    }
    value = parsed;
    return true;
}

} // namespace

bool ParseCommandLine(int argc, const char* const argv[], GeneratorOptions& options,
                      std::string& message, bool& helpRequested) {
    helpRequested = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (option == "-h" || option == "--help") {
            helpRequested = true;
            message = kUsage;
            return false;
        }
        if (option == "--version") {
            helpRequested = true;
            message = std::string("quillon-generate ") + QUILLON_VERSION + "\n";
            return false;
        }
        if (option == "--crlf") {
            options.windowsLineEnds = true;
            continue;
        }
        if (i + 1 >= argc) {
            message = "missing value for " + std::string(option) + "\n" + kUsage;
            return false;
        }
        const std::string_view value = argv[++i];
        bool ok = true;
        if (option == "-o" || option == "--output") {
            options.reportPath = value;
        } else if (option == "--ini") {
            options.iniPath = value;
        } else if (option == "--samples") {
            ok = ParseNumber(value, options.samples, 1, 1000000);
        } else if (option == "--metabolites") {
            ok = ParseNumber(value, options.metabolites, 0, 150);
        } else if (option == "--unexpected") {
            ok = ParseNumber(value, options.unexpected, 0, 6);
        } else if (option == "--points") {
            ok = ParseNumber(value, options.pointsPerTrace, 50, 10000000);
        } else if (option == "--spectra") {
            ok = ParseNumber(value, options.surveySpectra, 0, 100000);
        } else if (option == "--noise-peaks") {
            ok = ParseNumber(value, options.noisePeaks, 0, 100000);
        } else if (option == "--bulk-metabolites") {
            ok = ParseNumber(value, options.bulkMetabolites, 0, 10000000);
        } else if (option == "--half-life") {
            ok = ParseNumber(value, options.halfLifeMinutes, 0.1, 1.0e6);
        } else if (option == "--variation") {
            ok = ParseNumber(value, options.variation, 0.0, 10.0);
        } else if (option == "--seed") {
            ok = ParseNumber<uint64_t>(value, options.seed, 0, UINT64_MAX);
        } else {
            message = "unknown option " + std::string(option) + "\n" + kUsage;
            return false;
        }
        if (!ok) {
            message = "bad value '" + std::string(value) + "' for " + std::string(option) + "\n";
            return false;
        }
    }
    return true;
}

std::string SettingsPath(const GeneratorOptions& options) {
    if (!options.iniPath.empty()) {
        return options.iniPath;
    }
    const size_t slash = options.reportPath.find_last_of('/');
    return slash == std::string::npos ? "Tarnwick.ini"
                                      : options.reportPath.substr(0, slash + 1) + "Tarnwick.ini";
}

} // namespace quillon::generate
