#include "RowPrinter.h"

#include "Tool.h"
#include "json/NumberText.h"

#include <algorithm>

namespace quillon::tool {

namespace {

template <class Number>
void AppendNumber(std::string& out, Number number) {
    AppendShortest(out, number); // NaN and infinities: an empty cell
}

} // namespace

std::string FieldText(const FieldValue& value, bool forTable) {
    struct Visitor {
        bool forTable;
        std::string operator()(Null) const { return {}; }
        std::string operator()(bool flag) const {
            return forTable ? (flag ? "yes" : "no") : (flag ? "true" : "false");
        }
        std::string operator()(long long number) const { return std::to_string(number); }
        std::string operator()(float number) const {
            std::string text;
            AppendNumber(text, number);
            return text;
        }
        std::string operator()(double number) const {
            std::string text;
            AppendNumber(text, number);
            return text;
        }
        std::string operator()(std::string_view text) const { return std::string(text); }
        std::string operator()(std::span<const double> list) const {
            std::string text;
            for (size_t i = 0; i < list.size(); ++i) {
                if (i > 0)
                    text += ',';
                AppendNumber(text, list[i]);
            }
            return text;
        }
        std::string operator()(std::span<const int> list) const {
            std::string text;
            for (size_t i = 0; i < list.size(); ++i)
                text += (i > 0 ? "," : "") + std::to_string(list[i]);
            return text;
        }
    };
    return std::visit(Visitor{forTable}, value);
}

void AppendCsvCell(std::string& out, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    for (const char ch : text) {
        if (ch == '"')
            out += '"';
        out += ch;
    }
    out += '"';
}

RowPrinter::RowPrinter(const GlobalOptions& options) : RowPrinter(options.format, options.output) {}

RowPrinter::RowPrinter(const std::string& format, const std::string& output)
    : m_format(format == "json"  ? Format::kJson
               : format == "csv" ? Format::kCsv
                                 : Format::kTable),
      m_output(output), m_json(m_output) {
    if (m_format == Format::kJson)
        m_json.BeginArray();
}

void RowPrinter::BeginRow() {
    m_field = 0;
    if (m_format == Format::kJson)
        m_json.BeginRow();
    else if (m_format == Format::kTable)
        m_rows.emplace_back();
}

void RowPrinter::Put(std::string_view key, const FieldValue& value) {
    const bool numeric = !std::holds_alternative<std::string_view>(value) &&
                         !std::holds_alternative<bool>(value) &&
                         !std::holds_alternative<Null>(value);
    if (!m_headerDone) {
        m_columns.emplace_back(key);
        m_numeric.push_back(numeric);
    } else if (m_field < m_numeric.size() && numeric) {
        m_numeric[m_field] = true;
    }
    switch (m_format) {
    case Format::kJson:
        m_json.Put(key, value);
        break;
    case Format::kCsv:
        if (m_field > 0)
            m_line += ',';
        AppendCsvCell(m_line, FieldText(value, false));
        break;
    case Format::kTable:
        m_rows.back().push_back(FieldText(value, true));
        break;
    }
    ++m_field;
}

void RowPrinter::EndRow() {
    if (m_format == Format::kJson) {
        m_json.EndRow();
    } else if (m_format == Format::kCsv) {
        if (!m_headerDone) {
            std::string header;
            for (size_t c = 0; c < m_columns.size(); ++c) {
                if (c > 0)
                    header += ',';
                AppendCsvCell(header, m_columns[c]);
            }
            m_output.Write(header + "\n");
        }
        m_line += '\n';
        m_output.Write(m_line);
        m_line.clear();
    }
    m_headerDone = true;
}

void RowPrinter::PrintTable() {
    std::vector<size_t> width(m_columns.size(), 0);
    for (size_t c = 0; c < m_columns.size(); ++c)
        width[c] = m_columns[c].size();
    for (const auto& row : m_rows)
        for (size_t c = 0; c < row.size() && c < width.size(); ++c)
            width[c] = std::max(width[c], row[c].size());
    std::string text;
    auto line = [&](const std::vector<std::string>& cells) {
        for (size_t c = 0; c < width.size(); ++c) {
            const std::string cell = c < cells.size() ? cells[c] : "";
            const std::string pad(width[c] - std::min(width[c], cell.size()), ' ');
            text += (c ? "  " : "");
            text += m_numeric[c] ? pad + cell : cell + pad;
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    };
    line(m_columns);
    std::vector<std::string> rule;
    for (size_t w : width)
        rule.push_back(std::string(w, '-'));
    line(rule);
    for (const auto& row : m_rows)
        line(row);
    m_output.Write(text);
}

void RowPrinter::Close() {
    if (m_format == Format::kJson) {
        m_json.EndArray();
        m_json.Flush();
        m_output.Write("\n");
    } else if (m_format == Format::kTable && !m_columns.empty()) {
        PrintTable();
    }
    m_output.Close();
}

} // namespace quillon::tool
