#pragma once

// Rows of records printed in the chosen format: JSON (an array of objects, one a line) and CSV (a
// header of the first row's keys, then one line a row) are written as the rows come; a table is
// collected and aligned when closed, numbers to the right.
//
//     RowPrinter rows(options);
//     for (...) { rows.BeginRow(); SampleRecord(rows, sample); rows.EndRow(); }
//     rows.Close();

#include "Output.h"
#include "json/JsonWriter.h"

#include <string>
#include <vector>

namespace quillon::tool {

struct GlobalOptions;

class RowPrinter : public RowSink {
public:
    // Writes to options.output (standard output when empty) in options.format.
    explicit RowPrinter(const GlobalOptions& options);
    RowPrinter(const std::string& format, const std::string& output);

    void BeginRow() override;
    void Put(std::string_view key, const FieldValue& value) override;
    void EndRow() override;
    // Finishes the document and replaces the output file. Throws ToolError on a write failure.
    void Close();

private:
    enum class Format { kTable, kCsv, kJson };

    void PrintTable();

    Format m_format;
    Output m_output;
    JsonWriter m_json;
    std::vector<std::string> m_columns;
    std::vector<bool> m_numeric;
    std::vector<std::vector<std::string>> m_rows; // table only
    std::string m_line;                           // the CSV line being built
    size_t m_field = 0;
    bool m_headerDone = false;
};

// A field's value as CSV or table text: numbers in their shortest text, booleans as true/false
// (a table shows yes/no), lists joined by commas, null as an empty cell.
std::string FieldText(const FieldValue& value, bool forTable);

// text as a CSV cell: quoted, with quotes doubled, when it holds a comma, a quote or a line break.
void AppendCsvCell(std::string& out, std::string_view text);

} // namespace quillon::tool
