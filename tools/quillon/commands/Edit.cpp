// quillon edit: applies the browser's metabolite edits to a report and saves it, atomically.
#include "AtomicSave.h"
#include "Command.h"
#include "Report.h"

#include <quillon/file/DelimitFile.h>
#include <quillon/platform/Exception.h>

#include <filesystem>
#include <iostream>
#include <map>

namespace quillon::tool {
namespace {

struct EditOptions {
    std::string report;
    std::string output;
    bool inPlace = false;
    std::vector<int> samples;
    std::vector<int> metabolites;
    std::vector<std::string> labels;
    std::vector<int> deletedElementals;
    int confirmCount = 0;
    int unconfirmCount = 0;
    CLI::Option* sampleOption = nullptr;
    CLI::Option* metaboliteOption = nullptr;
    CLI::Option* confirmOption = nullptr;
    CLI::Option* unconfirmOption = nullptr;
    CLI::Option* labelOption = nullptr;
    CLI::Option* deleteElementalOption = nullptr;
    const CLI::App* app = nullptr;
    const GlobalOptions* global = nullptr;
};

// Applies the edits in the order given: each --sample and --metabolite chooses the metabolite
// that the edits after it change. Returns a line per edit for the log.
std::vector<std::string> ApplyEdits(const EditOptions& options, LoadedReport& report) {
    std::map<const CLI::Option*, size_t> used;
    CSampleData* sample = nullptr;
    CMetaboliteData* metabolite = nullptr;
    int metaboliteIndex = -1;
    std::vector<std::string> log;
    auto target = [&](const std::string& edit) -> CMetaboliteData& {
        if (metabolite == nullptr)
            throw ToolError{edit + " needs a --sample and a --metabolite before it", kExitUsage};
        log.push_back("sample " + std::to_string(sample->GetNumber()) + ", metabolite " +
                      std::to_string(metaboliteIndex) + " (" + metabolite->GetMetName() +
                      "): " + edit);
        return *metabolite;
    };
    for (const CLI::Option* option : options.app->parse_order()) {
        const size_t n = used[option]++;
        if (option == options.sampleOption) {
            sample = &SampleByNumber(report, options.samples[n]);
            metabolite = nullptr;
        } else if (option == options.metaboliteOption) {
            metaboliteIndex = options.metabolites[n];
            if (sample == nullptr)
                throw ToolError{"--metabolite needs a --sample before it", kExitUsage};
            metabolite = sample->GetMetabolite(metaboliteIndex);
            if (metabolite == nullptr || metaboliteIndex < 0)
                throw ToolError{"sample " + std::to_string(sample->GetNumber()) +
                                    " has no metabolite " + std::to_string(metaboliteIndex) +
                                    " (it has " + std::to_string(sample->GetMetaboliteCount()) +
                                    ")",
                                kExitUsage};
        } else if (option == options.confirmOption) {
            target("confirmed").SetConfirmed(true);
        } else if (option == options.unconfirmOption) {
            target("unconfirmed").SetConfirmed(false);
        } else if (option == options.labelOption) {
            target("labelled '" + options.labels[n] + "'").SetUserLabel(options.labels[n].c_str());
        } else if (option == options.deleteElementalOption) {
            const int candidate = options.deletedElementals[n];
            CMetaboliteData& edited =
                target("elemental candidate " + std::to_string(candidate) + " deleted");
            if (candidate < 0 || candidate >= edited.GetNumElementalResults())
                throw ToolError{"metabolite " + std::to_string(metaboliteIndex) + " has no " +
                                    "elemental candidate " + std::to_string(candidate) +
                                    " (it has " + std::to_string(edited.GetNumElementalResults()) +
                                    ")",
                                kExitUsage};
            edited.DeleteElementalResult(candidate);
        }
    }
    if (log.empty())
        throw ToolError{"nothing to do: give --confirm, --unconfirm, --label or "
                        "--delete-elemental",
                        kExitUsage};
    return log;
}

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

int Run(const EditOptions& options) {
    std::string output = options.output;
    if (output.empty() && options.inPlace)
        output = options.report;
    if (output.empty())
        throw ToolError{"name the edited copy with -o FILE, or give --in-place", kExitUsage};
    if (!options.inPlace && SameFile(output, options.report))
        throw ToolError{"'" + output + "' is the input: give --in-place to rewrite it", kExitUsage};

    LoadedReport report = LoadReport(options.report);
    const std::vector<std::string> log = ApplyEdits(options, report);

    SaveAtomically(output, [&](const std::string& temporary) {
        try {
            CDelimitFile in(options.report.c_str(), CFile::modeRead);
            CDelimitFile out(temporary.c_str(), CFile::modeWrite | CFile::modeCreate);
            if (report.samples->Write(&in, &out) == 0)
                throw ToolError{"cannot write '" + output + "'"};
            out.Close();
        } catch (const CException& exception) {
            char text[512] = "";
            exception.GetErrorMessage(text, sizeof text);
            throw ToolError{"cannot write '" + output + "': " + text};
        }
    });
    if (!options.global->quiet) {
        for (const std::string& line : log)
            std::cerr << "quillon: " << line << '\n';
        std::cerr << "quillon: saved '" << output << "'\n";
    }
    return kExitSuccess;
}

const CommandRegistration registration{
    {"edit", "Confirms, unconfirms, labels metabolites or deletes elemental candidates, and saves",
     [](CLI::App& app, const GlobalOptions& global) -> std::function<int()> {
         auto options = std::make_shared<EditOptions>();
         auto& o = *options;
         o.app = &app;
         o.global = &global;
         app.footer("Each --sample/--metabolite pair chooses the metabolite that the edits after "
                    "it change; repeat them to edit several.\nThe file is saved through a "
                    "temporary file renamed over the target: a failure leaves it untouched.\n"
                    "Example: quillon edit examples/Chlorpromazine_HLM_batch.txt -o edited.txt "
                    "--sample 4 --metabolite 3 --confirm --label \"N-desmethyl\"");
         app.add_option("REPORT", o.report, "The report file")->required();
         app.add_option("-o,--output", o.output, "The edited copy");
         app.add_flag("--in-place", o.inPlace, "Rewrite the report itself");
         o.sampleOption =
             app.add_option("-s,--sample", o.samples, "The sample's number")->required();
         o.metaboliteOption =
             app.add_option("-m,--metabolite", o.metabolites,
                            "The metabolite's index in the sample (the 'index' column of "
                            "'quillon metabolites')")
                 ->required();
         o.confirmOption = app.add_flag("--confirm", o.confirmCount, "Confirm the metabolite");
         o.unconfirmOption =
             app.add_flag("--unconfirm", o.unconfirmCount, "Withdraw the confirmation");
         o.labelOption = app.add_option("--label", o.labels, "Give the metabolite a label");
         o.deleteElementalOption = app.add_option("--delete-elemental", o.deletedElementals,
                                                  "Delete the metabolite's elemental candidate K "
                                                  "(from 0)");
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
