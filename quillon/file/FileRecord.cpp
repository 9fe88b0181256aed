#include <quillon/file/FileRecord.h>

#include <quillon/platform/Numbers.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CFileRecord, CObject)

void CFileRecord::AddField(const char* name, int id) {
    m_fieldNames[name ? name : ""] = id;
}

void CFileRecord::AddParagraph(const char* name, int id) {
    m_paragraphNames[name ? name : ""] = id;
}

const CString& CFileRecord::FieldValue(const CStringArray& input) {
    static const CString kNone;
    return input.GetSize() > 1 ? input[1] : kNone;
}

int CFileRecord::Lookup(const NameMap& names, const CString& name, int& id) {
    id = -1;
    if (names.empty())
        return 1;
    const auto found = names.find(name.view());
    if (found == names.end())
        return 0;
    id = found->second;
    return 1;
}

int CFileRecord::ParseField(const CString& name, int& id) const {
    return Lookup(m_fieldNames, name, id);
}

int CFileRecord::ParseParagraph(const CString& name, int& id) const {
    return Lookup(m_paragraphNames, name, id);
}

bool CFileRecord::CountBlockLine(int type) {
    if (type == RECORD_BLOCK_START)
        ++m_depth;
    else if (m_depth > 0)
        return --m_depth == 0;
    return false;
}

int CFileRecord::Read(CDelimitFile* file) {
    if (file == nullptr)
        return 0;
    m_id = -1;
    while (file->ReadDelimitedString(m_input, &m_type)) {
        switch (m_type) {
        case RECORD_FIELD:
            if (m_depth < 2) {
                ParseField(m_input[0], m_id);
                return 1;
            }
            break;
        case RECORD_PARAGRAPH:
            if (m_depth < 2 && ParseParagraph(m_input[0], m_id))
                return 1;
            break;
        case RECORD_BLOCK_START:
        case RECORD_BLOCK_END:
            if (CountBlockLine(m_type))
                return 0;
            break;
        default: // comments and empty lines
            break;
        }
    }
    return 0;
}

void CFileRecord::NoteUnlessNumber(CDelimitFile& file, std::string_view first, size_t firstUsed,
                                   std::string_view second, size_t secondUsed) {
    // Blanks (and a carriage return left by a stray line end) may follow a number.
    const auto whole = [](std::string_view field, size_t used) {
        return used > 0 && field.find_first_not_of(" \t\r", used) == std::string_view::npos;
    };
    if (!whole(first, firstUsed) || !whole(second, secondUsed))
        file.NoteProblem(CReadReport::StrayRecord, "", first);
}

bool CFileRecord::ReadNumberPair(CDelimitFile* file, double& first, double& second) {
    if (file == nullptr)
        return false;
    std::string_view fields[2];
    double numbers[2];
    bool parsed = false;
    int type = RECORD_EMPTY;
    int count = 0;
    while ((count = file->ReadNumberPairViews(fields, numbers, parsed, &type)) >= 0) {
        switch (type) {
        case RECORD_FIELD:
            if (m_depth >= 2)
                break;
            if (parsed) {
                first = numbers[0];
                second = numbers[1];
                return true;
            }
            if (count == 2) {
                size_t firstUsed = 0;
                size_t secondUsed = 0;
                first = ParseDouble(fields[0], firstUsed);
                second = ParseDouble(fields[1], secondUsed);
                if (firstUsed != fields[0].size() || secondUsed != fields[1].size())
                    NoteUnlessNumber(*file, fields[0], firstUsed, fields[1], secondUsed);
                return true;
            }
            file->NoteProblem(CReadReport::StrayRecord, "", fields[0]);
            break;
        case RECORD_BLOCK_START:
        case RECORD_BLOCK_END:
            if (CountBlockLine(type))
                return false;
            break;
        default: // section headers, comments and empty lines
            break;
        }
    }
    return false;
}

} // namespace quillon
