#include <quillon/file/DelimitFile.h>

#include <quillon/file/FieldFormat.h>
#include <quillon/platform/Numbers.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <iterator>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CDelimitFile, CStdioFileS)

namespace {

// True when text begins with a non-empty marker.
bool BeginsWith(std::string_view text, const CString& marker) {
    return !marker.IsEmpty() && text.starts_with(marker.view());
}

} // namespace

void CDelimitFile::Initialise() {
    m_delimiters = "\t";
    m_skipMultipleDelimiters = 0;
    m_sectionStart = "[";
    m_sectionEnd = "]";
    m_comment = ";";
    m_blockStart = "{";
    m_blockEnd = "}";
    m_lineEnd = "\n";
    UpdateMarkerStarts();
}

void CDelimitFile::UpdateMarkerStarts() {
    std::fill(std::begin(m_markerStart), std::end(m_markerStart), false);
    for (const CString* marker : {&m_sectionStart, &m_comment, &m_blockStart, &m_blockEnd}) {
        if (!marker->IsEmpty())
            m_markerStart[static_cast<unsigned char>(marker->view().front())] = true;
    }
    // A line that begins with a delimiter is classified by the slow rule too, since skipped
    // leading delimiters may stand before a marker.
    for (const char delimiter : m_delimiters.view())
        m_markerStart[static_cast<unsigned char>(delimiter)] = true;
}

int CDelimitFile::SetDelimiters(const char* delimiters) {
    m_delimiters = delimiters;
    UpdateMarkerStarts();
    return 1;
}

int CDelimitFile::SplitInto(std::string_view line, CStringArray& fields, int firstIndex) const {
    int slot = firstIndex;
    const auto store = [&](std::string_view field) {
        // A field's text ends at a NUL byte, as every text written back ends there.
        field = field.substr(0, field.find('\0'));
        if (slot < fields.GetSize())
            fields[slot].str().assign(field);
        else
            fields.Add(CString(field));
        ++slot;
    };
    const std::string_view delimiters = m_delimiters.view();
    while (!line.empty()) {
        if (slot - firstIndex == kMaxFieldsPerLine - 1) {
            store(line);
            break;
        }
        const size_t at = line.find_first_of(delimiters);
        if (at == std::string_view::npos) {
            store(line);
            break;
        }
        if (at != 0 || !m_skipMultipleDelimiters)
            store(line.substr(0, at));
        line.remove_prefix(at + 1);
    }
    if (slot == 0)
        fields.RemoveAll();
    else if (slot < fields.GetSize())
        fields.SetSize(slot);
    return slot;
}

int CDelimitFile::ClassifyFirstField(std::string_view first, size_t& keepFrom,
                                     size_t& keepLength) const {
    keepFrom = 0;
    keepLength = first.size();
    if (first.empty() || !MayStartMarker(first.front()))
        return RECORD_FIELD;
    if (BeginsWith(first, m_comment)) {
        keepFrom = m_comment.str().size();
        keepLength = first.size() - keepFrom;
        return RECORD_COMMENT;
    }
    if (BeginsWith(first, m_sectionStart) && !m_sectionEnd.IsEmpty()) {
        const size_t end = first.find(m_sectionEnd.view());
        if (end != std::string_view::npos && end > 0) {
            const size_t start = m_sectionStart.str().size();
            keepFrom = std::min(start, end);
            keepLength = end > start ? end - start : 0;
            return RECORD_PARAGRAPH;
        }
    }
    if (BeginsWith(first, m_blockStart)) {
        keepFrom = m_blockStart.str().size();
        keepLength = first.size() - keepFrom;
        return RECORD_BLOCK_START;
    }
    if (BeginsWith(first, m_blockEnd)) {
        keepFrom = m_blockEnd.str().size();
        keepLength = first.size() - keepFrom;
        return RECORD_BLOCK_END;
    }
    return RECORD_FIELD;
}

int CDelimitFile::Classify(CStringArray& fields) const {
    if (fields.IsEmpty())
        return RECORD_EMPTY;
    std::string& first = fields[0].str();
    size_t keepFrom = 0;
    size_t keepLength = 0;
    const int type = ClassifyFirstField(first, keepFrom, keepLength);
    if (type != RECORD_FIELD) {
        first.erase(keepFrom + keepLength);
        first.erase(0, keepFrom);
    }
    return type;
}

