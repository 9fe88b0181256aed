#include <quillon/companions/Molfile.h>
#include <quillon/document/SampleData.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/StdioFile.h>

namespace quillon {

namespace {

// A molfile's header is its second line; its dimension code sits at these columns.
constexpr int kHeaderLinesToRead = 2;
constexpr UINT kHeaderBufferSize = 80; // lines of at most 79 characters
constexpr int kDimensionDigitColumn = 20;
constexpr int kDimensionLetterColumn = 21;
constexpr int kDimensionLetterBits = 0x44; // set in both 'D' and 'd'
constexpr int kUnknownDimensions = 2;

} // namespace

int CSampleData::ReadMolfileList(CDelimitFile* file) {
    CMolfile molfile(m_nNumber);
    const int result = molfile.Read(file);
    if (result == 1)
        m_bMoleculeEnabled = true;
    return result;
}

CString CSampleData::GetMoleculeReference() const {
    for (int index = 0; index < m_Metabolites.GetSize(); ++index) {
        CString reference = m_Metabolites[index].GetMoleculeReference();
        if (!reference.IsEmpty())
            return reference;
    }
    return CString();
}

int CSampleData::SetMoleculeDimensions() {
    if (m_Metabolites.GetSize() == 0 || !m_bMoleculeEnabled)
        m_nMoleculeDimensions = 0;
    if (m_nMoleculeDimensions >= 0)
        return m_nMoleculeDimensions;

    m_nMoleculeDimensions = kUnknownDimensions;
    try {
        CStdioFile molfile;
        if (!molfile.Open(CMolfile::MolfilePath(GetMoleculeReference(), m_nNumber),
                          CFile::modeRead | CFile::typeText))
            return m_nMoleculeDimensions;
        char buffer[kHeaderBufferSize] = {};
        for (int line = 0; line < kHeaderLinesToRead; ++line)
            molfile.ReadString(buffer, kHeaderBufferSize);
        const int digit = buffer[kDimensionDigitColumn] - '0';
        const int letter = static_cast<unsigned char>(buffer[kDimensionLetterColumn]);
        if (digit > 0 && (letter & kDimensionLetterBits) == kDimensionLetterBits)
            m_nMoleculeDimensions = digit;
        molfile.Close();
    } catch (const CException&) {
    }
    return m_nMoleculeDimensions;
}

} // namespace quillon
