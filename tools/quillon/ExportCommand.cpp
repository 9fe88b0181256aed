// export: the whole model of a report as one JSON document or as CSV tables in a folder, written
// row by row as the model is walked, so that memory stays that of the loaded report.
#include "Commands.h"
#include "RowPrinter.h"
#include "json/ModelTables.h"

#include <filesystem>
#include <memory>

namespace quillon::tool {

namespace {

// {"report": path, "samples": [...], "functions": [...], ...}: one record a line.
void ExportJson(CSamples& samples, const std::string& report, const std::string& path) {
    Output output(path);
    JsonWriter json(output);
    json.BeginObject();
    json.Put("report", std::string_view(report));
    for (const auto& [table, name] : kModelTables) {
        json.Key(name);
        json.BeginArray();
        WriteModelTable(table, samples, json);
        json.EndArray();
    }
    json.EndObject();
    json.Flush();
    output.Write("\n");
    output.Close();
}

// One NAME.csv a table in folder.
void ExportCsv(CSamples& samples, const std::string& folder, const GlobalOptions& options) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw ToolError("cannot create '" + folder + "': " + error.message());
    for (const auto& [table, name] : kModelTables) {
        RowPrinter rows("csv", (std::filesystem::path(folder) / name).string() + ".csv");
        WriteModelTable(table, samples, rows);
        rows.Close();
    }
    Note(options, "wrote " + std::to_string(kModelTables.size()) + " tables to " + folder);
}

} // namespace

void RegisterExport(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        std::string format = "json";
        std::string output;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "export",
        "The whole model: samples, functions, traces with points, peaks, spectra with points,\n"
        "metabolites, elemental candidates, correlation; JSON in one file or CSV as one file per\n"
        "table in a folder. Every row starts with the full key of what it belongs to (sample,\n"
        "function, trace, peak id); rows are written as they are produced\n"
        "  example: quillon export batch.txt --format csv -o batch-tables");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--format", settings->format, "json or csv")
        ->check(CLI::IsMember({"json", "csv"}));
    command->add_option("-o,--output", settings->output,
                        "The JSON file (standard output when left out) or the CSV folder");
    command->callback([settings, &options] {
        const bool json = settings->format == "json";
        if (!json && (settings->output.empty() || settings->output == "-"))
            throw ToolError("export --format csv needs -o FOLDER", kExitUsage);
        CSamples samples;
        LoadReport(settings->path, samples, options);
        if (json)
            ExportJson(samples, settings->path, settings->output);
        else
            ExportCsv(samples, settings->output, options);
    });
}

} // namespace quillon::tool