int CDelimitFile::ClassifyLine(std::string_view line, std::string_view* name) const {
    const std::string_view delimiters = m_delimiters.view();
    if (m_skipMultipleDelimiters) {
        const size_t start = line.find_first_not_of(delimiters);
        line.remove_prefix(start == std::string_view::npos ? line.size() : start);
    }
    if (line.empty())
        return RECORD_EMPTY;
    const std::string_view first = line.substr(0, line.find_first_of(delimiters));
    size_t keepFrom = 0;
    size_t keepLength = 0;
    const int type = ClassifyFirstField(first, keepFrom, keepLength);
    if (name != nullptr)
        *name = type == RECORD_PARAGRAPH ? first.substr(keepFrom, keepLength) : std::string_view();
    return type;
}

int CDelimitFile::ParseDelimitedString(CString text, CStringArray& fields) {
    return SplitInto(text.view(), fields, fields.GetSize());
}

int CDelimitFile::ParseDelimitedString(CString text, CStringArray& fields, int* type) {
    const int count = SplitInto(text.view(), fields, fields.GetSize());
    if (type != nullptr)
        *type = Classify(fields);
    return count;
}

int CDelimitFile::ReadDelimitedString(CStringArray& fields, int* type) {
    std::string_view line;
    if (!ReadLineView(line)) {
        fields.RemoveAll();
        return 0;
    }
    SplitInto(line, fields, 0);
    if (type != nullptr)
        *type = Classify(fields);
    UpdateStatus();
    return 1;
}

int CDelimitFile::ReadFieldViews(std::string_view* fields, int maxFields, int* type) {
    std::string_view line;
    if (!ReadLineView(line))
        return -1;
    return SplitFieldViews(line, fields, maxFields, type);
}

int CDelimitFile::ReadNumberPairViews(std::string_view* fields, double* numbers, bool& parsed,
                                      int* type) {
    std::string_view line;
    if (!ReadLineView(line))
        return -1;
    parsed = ParsePlainPair(line, fields, numbers);
    if (!parsed)
        return SplitFieldViews(line, fields, 2, type);
    if (type != nullptr)
        *type = RECORD_FIELD;
    UpdateStatus();
    return 2;
}

bool CDelimitFile::ParsePlainPair(std::string_view line, std::string_view* fields,
                                  double* numbers) const {
    const auto isDigit = [](char ch) { return ch >= '0' && ch <= '9'; };
    // A number parsed from the line stops where its field ends only when the delimiter cannot be
    // part of a number.
    if (m_delimiters.GetLength() != 1 || line.empty() || !isDigit(line.front()) ||
        MayStartMarker(line.front()))
        return false;
    const char delimiter = m_delimiters[0];
    if (isDigit(delimiter) || (delimiter >= 'a' && delimiter <= 'z') ||
        (delimiter >= 'A' && delimiter <= 'Z') || delimiter == '.' || delimiter == '+' ||
        delimiter == '-')
        return false;
    size_t firstUsed = 0;
    const double first = ParseDouble(line, firstUsed);
    if (firstUsed >= line.size() || line[firstUsed] != delimiter)
        return false;
    const std::string_view rest = line.substr(firstUsed + 1);
    if (rest.empty() || !isDigit(rest.front()))
        return false;
    size_t secondUsed = 0;
    const double second = ParseDouble(rest, secondUsed);
    if (secondUsed < rest.size() && rest[secondUsed] != delimiter)
        return false;
    fields[0] = line.substr(0, firstUsed);
    fields[1] = rest.substr(0, secondUsed);
    numbers[0] = first;
    numbers[1] = second;
    return true;
}

int CDelimitFile::SplitFieldViews(std::string_view line, std::string_view* fields, int maxFields,
                                  int* type) {
    // The fields are cut as SplitInto cuts them; only the first maxFields are kept.
    const std::string_view delimiters = m_delimiters.view();
    // Fields are short: with one delimiter a plain scan beats a library search per field.
    const auto findDelimiter = [&](std::string_view text) -> size_t {
        if (delimiters.size() != 1)
            return text.find_first_of(delimiters);
        const char delimiter = delimiters.front();
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == delimiter)
                return i;
        }
        return std::string_view::npos;
    };
    int count = 0;
    while (!line.empty() && count < maxFields) {
        const size_t at = findDelimiter(line);
        if (at == std::string_view::npos) {
            fields[count++] = line;
            break;
        }
        if (at != 0 || !m_skipMultipleDelimiters)
            fields[count++] = line.substr(0, at);
        line.remove_prefix(at + 1);
    }
    int kind = RECORD_EMPTY;
    if (count > 0) {
        size_t keepFrom = 0;
        size_t keepLength = 0;
        kind = ClassifyFirstField(fields[0], keepFrom, keepLength);
        if (kind != RECORD_FIELD)
            fields[0] = fields[0].substr(keepFrom, keepLength);
    }
    if (type != nullptr)
        *type = kind;
    UpdateStatus();
    return count;
}

