#include <quillon/file/DelimitFile.h>

#include <algorithm>
#include <cstdarg>

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
}

int CDelimitFile::SetDelimiters(const char* delimiters) {
    m_delimiters = delimiters;
    return 1;
}

int CDelimitFile::SplitInto(std::string_view line, CStringArray& fields, int firstIndex) const {
    int slot = firstIndex;
    const auto store = [&](std::string_view field) {
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
    if (!ReadString(m_line)) {
        fields.RemoveAll();
        return 0;
    }
    SplitInto(m_line.view(), fields, 0);
    if (type != nullptr)
        *type = Classify(fields);
    UpdateStatus();
    return 1;
}

void CDelimitFile::SkipToNextSection() {
    while (ReadString(m_line)) {
        if (ClassifyLine(m_line.view()) == RECORD_PARAGRAPH)
            return;
    }
}

void CDelimitFile::SkipToEndOfBlock() {
    while (ReadString(m_line)) {
        if (ClassifyLine(m_line.view()) == RECORD_BLOCK_END)
            return;
    }
}

void CDelimitFile::MoveToNextSection() {
    int depth = 0;
    do {
        // Unlike a block reader, this stops at end of file: a truncated report must not hang.
        if (!ReadString(m_line))
            return;
        const int type = ClassifyLine(m_line.view());
        if (type == RECORD_BLOCK_START)
            ++depth;
        else if (type == RECORD_BLOCK_END)
            --depth;
    } while (depth > 0);
}

void CDelimitFile::SkipFollowingBlock() {
    const int64_t before = GetPosition();
    // Empty and comment lines may stand between a header and its block, as readers allow.
    int type = RECORD_EMPTY;
    while ((type == RECORD_EMPTY || type == RECORD_COMMENT) && ReadString(m_line))
        type = ClassifyLine(m_line.view());
    if (type != RECORD_BLOCK_START) {
        Seek(before, CFile::begin);
        return;
    }
    int depth = 1;
    while (depth > 0 && ReadString(m_line)) {
        const int type = ClassifyLine(m_line.view());
        if (type == RECORD_BLOCK_START)
            ++depth;
        else if (type == RECORD_BLOCK_END)
            --depth;
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
    CString delimitedFormat;
    SplitFieldTypes(pieces, format);
    RebuildFieldTypes(pieces, delimitedFormat);
    CString line;
    line.FormatV(delimitedFormat, args);
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
