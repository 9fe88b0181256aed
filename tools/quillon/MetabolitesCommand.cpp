// metabolites: the metabolite table of a report, filtered by the browser's result filters.
#include "Commands.h"
#include "MetaboliteRow.h"
#include "RowPrinter.h"

#include <algorithm>
#include <memory>

namespace quillon::tool {

namespace {

struct MetaboliteOptions {
    std::string path;
    int sample = 0;
    std::vector<double> massDefect; // ABOVE, or ABOVE BELOW
    std::vector<double> area;       // at most one
    std::vector<double> relativeArea;
    bool areaUnexpectedOnly = false;
    std::vector<double> massError;
    bool hideIsotopes = false;
    bool withElemental = false;
    std::vector<double> time; // LOW HIGH
    bool hideHighEnergy = false;
};

std::string OptionName(std::string_view key) {
    std::string name = "--" + std::string(key);
    std::replace(name.begin(), name.end(), '_', '-');
    return name;
}

// The browser's filter from the options; throws a usage error for a negative, reversed or
// not-a-number setting.
CResultFilter FilterOf(const MetaboliteOptions& options) {
    if (options.sample < 0)
        throw ToolError("--sample takes a sample number", kExitUsage);
    auto first = [](const std::vector<double>& values) {
        return values.empty() ? std::nullopt : std::optional<double>(values.front());
    };
    CResultFilter filter;
    if (!options.massDefect.empty())
        filter.massDefect = {options.massDefect.back(), options.massDefect.front()};
    filter.area = first(options.area);
    filter.relativeArea = first(options.relativeArea);
    filter.areaUnexpectedOnly = options.areaUnexpectedOnly;
    filter.massError = first(options.massError);
    filter.hideIsotopes = options.hideIsotopes;
    filter.withElemental = options.withElemental;
    if (!options.time.empty())
        filter.time = {options.time[0], options.time[1]};
    filter.hideHighEnergy = options.hideHighEnergy;
    const std::string problem = ResultFilterProblem(filter, OptionName);
    if (!problem.empty())
        throw ToolError(problem, kExitUsage);
    return filter;
}

constexpr const char* kDescription =
    "The metabolite rows of a report (all samples, or one), with the index that\n"
    "'quillon edit --metabolite' takes, filtered as the browser filters its results.\n"
    "The filters apply to these rows only, as the browser applies them:\n"
    "  --mass-error       expected metabolites\n"
    "  --area, --relative-area\n"
    "                     every row that is not high-energy (expected rows too, unless\n"
    "                     --area-unexpected-only); a row without a peak area fails\n"
    "  --hide-isotopes    expected isotope peaks\n"
    "  --with-elemental, --time, --mass-defect\n"
    "                     unexpected metabolites (--mass-defect skips high-energy ones)\n"
    "  --hide-high-energy unexpected high-energy metabolites\n"
    "MS/MS correlation rows meet only the area filter.\n"
    "  example: quillon metabolites batch.txt --sample 4 --area 10000 --time 5 15";

} // namespace

void RegisterMetabolites(CLI::App& app, GlobalOptions& options) {
    auto settings = std::make_shared<MetaboliteOptions>();
    CLI::App* command = app.add_subcommand("metabolites", kDescription);
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--sample", settings->sample, "Only the sample with this number");
    command
        ->add_option("--mass-defect", settings->massDefect,
                     "ABOVE [BELOW]: keep unexpected metabolites whose predicted mass lies at\n"
                     "most ABOVE Da above a whole mass or BELOW Da (default ABOVE) below the\n"
                     "next (0.25 0.05 keeps 301.20 and 301.96, not 301.50)")
        ->expected(1, 2);
    command->add_option("--area", settings->area, "Keep rows whose peak area is greater than AREA")
        ->expected(1);
    command
        ->add_option("--relative-area", settings->relativeArea,
                     "Keep rows whose relative peak area (% of its group) is greater than "
                     "PERCENT")
        ->expected(1);
    command->add_flag("--area-unexpected-only", settings->areaUnexpectedOnly,
                      "The area filter passes expected metabolites (and with them every later "
                      "filter)");
    command
        ->add_option("--mass-error", settings->massError,
                     "Keep expected metabolites whose mass error is at most MDA millidaltons "
                     "(either sign)")
        ->expected(1);
    command->add_flag("--hide-isotopes", settings->hideIsotopes,
                      "Leave out expected metabolites that are isotope peaks");
    command->add_flag("--with-elemental", settings->withElemental,
                      "Keep unexpected metabolites only when they have elemental candidates");
    command
        ->add_option("--time", settings->time,
                     "LOW HIGH: keep unexpected metabolites whose peak time is from LOW to "
                     "HIGH min (both included)")
        ->expected(2);
    command->add_flag("--hide-high-energy", settings->hideHighEnergy,
                      "Leave out unexpected metabolites of high-energy functions");
    AddOutputOptions(*command, options);
    command->callback([settings, &options] {
        const CDivBroParams params = ResultFilterParams(FilterOf(*settings));
        CSamples samples;
        LoadReport(settings->path, samples, options);
        if (settings->sample != 0)
            SampleByNumber(samples, settings->sample, settings->path);
        RowPrinter rows(options);
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            CSampleData& sample = *samples.GetSample(i);
            if (settings->sample != 0 && sample.GetNumber() != settings->sample)
                continue;
            for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
                if (!sample.GetMetabolite(m)->ApplyDataFilters(&params, false))
                    continue;
                rows.BeginRow();
                MetaboliteRow(rows, sample, m);
                rows.EndRow();
            }
        }
        rows.Close();
    });
}

} // namespace quillon::tool
