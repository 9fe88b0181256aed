#include <quillon/companions/Molfile.h>
#include <quillon/document/SampleData.h>

namespace quillon {

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

    // A missing molfile, or one without a dimension code, counts as two-dimensional.
    CString name;
    CMolfile::ReadHeader(CMolfile::MolfilePath(GetMoleculeReference(), m_nNumber), name,
                         m_nMoleculeDimensions);
    return m_nMoleculeDimensions;
}

} // namespace quillon
