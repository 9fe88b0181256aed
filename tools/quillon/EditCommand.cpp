// edit: the browser's edits of metabolites, saved through the library's writer.
#include "Commands.h"

#include <filesystem>
#include <memory>

namespace quillon::tool {

void RegisterEdit(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        std::string output;
        bool inPlace = false;
        int sample = 0;
        int metabolite = -1;
        bool confirm = false;
        bool unconfirm = false;
        std::string label;
        std::vector<int> deleteElemental;
    };
    auto settings = std::make_shared<Settings>();
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
    command->add_option("--label", settings->label, "Set the user's label");
    command->add_option("--delete-elemental", settings->deleteElemental,
                        "Delete elemental candidate K (repeatable; indices of the original list)");
    command->callback([settings, &options] {
        if (settings->output.empty() && !settings->inPlace)
            throw ToolError("edit needs -o OUT or --in-place", kExitUsage);
        CSamples samples;
        LoadReport(settings->path, samples);
        CSampleData& sample = SampleByNumber(samples, settings->sample, settings->path);
        CMetaboliteData* metabolite = sample.GetMetabolite(settings->metabolite);
        if (metabolite == nullptr)
            throw ToolError("sample " + std::to_string(settings->sample) + " has no metabolite " +
                            std::to_string(settings->metabolite));
        if (settings->confirm)
            metabolite->SetConfirmed(true);
        if (settings->unconfirm)
            metabolite->SetConfirmed(false);
        if (!settings->label.empty())
            metabolite->SetUserLabel(settings->label.c_str());
        // Highest first, so every index names a candidate of the original list.
        std::vector<int> doomed = settings->deleteElemental;
        std::sort(doomed.rbegin(), doomed.rend());
        for (int index : doomed)
            metabolite->DeleteElementalResult(index);
        const std::string target = settings->inPlace ? settings->path : settings->output;
        SaveReport(samples, settings->path, target);
        Note(options, "saved " + target);
    });
}

} // namespace quillon::tool