void CDelimitFile::NoteProblem(CReadReport::Kind kind, std::string_view name,
                               std::string_view detail) {
    if (m_pReadReport == nullptr)
        return;
    const int64_t end = GetPosition();
    const int64_t start = end > GetLastLineLength() ? end - GetLastLineLength() : 0;
    m_pReadReport->Add(kind, name, start, GetLineNumber(), detail);
}

bool CDelimitFile::NoteIfNotNumber(std::string_view field, std::string_view text) {
    if (text.find_first_not_of(" \t") == std::string_view::npos)
        return true;
    size_t used = 0;
    ParseDouble(text, used);
    if (used > 0)
        return true;
    NoteProblem(CReadReport::BadNumber, field, text);
    return false;
}

bool CDelimitFile::IsSectionHeader(std::string_view line) const {
    return !line.empty() && MayStartMarker(line.front()) && ClassifyLine(line) == RECORD_PARAGRAPH;
}

void CDelimitFile::SkipToNextSection() {
    std::string_view line;
    while (ReadLineView(line)) {
        if (ClassifyLine(line) == RECORD_PARAGRAPH)
            return;
    }
}

void CDelimitFile::SkipToEndOfBlock() {
    std::string_view line;
    while (ReadLineView(line)) {
        if (ClassifyLine(line) == RECORD_BLOCK_END)
            return;
    }
}

void CDelimitFile::MoveToNextSection() {
    std::string_view line;
    int depth = 0;
    do {
        // Unlike a block reader, this stops at end of file: a truncated report must not hang.
        if (!ReadLineView(line))
            return;
        const int type = ClassifyLine(line);
        if (type == RECORD_BLOCK_START)
            ++depth;
        else if (type == RECORD_BLOCK_END)
            --depth;
    } while (depth > 0);
}

void CDelimitFile::SkipFollowingBlock() {
    const int64_t before = GetPosition();
    // Empty and comment lines may stand between a header and its block, as readers allow.
    std::string_view line;
    int type = RECORD_EMPTY;
    while ((type == RECORD_EMPTY || type == RECORD_COMMENT) && ReadLineView(line))
        type = ClassifyLine(line);
    if (type != RECORD_BLOCK_START) {
        Seek(before, CFile::begin);
        return;
    }
    int depth = 1;
    while (depth > 0 && ReadLineView(line)) {
        type = ClassifyLine(line);
        if (type == RECORD_BLOCK_START)
            ++depth;
        else if (type == RECORD_BLOCK_END)
            --depth;
    }
}

bool CDelimitFile::CopyToNextSection(CDelimitFile& out, CString& header) {
    const std::string_view lineEnd = out.m_lineEnd.view();
    for (;;) {
        // The whole lines the read buffer holds are taken in place: a run of lines that can be
        // copied as they stand is written at once when something else comes, or at the end.
        const std::string_view input = BufferedInput();
        size_t runStart = 0;
        size_t at = 0;
        const auto flushRun = [&](size_t end) {
            if (end > runStart)
                out.WriteBytes(input.substr(runStart, end - runStart));
        };
        while (at < input.size()) {
            const void* lineFeed = std::memchr(input.data() + at, '\n', input.size() - at);
            if (lineFeed == nullptr)
                break; // an incomplete line: read below, on its own
            const size_t next =
                static_cast<size_t>(static_cast<const char*>(lineFeed) - input.data()) + 1;
            const std::string_view raw = input.substr(at, next - at);
            const std::string_view line = TakeLine(raw);
            if (IsSectionHeader(line)) {
                flushRun(at);
                ConsumeBuffered(next);
                header.str().assign(line);
                return true;
            }
            const bool keepsItsEnd = !line.empty() && raw.size() == line.size() + lineEnd.size() &&
                                     raw.substr(line.size()) == lineEnd;
            if (!keepsItsEnd) {
                flushRun(at);
                if (!line.empty())
                    out.WriteRecord(CString(line));
                runStart = next;
            }
            at = next;
        }
        flushRun(at);
        ConsumeBuffered(at);
        if (at < input.size() || input.empty()) {
            std::string_view line;
            if (!ReadLineView(line))
                return false;
            if (IsSectionHeader(line)) {
                header.str().assign(line);
                return true;
            }
            if (!line.empty())
                out.WriteRecord(CString(line));
        }
    }
}

