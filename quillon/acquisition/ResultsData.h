#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

// The outcome of searching a spectrum for one mass: the monoisotopic mass sought, whether it was
// found, its percentage and purity, and the result of a confirmation test with its text.
class CResultsData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CResultsData)

public:
    CResultsData();
    CResultsData(const CResultsData& source);
    CResultsData(CResultsData&& source) noexcept;
    CResultsData& operator=(const CResultsData& source);
    CResultsData& operator=(CResultsData&& source) noexcept;
    ~CResultsData() override;

    double GetMono() const { return m_mono; }
    void SetMono(double mono) { m_mono = mono; }
    int GetFound() const { return m_found; }
    void SetFound(int found) { m_found = found; }
    double GetPercentage() const { return m_percentage; }
    void SetPercentage(double percentage) { m_percentage = percentage; }
    double GetPurity() const { return m_purity; }
    void SetPurity(double purity) { m_purity = purity; }

    // Stores the test's result and its text (empty for a null text).
    void SetConfirmationTest(int result, const char* text);
    // Returns the test's result (-1 when no test was run); copies its text into text when given.
    int GetConfirmationTest(CString* text) const;
    // True exactly when the test ran and failed (result 0); copies the text like
    // GetConfirmationTest.
    BOOL HasTestFailed(CString* text) const { return !GetConfirmationTest(text); }

    // True when the mass was found and the mass sought equals mass to within 0.0001.
    bool IsMassFound(double mass) const;

private:
    // Copies every member from source, or sets the defaults when source is null.
    void Initialise(const CResultsData* source);

    double m_mono = 0.0;
    int m_found = 0;
    double m_percentage = 0.0;
    double m_purity = 0.0;
    int m_confirmationTest = -1;
    CString m_confirmationText;
};

} // namespace quillon
