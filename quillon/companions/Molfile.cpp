#include <quillon/companions/Molfile.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/platform/StdioFile.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMolfile, CObject)

namespace {

enum MolfileListId { kReferenceField = 0, kMolfileParagraph = 1 };

constexpr const char kListFileName[] = "Molfiles.list";

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

void CMolfile::CreateTempMolfile(CDelimitFile* file) {
    const CString path = MolfilePath(m_strReference, m_nSampleNumber);
    try {
        CStdioFile list;
        const CString listPath = GetMolfileDirectory() + kListFileName;
        if (!list.Open(listPath, CFile::modeWrite | CFile::typeText))
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
