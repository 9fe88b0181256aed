#include <quillon/platform/ProfileFile.h>

#include <quillon/platform/AtomicFile.h>
#include <quillon/platform/FileException.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";

std::string_view TrimLeft(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view Trim(std::string_view text) {
    text = TrimLeft(text);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

char LowerAscii(char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (LowerAscii(a[i]) != LowerAscii(b[i]))
            return false;
    }
    return true;
}

// "[name]" with optional blanks around; the name runs to the last ']' of the line.
bool ParseSection(std::string_view content, std::string_view& name) {
    content = TrimLeft(content);
    if (content.empty() || content.front() != '[')
        return false;
    const size_t close = content.rfind(']');
    if (close == std::string_view::npos || close == 0)
        return false;
    name = Trim(content.substr(1, close - 1));
    return true;
}

// "key=value"; comments, section headers and lines without '=' are not keys.
bool ParseKey(std::string_view content, std::string_view& key, std::string_view& value) {
    content = TrimLeft(content);
    if (content.empty() || content.front() == ';' || content.front() == '[')
        return false;
    const size_t equals = content.find('=');
    if (equals == std::string_view::npos)
        return false;
    key = Trim(content.substr(0, equals));
    value = Trim(content.substr(equals + 1));
    return true;
}

std::string_view StripQuotes(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

// Every text written becomes exactly one line: line breaks inside it turn into blanks.
std::string OneLine(std::string_view text) {
    std::string line(text);
    for (char& ch : line) {
        if (ch == '\r' || ch == '\n')
            ch = ' ';
    }
    return line;
}

} // namespace

CProfileFile::CProfileFile(std::string path) : m_path(std::move(path)) {}

bool CProfileFile::Load() {
    m_lines.clear();
    std::error_code error;
    const fs::file_status status = fs::status(m_path, error);
    if (status.type() == fs::file_type::not_found)
        return true;
    // Anything but a regular file (a directory, a pipe) is refused rather than read.
    if (error || !fs::is_regular_file(status))
        return false;

    std::ifstream in(m_path, std::ios::binary);
    if (!in)
        return false;
    const std::string data{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad())
        return false;

    size_t start = 0;
    while (start < data.size()) {
        const size_t newline = data.find('\n', start);
        if (newline == std::string::npos) {
            m_lines.push_back({data.substr(start), ""});
            break;
        }
        const bool crlf = newline > start && data[newline - 1] == '\r';
        const size_t end = crlf ? newline - 1 : newline;
        m_lines.push_back({data.substr(start, end - start), crlf ? "\r\n" : "\n"});
        start = newline + 1;
    }
    return true;
}

bool CProfileFile::Save() const {
    std::string content;
    for (const Line& line : m_lines) {
        content += line.text;
        content += line.ending;
    }
    try {
        WriteFileAtomically(m_path, content);
        return true;
    } catch (const CFileException&) {
        return false;
    }
}

std::string CProfileFile::GetString(std::string_view section, std::string_view key,
                                    std::string_view defaultValue) const {
    const size_t header = FindSection(section);
    if (header == std::string::npos)
        return std::string(defaultValue);
    const size_t index = FindKey(header, key);
    if (index == std::string::npos)
        return std::string(defaultValue);
    std::string_view name;
    std::string_view value;
    ParseKey(Content(index), name, value);
    return std::string(StripQuotes(value));
}

std::vector<std::pair<std::string, std::string>>
CProfileFile::GetSectionValues(std::string_view section) const {
    std::vector<std::pair<std::string, std::string>> values;
    const size_t header = FindSection(section);
    if (header == std::string::npos)
        return values;
    const size_t end = SectionEnd(header);
    for (size_t i = header + 1; i < end; ++i) {
        std::string_view name;
        std::string_view value;
        if (ParseKey(Content(i), name, value))
            values.emplace_back(std::string(name), std::string(StripQuotes(value)));
    }
    return values;
}

void CProfileFile::WriteString(std::string_view section, std::string_view key,
                               std::string_view value) {
    size_t header = FindSection(section);
    if (header == std::string::npos)
        header = AppendSection(section);

    const size_t existing = FindKey(header, key);
    if (existing != std::string::npos) {
        // Keep the key as the file spells it; only the value changes.
        std::string_view name;
        std::string_view oldValue;
        ParseKey(Content(existing), name, oldValue);
        m_lines[existing].text = std::string(name) + "=" + OneLine(value);
        return;
    }

    size_t position = header + 1;
    const size_t end = SectionEnd(header);
    for (size_t i = header + 1; i < end; ++i) {
        std::string_view name;
        std::string_view oldValue;
        if (ParseKey(Content(i), name, oldValue))
            position = i + 1;
    }
    InsertLine(position, OneLine(key) + "=" + OneLine(value));
}

void CProfileFile::ReplaceSection(std::string_view section, const std::vector<std::string>& lines) {
    size_t header = FindSection(section);
    if (header == std::string::npos)
        header = AppendSection(section);

    // The blank lines at the section's end, and comments after them, separate it from the next
    // section and stay: they belong to the layout, not to this section's content.
    const size_t end = SectionEnd(header);
    size_t last = end;
    for (size_t i = end; i > header + 1; --i) {
        const std::string_view content = Trim(Content(i - 1));
        if (content.empty())
            last = i - 1;
        else if (content.front() != ';')
            break;
    }
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(header + 1),
                  m_lines.begin() + static_cast<std::ptrdiff_t>(last));

    // All new lines go in at once: a section of many keys costs one pass, not one per key.
    const std::string ending =
        !m_lines.empty() && !m_lines.front().ending.empty() ? m_lines.front().ending : "\n";
    if (!lines.empty() && m_lines[header].ending.empty())
        m_lines[header].ending = ending;
    std::vector<Line> added;
    added.reserve(lines.size());
    for (const std::string& line : lines)
        added.push_back({OneLine(line), ending});
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(header + 1),
                   std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
}

