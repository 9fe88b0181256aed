// check: reads a report and lists what reading passed over or could not read (the library's read
// report, with line numbers), and samples that appear more than once.
#include "Commands.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>

namespace quillon::tool {

namespace {

std::string Finding(const CReadReport::Entry& entry) {
    const std::string name = entry.name.str();
    switch (entry.kind) {
    case CReadReport::UnknownSection:
        return "unknown section [" + name + "] skipped with its block";
    case CReadReport::StrayBlock:
        return "a block outside any section skipped";
    case CReadReport::StrayBlockEnd:
        return "a \"}\" closes no block";
    case CReadReport::StrayLine:
        return "a line outside any section (\"" + name + "\") passed over";
    case CReadReport::SampleError:
        return "a sample could not be read and was left out: " + entry.detail.str();
    case CReadReport::OpenBlock:
        return "the block of [" + name + "] is left open at the end of the file";
    }
    return {};
}

// The line number (from 1) of each offset, counting the line ends before it in one pass.
std::map<int64_t, int64_t> LineNumbers(const std::string& path, std::vector<int64_t> offsets) {
    std::sort(offsets.begin(), offsets.end());
    std::map<int64_t, int64_t> lines;
    std::ifstream file(path, std::ios::binary);
    std::vector<char> buffer(1 << 16);
    int64_t position = 0;
    int64_t line = 1;
    size_t next = 0;
    while (next < offsets.size() && file) {
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        const std::streamsize read = file.gcount();
        for (std::streamsize i = 0; i < read && next < offsets.size(); ++i, ++position) {
            while (next < offsets.size() && offsets[next] == position)
                lines[offsets[next++]] = line;
            line += buffer[static_cast<size_t>(i)] == '\n' ? 1 : 0;
        }
    }
    for (; next < offsets.size(); ++next)
        lines[offsets[next]] = line;
    return lines;
}

} // namespace

void RegisterCheck(CLI::App& app, GlobalOptions& options) {
    auto path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand(
        "check", "Reads a report and reports what a careful reader would want to know: sections\n"
                 "skipped, lines outside any section, samples that could not be read, duplicate\n"
                 "samples, a block left open; exit code 1 when something was found\n"
                 "  example: quillon check batch.txt");
    command->add_option("REPORT", *path, "The report file")->required();
    command->callback([path, &options] {
        // Reading errors are listed below with where they happened, not shown as they occur.
        const HostHooks saved = GetHostHooks();
        HostHooks silent = saved;
        silent.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
        SetHostHooks(silent);
        CSamples samples;
        try {
            LoadReport(*path, samples);
        } catch (...) {
            SetHostHooks(saved);
            throw;
        }
        SetHostHooks(saved);

        const CReadReport& report = samples.GetReadReport();
        std::vector<int64_t> offsets;
        for (const CReadReport::Entry& entry : report.entries)
            offsets.push_back(entry.offset);
        const std::map<int64_t, int64_t> lines = LineNumbers(*path, offsets);
        std::vector<std::string> findings;
        for (const CReadReport::Entry& entry : report.entries)
            findings.push_back("line " + std::to_string(lines.at(entry.offset)) + ": " +
                               Finding(entry));
        if (report.omitted > 0)
            findings.push_back(std::to_string(report.omitted) + " more such lines not listed");

        std::map<int, int> numbers;
        for (int i = 0; i < samples.GetSamplesCount(); ++i)
            ++numbers[samples.GetSample(i)->GetNumber()];
        for (const auto& [number, count] : numbers) {
            if (count > 1)
                findings.push_back("sample " + std::to_string(number) + " appears " +
                                   std::to_string(count) + " times");
        }
        for (const std::string& finding : findings)
            std::cout << *path << ": " << finding << "\n";
        if (!findings.empty())
            throw ToolError(std::to_string(findings.size()) + " problem(s) found in '" + *path +
                            "'");
        Note(options, "'" + *path + "': " + std::to_string(samples.GetSamplesCount()) +
                          " samples, no problems found");
    });
}

} // namespace quillon::tool
