#include <quillon/plate/VialRef.h>

#include <quillon/plate/PlateDesc.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNCREATE(CVialRef, CObject)

namespace {

constexpr const char kMSMSPlatePrefix[] = "MSMS";
constexpr int kMSMSPlatePrefixLength = 4;

} // namespace

CVialRef::CVialRef() : m_pReference(std::make_unique<CReference>()) {}

CVialRef::CVialRef(const CVialRef& source)
    : m_pReference(std::make_unique<CReference>(static_cast<CReference>(source))),
      m_nVial(source.m_nVial), m_strReference(source.m_strReference) {}

CVialRef& CVialRef::operator=(const CVialRef& source) {
    if (this == &source)
        return *this;
    m_pReference = std::make_unique<CReference>(static_cast<CReference>(source));
    m_nVial = source.m_nVial;
    m_strReference = source.m_strReference;
    return *this;
}

int CVialRef::SplitReference(const CString& text, CString& plate, CString& vial) {
    plate.Empty();
    vial.Empty();
    const int colon = text.Find(':');
    if (colon < 0) {
        vial = text;
        return 1;
    }
    plate = text.Left(colon);
    vial = text.Mid(colon + 1);
    return 1;
}

int CVialRef::SetReference(const CString& text, CPlateDesc* plate) {
    CString platePart;
    CString vialPart;
    SplitReference(text, platePart, vialPart);
    if (!m_pReference)
        m_pReference = std::make_unique<CReference>();

    if (plate) {
        if (!CPlateDesc::IsNumeric(vialPart)) {
            plate->ParseReference(vialPart, m_nVial);
        } else {
            int unusedRow = 0;
            plate->ParseReference(vialPart, m_nVial, unusedRow);
        }
    }

    m_pReference->SetMSMSPlate(false);
    if (platePart.Left(kMSMSPlatePrefixLength) == kMSMSPlatePrefix) {
        m_pReference->SetMSMSPlate(true);
        platePart = platePart.Mid(kMSMSPlatePrefixLength);
    }
    if (platePart.IsEmpty()) {
        CPoint origin(0, 0);
        m_pReference->SetReference(&origin, 0);
    } else {
        m_pReference->SetReference(platePart);
    }

    CString plateText;
    m_pReference->GetReference(plateText);
    CString vialText;
    if (plate)
        plate->FormatReference(m_nVial, vialText);
    m_strReference.Format("%s:%s", plateText.c_str(), vialText.c_str());
    return 1;
}

int CVialRef::GetReference(CString& text) const {
    text = m_strReference;
    return 1;
}

int CVialRef::GetReference(int& number, int& vial) const {
    number = 0;
    vial = 0;
    if (!m_pReference)
        return 0;
    number = static_cast<int>(*m_pReference);
    vial = m_nVial;
    return 1;
}

int CVialRef::GetReference(CReference& reference, int& vial) const {
    reference = CReference();
    vial = m_nVial;
    if (!m_pReference)
        return 0;
    reference = *m_pReference;
    return 1;
}

} // namespace quillon
