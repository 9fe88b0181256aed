// molfiles: the structures embedded in a report, extracted into files of their own.
#include "Commands.h"
#include "RowPrinter.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

namespace quillon::tool {

void RegisterMolfiles(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        std::string directory;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "molfiles",
        "Extracts the molfiles embedded in a report into a folder, listed in its Molfiles.list\n"
        "  example: quillon molfiles batch.txt -d structures");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command
        ->add_option("-d,--directory", settings->directory,
                     "The folder for the molfiles and Molfiles.list (created when missing; a list "
                     "already there is started afresh)")
        ->required();
    AddOutputOptions(*command, options);
    command->callback([settings, &options] {
        const std::filesystem::path folder =
            std::filesystem::absolute(settings->directory).lexically_normal();
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        if (error || !std::filesystem::is_directory(folder))
            throw ToolError("cannot create '" + settings->directory +
                            "': " + (error ? error.message() : "not a folder"));
        // The library extracts while it reads, into the molfile directory of the host hooks.
        std::string prefix = folder.string();
        if (prefix.back() != '/')
            prefix += '/';
        HostHooks hooks = GetHostHooks();
        hooks.molfileDirectory = [prefix] { return CString(prefix); };
        SetHostHooks(hooks);
        if (!CMolfile::StartList())
            throw ToolError("cannot write '" + CMolfile::ListPath().str() +
                            "': " + std::strerror(errno));

        CSamples samples;
        LoadReport(settings->path, samples, options);
        CStringArray paths;
        if (!CMolfile::ReadList(paths))
            throw ToolError("cannot read '" + CMolfile::ListPath().str() + "'");
        RowPrinter rows(options);
        for (const CString& path : paths) {
            CString reference;
            int number = 0;
            CString name;
            int dimensions = 0;
            CMolfile::SplitMolfilePath(path, reference, number);
            const bool readable = CMolfile::ReadHeader(path, name, dimensions);
            rows.BeginRow();
            rows.Field("sample", number);
            rows.Field("reference", reference);
            rows.Field("name", name);
            rows.FieldIf("dimensions", readable, dimensions);
            rows.Field("file", path);
            rows.EndRow();
        }
        rows.Close();
        Note(options, paths.IsEmpty() ? "'" + settings->path + "' holds no molfiles"
                                      : "wrote " + std::to_string(paths.GetSize()) +
                                            " molfile(s) listed in " + CMolfile::ListPath().str());
    });
}

} // namespace quillon::tool