std::string_view CProfileFile::Content(size_t index) const {
    std::string_view text = m_lines[index].text;
    if (index == 0 && text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    return text;
}

size_t CProfileFile::FindSection(std::string_view section) const {
    const std::string_view wanted = Trim(section);
    for (size_t i = 0; i < m_lines.size(); ++i) {
        std::string_view name;
        if (ParseSection(Content(i), name) && EqualNoCase(name, wanted))
            return i;
    }
    return std::string::npos;
}

size_t CProfileFile::SectionEnd(size_t header) const {
    for (size_t i = header + 1; i < m_lines.size(); ++i) {
        std::string_view name;
        if (ParseSection(Content(i), name))
            return i;
    }
    return m_lines.size();
}

size_t CProfileFile::FindKey(size_t header, std::string_view key) const {
    const std::string_view wanted = Trim(key);
    const size_t end = SectionEnd(header);
    for (size_t i = header + 1; i < end; ++i) {
        std::string_view name;
        std::string_view value;
        if (ParseKey(Content(i), name, value) && EqualNoCase(name, wanted))
            return i;
    }
    return std::string::npos;
}

size_t CProfileFile::AppendSection(std::string_view section) {
    if (!m_lines.empty() && !Trim(Content(m_lines.size() - 1)).empty())
        InsertLine(m_lines.size(), "");
    // Appended piece by piece: "[" + text + "]" trips a false -Wrestrict warning of GCC 12 at -O3.
    std::string header = "[";
    header += OneLine(Trim(section));
    header += ']';
    InsertLine(m_lines.size(), std::move(header));
    return m_lines.size() - 1;
}

void CProfileFile::InsertLine(size_t index, std::string text) {
    const std::string ending =
        !m_lines.empty() && !m_lines.front().ending.empty() ? m_lines.front().ending : "\n";
    // Only the last line can lack an ending; it needs one once a line follows it.
    if (index > 0 && m_lines[index - 1].ending.empty())
        m_lines[index - 1].ending = ending;
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(index), {std::move(text), ending});
}

} // namespace quillon