void CDelimitFile::WriteLine(const CString& text) {
    if (text.view().find('\0') == std::string_view::npos) {
        WriteString(text.c_str());
    } else {
        // A line of a damaged file may hold NUL bytes: they are written too, so that nothing
        // after them is lost.
        WriteBytes(text.view());
    }
    WriteString(m_lineEnd);
}

void CDelimitFile::WriteSectionHeader(const CString& name) {
    WriteLine(m_sectionStart + name + m_sectionEnd);
}

void CDelimitFile::WriteComment(const CString& text) {
    WriteLine(m_comment + text);
}

void CDelimitFile::WriteRecord(const CString& text) {
    WriteLine(text);
}

void CDelimitFile::WriteBlockStart() {
    WriteLine(m_blockStart);
}

void CDelimitFile::WriteBlockEnd() {
    WriteLine(m_blockEnd);
}

void CDelimitFile::WriteRecord(const char* format, ...) {
    va_list args;
    va_start(args, format);
    WriteFormatted("", format, args);
    va_end(args);
}

void CDelimitFile::WriteComment(const char* format, ...) {
    va_list args;
    va_start(args, format);
    WriteFormatted(m_comment, format, args);
    va_end(args);
}

void CDelimitFile::WriteFormatted(const char* prefix, const char* format, va_list args) {
    CStringArray pieces;
    SplitFieldTypes(pieces, format);
    const CString line = FormatFields(pieces, m_delimiters, args);
    WriteString(prefix);
    WriteLine(line);
}

int CDelimitFile::SplitFieldTypes(CStringArray& pieces, const CString& format) {
    pieces.RemoveAll();
    const std::string_view text = format.view();
    const size_t length = text.size();
    if (length == 0)
        return 0;
    const auto isPercentPair = [&](size_t i) { return text[i] == '%' && text[i + 1] == '%'; };

    // The first character (or "%%" pair) always opens a piece.
    size_t i = length > 1 && isPercentPair(0) ? 2 : 1;
    CString current(text.substr(0, i));
    while (i + 1 < length) {
        if (isPercentPair(i)) {
            current += "%%";
            i += 2;
        } else if (text[i] == '%') {
            pieces.Add(std::move(current));
            current = "%";
            ++i;
        } else {
            current += text[i];
            ++i;
        }
    }
    if (i + 1 == length)
        current += text[i];
    pieces.Add(std::move(current));
    return pieces.GetSize();
}

int CDelimitFile::RebuildFieldTypes(const CStringArray& pieces, CString& out) {
    out.Empty();
    for (int i = 0; i < pieces.GetSize(); ++i) {
        if (i > 0)
            out += m_delimiters;
        out += pieces[i];
    }
    return pieces.GetSize();
}

void CDelimitFile::FormDelimitedString(CString text, const CStringArray& fields, char delimiter) {
    // The joined text stays in this function's own copy: the caller's text is not changed.
    for (int i = 0; i < fields.GetSize(); ++i) {
        if (i > 0)
            text += delimiter;
        text += fields[i];
    }
}

void CDelimitFile::WriteDelimitedString(const CStringArray& fields) {
    CString text;
    FormDelimitedString(text, fields, m_delimiters.IsEmpty() ? '\t' : m_delimiters[0]);
    WriteString(text);
}

void CDelimitFile::WriteDelimitedStringExt(const CStringArray& fields, int type) {
    CStringArray marked(fields);
    if (!marked.IsEmpty()) {
        if (type == 1)
            marked[0] = m_sectionStart + marked[0] + m_sectionEnd;
        else if (type == 2)
            marked[0] = m_comment + marked[0];
    }
    WriteDelimitedString(marked);
}

} // namespace quillon
