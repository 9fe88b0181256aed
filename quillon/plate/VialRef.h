#pragma once

#include <quillon/plate/Reference.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

#include <memory>

namespace quillon {

class CPlateDesc;

// A whole vial reference "plate part:vial part", such as "A1:12" or "MSMS2,1:B3": the plate part
// as a CReference, the vial number resolved on a plate and the normalised text.
class CVialRef : public CObject {
    QUILLON_DECLARE_DYNCREATE(CVialRef)

public:
    CVialRef();
    CVialRef(const CVialRef& source);
    CVialRef& operator=(const CVialRef& source);
    // A moved-from reference has no plate reference until its next SetReference.
    CVialRef(CVialRef&& source) noexcept = default;
    CVialRef& operator=(CVialRef&& source) noexcept = default;
    ~CVialRef() override = default;

    // Splits at the first ":"; without one the plate part is empty and the whole text is the vial
    // part. Returns 1.
    static int SplitReference(const CString& text, CString& plate, CString& vial);
    // Parses a reference against the plate: the vial part is resolved in the plate's own scheme
    // (a numeric vial part is the vial number itself); a plate part starting with "MSMS" marks the
    // MS/MS plate. The text is rebuilt as "<plate part>:<vial in the plate's scheme>", so on a
    // default plate "MSMS1:5" becomes "*1:A5". A vial part that does not resolve keeps the vial
    // number as it was and leaves the vial text empty. Returns 1.
    int SetReference(const CString& text, CPlateDesc* plate);

    int GetReference(CString& text) const;
    operator CString() const { return m_strReference; }
    // The plate reference's Number and the vial number; 0 without a plate reference.
    int GetReference(int& number, int& vial) const;
    int GetReference(CReference& reference, int& vial) const;
    operator CReference() const { return m_pReference ? *m_pReference : CReference(); }
    int GetVial() const { return m_nVial; }

private:
    std::unique_ptr<CReference> m_pReference;
    int m_nVial = 0;
    CString m_strReference;
};

} // namespace quillon
