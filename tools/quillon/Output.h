#pragma once

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace quillon::tool {

// How rows are printed: an aligned table for people, CSV with a header row, or JSON.
enum class Format { Table, Csv, Json };

// Adds "--format table|csv|json" to a subcommand.
void AddFormatOption(CLI::App& app, Format& format);
// Adds "-o,--output FILE" to a subcommand (standard output when not given).
void AddOutputOption(CLI::App& app, std::string& path);

// Rows under named columns. A cell is a JSON value: a string, a number, a boolean or null; the
// table and CSV show a boolean as "yes"/"no" and null as an empty cell.
struct Table {
    std::vector<std::string> columns;
    std::vector<std::vector<nlohmann::json>> rows;
};

// A number the library keeps in single precision, as the shortest decimal that reads back to it
// (0.0334f gives 0.0334, not 0.033399999141693115).
nlohmann::json Real(float value);

// The text of one cell as the table and CSV show it.
std::string CellText(const nlohmann::json& cell);
// The rows as an array of objects keyed by column name.
nlohmann::json ToJson(const Table& table);
// The table in the given format, ending with a newline. Table: columns padded to their widest
// cell, numbers right-aligned. CSV: a header row, then one line a row, cells quoted when they hold
// a comma, a quote or a line break.
std::string Render(const Table& table, Format format);

// Writes the text to standard output when path is empty or "-", otherwise to the file through a
// temporary file renamed over it, so a failure never leaves a partial file. Throws ToolError.
void WriteOutput(const std::string& path, const std::string& text);

} // namespace quillon::tool
