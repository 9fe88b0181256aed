// edit: the browser's edits of metabolites, saved through the library's writer.
#include "Commands.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace quillon::tool {

namespace {

struct EditSettings {
    std::string path;
    std::string output;
    bool inPlace = false;
    int sample = 0;
    int metabolite = -1;
    bool confirm = false;
    bool unconfirm = false;
    std::optional<std::string> label;
    std::vector<int> deleteElemental;
};

// The library's edits that the options ask for, in the order they are applied. Candidates are
// deleted highest first, so that every index names a candidate of the original list.
std::vector<CMetaboliteEdit> EditsOf(const EditSettings& settings) {
    std::vector<CMetaboliteEdit> edits;
    auto add = [&](CMetaboliteEdit::Kind kind) -> CMetaboliteEdit& {
        CMetaboliteEdit& edit = edits.emplace_back();
        edit.kind = kind;
        edit.sample = settings.sample;
        edit.metabolite = settings.metabolite;
        return edit;
    };
    if (settings.confirm)
        add(CMetaboliteEdit::Confirm);
    if (settings.unconfirm)
        add(CMetaboliteEdit::Unconfirm);
    if (settings.label)
        add(CMetaboliteEdit::SetLabel).label = settings.label->c_str();
    std::vector<int> doomed = settings.deleteElemental;
    std::sort(doomed.rbegin(), doomed.rend());
    doomed.erase(std::unique(doomed.begin(), doomed.end()), doomed.end());
    for (int index : doomed)
        add(CMetaboliteEdit::DeleteElemental).candidate = index;
    return edits;
}

} // namespace

void RegisterEdit(CLI::App& app, GlobalOptions& options) {
    auto settings = std::make_shared<EditSettings>();
    CLI::App* command = app.add_subcommand(
        "edit", "Edits a metabolite as the browser does and saves the report (atomically)\n"
                "  example: quillon edit batch.txt -o edited.txt --sample 4 --metabolite 0 "
                "--confirm --label \"checked\"");
    command->add_option("REPORT", settings->path, "The report file")->required();
    auto* output = command->add_option("-o,--output", settings->output, "The report to write");
    auto* inPlace = command->add_flag("--in-place", settings->inPlace, "Save over REPORT itself");
    output->excludes(inPlace);
    command->add_option("--sample", settings->sample, "The sample's number")->required();
    command
        ->add_option("--metabolite", settings->metabolite,
                     "The metabolite's index in the sample (as 'quillon export' lists it)")
        ->required();
    command->add_flag("--confirm", settings->confirm, "Mark the metabolite confirmed");
    command->add_flag("--unconfirm", settings->unconfirm, "Clear the confirmation");
    command->add_option("--label", settings->label,
                        "Set the user's label (one line: no tab or line break)");
    command->add_option("--delete-elemental", settings->deleteElemental,
                        "Delete elemental candidate K (repeatable; indices of the original list)");
    command->callback([settings, &options] {
        if (settings->output.empty() && !settings->inPlace)
            throw ToolError("edit needs -o OUT or --in-place", kExitUsage);
        if (settings->path == "-" && settings->output.empty())
            throw ToolError(
                "edit of standard input needs -o OUT: there is no file to edit in place",
                kExitUsage);
        if (settings->confirm && settings->unconfirm)
            throw ToolError("--confirm and --unconfirm contradict each other", kExitUsage);
        const std::vector<CMetaboliteEdit> edits = EditsOf(*settings);
        if (edits.empty())
            throw ToolError("edit needs a change: --confirm, --unconfirm, --label or "
                            "--delete-elemental",
                            kExitUsage);
        CSamples samples;
        LoadReport(settings->path, samples, options);
        // Every edit is checked against the report as it will be when its turn comes, and
        // nothing is written unless all of them apply.
        for (const CMetaboliteEdit& edit : edits) {
            const std::string problem = CheckMetaboliteEdit(samples, edit);
            if (!problem.empty())
                throw ToolError(problem, kExitUsage);
            ApplyMetaboliteEdit(samples, edit);
        }
        const std::string target = settings->inPlace ? settings->path : settings->output;
        SaveReport(samples, settings->path, target);
        Note(options, "saved " + target);
    });
}

} // namespace quillon::tool
