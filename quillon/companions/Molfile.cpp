#include <quillon/companions/Molfile.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/platform/Numbers.h>
#include <quillon/platform/StdioFile.h>

#include <algorithm>
#include <cstdlib>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMolfile, CObject)

namespace {

enum MolfileListId { kReferenceField = 0, kMolfileParagraph = 1 };

constexpr const char kListFileName[] = "Molfiles.list";
constexpr const char kMolfileExtension[] = ".mol";

// A molfile's header: the name line, then the line with the dimension code at these columns.
constexpr UINT kHeaderBufferSize = 80; // lines of at most 79 characters
constexpr int kDimensionDigitColumn = 20;
constexpr int kDimensionLetterColumn = 21;
constexpr int kDimensionLetterBits = 0x44; // set in both 'D' and 'd'
constexpr int kUnknownDimensions = 2;

} // namespace

int CMolfile::Read(CDelimitFile* file) {
    CFileRecord record;
    record.AddField("Reference", kReferenceField);
    record.AddParagraph("MOLFILE", kMolfileParagraph);
    return Read(file, record);
}

int CMolfile::Read(CDelimitFile* file, CFileRecord& record) {
    record.ReadEach(
        file, [this](const CStringArray& input, int id) { NewField(input, id); },
        [this](CDelimitFile* in, int id) { NewParagraph(in, id); });
    return 1;
}

int CMolfile::NewField(const CStringArray& input, int id) {
    if (id == kReferenceField)
        m_strReference = CFileRecord::FieldValue(input);
    return 1;
}

int CMolfile::NewParagraph(CDelimitFile* file, int id) {
    if (id == kMolfileParagraph)
        CreateTempMolfile(file);
    return 1;
}

CString CMolfile::MolfilePath(const CString& reference, int sampleNumber) {
    CString safeReference = reference;
    safeReference.Replace("..", "__");
    safeReference.Replace('/', '_');
    safeReference.Replace('\\', '_');
    CString path;
    path.Format("%s%s_%d.mol", GetMolfileDirectory().c_str(), safeReference.c_str(), sampleNumber);
    return path;
}

bool CMolfile::SplitMolfilePath(const CString& path, CString& reference, int& sampleNumber) {
    const CString directory = GetMolfileDirectory();
    const int extension = path.GetLength() - static_cast<int>(sizeof kMolfileExtension - 1);
    if (path.Left(directory.GetLength()) != directory || extension <= directory.GetLength() ||
        path.Mid(extension) != kMolfileExtension)
        return false;
    const CString name = path.Mid(directory.GetLength(), extension - directory.GetLength());
    const int separator = name.ReverseFind('_');
    const std::string number = name.Mid(separator + 1).str();
    const size_t sign = !number.empty() && number[0] == '-' ? 1 : 0;
    const bool digits = number.size() > sign &&
                        std::all_of(number.begin() + static_cast<std::ptrdiff_t>(sign),
                                    number.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
    if (separator < 0 || !digits)
        return false;
    reference = name.Left(separator);
    sampleNumber = ParseInt(number);
    return true;
}

CString CMolfile::ListPath() {
    return GetMolfileDirectory() + kListFileName;
}

bool CMolfile::StartList() {
    try {
        CStdioFile list;
        if (!list.Open(ListPath(), CFile::modeWrite | CFile::modeCreate | CFile::typeText))
            return false;
        list.Close();
        return true;
    } catch (const CException&) {
        return false;
    }
}

bool CMolfile::ReadList(CStringArray& paths) {
    paths.RemoveAll();
    try {
        CStdioFile list;
        if (!list.Open(ListPath(), CFile::modeRead | CFile::typeText))
            return false;
        CString line;
        while (list.ReadString(line))
            paths.Add(line);
        list.Close();
        return true;
    } catch (const CException&) {
        paths.RemoveAll();
        return false;
    }
}

bool CMolfile::ReadHeader(const CString& path, CString& name, int& dimensions) {
    name.Empty();
    dimensions = kUnknownDimensions;
    try {
        CStdioFile molfile;
        if (!molfile.Open(path, CFile::modeRead | CFile::typeText))
            return false;
        char buffer[kHeaderBufferSize] = {};
        molfile.ReadString(buffer, kHeaderBufferSize);
        name = buffer;
        name.TrimRight("\r\n");
        molfile.ReadString(buffer, kHeaderBufferSize); // the second line overwrites the first
        const int digit = buffer[kDimensionDigitColumn] - '0';
        const int letter = static_cast<unsigned char>(buffer[kDimensionLetterColumn]);
        if (digit > 0 && (letter & kDimensionLetterBits) == kDimensionLetterBits)
            dimensions = digit;
        molfile.Close();
        return true;
    } catch (const CException&) {
        name.Empty();
        dimensions = kUnknownDimensions;
        return false;
    }
}

void CMolfile::CreateTempMolfile(CDelimitFile* file) {
    const CString path = MolfilePath(m_strReference, m_nSampleNumber);
    try {
        CStdioFile list;
        if (!list.Open(ListPath(), CFile::modeWrite | CFile::typeText))
            return; // no list file: the record skips the molfile block
        list.SeekToEnd();
        list.WriteString(path + "\n");
        list.Close();
    } catch (const CException&) {
        return;
    }

    try {
        CStdioFile molfile;
        if (!molfile.Open(path, CFile::modeWrite | CFile::modeCreate | CFile::typeText))
            return;
        CString line;
        while (file->ReadString(line) && line != "}") {
            if (line != "{")
                molfile.WriteString(line + "\n");
        }
        molfile.Close();
    } catch (const CException&) {
    }
}

} // namespace quillon
