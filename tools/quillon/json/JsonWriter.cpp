#include "JsonWriter.h"

#include "../Output.h"
#include "NumberText.h"

#include <cstdio>

namespace quillon::tool {

namespace {

constexpr size_t kFlushAt = 1 << 16;

template <class Number>
void AppendFloat(std::string& out, Number value) {
    const size_t start = out.size();
    if (!AppendShortest(out, value))
        out += "null";
    else if (LooksIntegral(std::string_view(out).substr(start)))
        out += ".0";
}

} // namespace

void AppendJsonString(std::string& out, std::string_view text) {
    out += '"';
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (ch == '"' || ch == '\\') {
            out += '\\';
            out += ch;
        } else if (ch == '\n') {
            out += "\\n";
        } else if (ch == '\t') {
            out += "\\t";
        } else if (ch == '\r') {
            out += "\\r";
        } else if (byte < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
            out += escaped;
        } else {
            out += ch;
        }
    }
    out += '"';
}

void AppendJson(std::string& out, const FieldValue& value) {
    struct Visitor {
        std::string& out;
        void operator()(Null) const { out += "null"; }
        void operator()(bool flag) const { out += flag ? "true" : "false"; }
        void operator()(long long number) const { out += std::to_string(number); }
        void operator()(float number) const { AppendFloat(out, number); }
        void operator()(double number) const { AppendFloat(out, number); }
        void operator()(std::string_view text) const { AppendJsonString(out, text); }
        void operator()(std::span<const double> list) const {
            out += '[';
            for (size_t i = 0; i < list.size(); ++i) {
                if (i > 0)
                    out += ',';
                AppendFloat(out, list[i]);
            }
            out += ']';
        }
        void operator()(std::span<const int> list) const {
            out += '[';
            for (size_t i = 0; i < list.size(); ++i) {
                if (i > 0)
                    out += ',';
                out += std::to_string(list[i]);
            }
            out += ']';
        }
    };
    std::visit(Visitor{out}, value);
}

JsonWriter::JsonWriter(Output& output) : m_output(output) {
    m_text.reserve(kFlushAt + 4096);
}

void JsonWriter::BeforeValue() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_levels.empty())
        return;
    Level& level = m_levels.back();
    if (!level.first)
        m_text += ',';
    level.first = false;
    // The keys of the outermost object and the elements of the outer arrays each start a line,
    // so that a record is a line.
    if (m_levels.size() == 1 || (level.array && m_levels.size() <= 2))
        m_text += '\n';
}

void JsonWriter::BeginObject() {
    BeforeValue();
    m_text += '{';
    m_levels.push_back({true, false});
}

void JsonWriter::EndObject() {
    m_levels.pop_back();
    m_text += '}';
    if (m_text.size() >= kFlushAt)
        Flush();
}

void JsonWriter::BeginArray() {
    BeforeValue();
    m_text += '[';
    m_levels.push_back({true, true});
}

void JsonWriter::EndArray() {
    m_levels.pop_back();
    m_text += ']';
}

void JsonWriter::Key(std::string_view key) {
    BeforeValue();
    AppendJsonString(m_text, key);
    m_text += ':';
    m_afterKey = true;
}

void JsonWriter::Value(const FieldValue& value) {
    BeforeValue();
    AppendJson(m_text, value);
}

void JsonWriter::Put(std::string_view key, const FieldValue& value) {
    Key(key);
    Value(value);
}

void JsonWriter::Flush() {
    m_output.Write(m_text);
    m_text.clear();
}

} // namespace quillon::tool
