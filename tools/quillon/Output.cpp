#include "Output.h"

#include "AtomicSave.h"
#include "Command.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace quillon::tool {

void AddFormatOption(CLI::App& app, Format& format) {
    app.add_option_function<std::string>(
           "--format",
           [&format](std::string name) {
               std::transform(name.begin(), name.end(), name.begin(),
                              [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
               format = name == "csv" ? Format::Csv : name == "json" ? Format::Json : Format::Table;
           },
           "Output format: table (default), csv or json")
        ->check(CLI::IsMember({"table", "csv", "json"}, CLI::ignore_case));
}

void AddOutputOption(CLI::App& app, std::string& path) {
    app.add_option("-o,--output", path, "Write to FILE instead of standard output");
}

nlohmann::json Real(float value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return std::strtod(std::string(text, result.ptr).c_str(), nullptr);
}

std::string CellText(const nlohmann::json& cell) {
    if (cell.is_null())
        return {};
    if (cell.is_string())
        return cell.get<std::string>();
    if (cell.is_boolean())
        return cell.get<bool>() ? "yes" : "no";
    return cell.dump();
}

nlohmann::json ToJson(const Table& table) {
    nlohmann::json rows = nlohmann::json::array();
    for (const auto& row : table.rows) {
        nlohmann::json object = nlohmann::json::object();
        for (size_t i = 0; i < table.columns.size() && i < row.size(); ++i)
            object[table.columns[i]] = row[i];
        rows.push_back(std::move(object));
    }
    return rows;
}

namespace {

std::string CsvCell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::string RenderCsv(const Table& table) {
    std::string out;
    auto line = [&out](const std::vector<std::string>& cells) {
        for (size_t i = 0; i < cells.size(); ++i)
            out += (i ? "," : "") + CsvCell(cells[i]);
        out += '\n';
    };
    line(table.columns);
    for (const auto& row : table.rows) {
        std::vector<std::string> cells;
        for (const auto& cell : row)
            cells.push_back(CellText(cell));
        line(cells);
    }
    return out;
}

std::string RenderTable(const Table& table) {
    std::vector<size_t> widths;
    for (const auto& column : table.columns)
        widths.push_back(column.size());
    for (const auto& row : table.rows)
        for (size_t i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], CellText(row[i]).size());
    std::string out;
    // One line of cells, numbers right-aligned, without blanks at its end.
    auto line = [&out, &widths](const std::vector<std::string>& cells,
                                const std::vector<bool>& right) {
        for (size_t i = 0; i < cells.size() && i < widths.size(); ++i) {
            const std::string fill(widths[i] - std::min(widths[i], cells[i].size()), ' ');
            out += (i ? "  " : "") + (right[i] ? fill + cells[i] : cells[i] + fill);
        }
        out.erase(out.find_last_not_of(' ') + 1);
        out += '\n';
    };
    const std::vector<bool> left(widths.size(), false);
    line(table.columns, left);
    std::vector<std::string> rules;
    for (size_t width : widths)
        rules.emplace_back(width, '-');
    line(rules, left);
    for (const auto& row : table.rows) {
        std::vector<std::string> cells;
        std::vector<bool> right;
        for (const auto& cell : row) {
            cells.push_back(CellText(cell));
            right.push_back(cell.is_number());
        }
        line(cells, right);
    }
    return out;
}

} // namespace

std::string Render(const Table& table, Format format) {
    switch (format) {
    case Format::Csv:
        return RenderCsv(table);
    case Format::Json:
        return ToJson(table).dump(2) + "\n";
    case Format::Table:
        break;
    }
    return RenderTable(table);
}

void WriteOutput(const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") {
        std::cout << text << std::flush;
        if (!std::cout)
            throw ToolError{"cannot write to standard output"};
        return;
    }
    SaveAtomically(path, [&text, &path](const std::string& temporary) {
        std::FILE* file = std::fopen(temporary.c_str(), "wb");
        if (file == nullptr)
            throw ToolError{"cannot write '" + path + "': " + std::strerror(errno)};
        const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
        const int savedErrno = errno;
        if (std::fclose(file) != 0 || !written)
            throw ToolError{"cannot write '" + path +
                            "': " + std::strerror(written ? errno : savedErrno)};
    });
}

} // namespace quillon::tool
