#include <quillon/acquisition/ResultsData.h>

#include <cmath>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CResultsData, CObject)

namespace {

// Two masses closer than this are the same mass.
constexpr double kMassTolerance = 0.0001;

} // namespace

CResultsData::CResultsData() {
    Initialise(nullptr);
}

CResultsData::CResultsData(const CResultsData& source) : CObject() {
    Initialise(&source);
}

CResultsData::CResultsData(CResultsData&& source) noexcept
    : CObject(), m_mono(source.m_mono), m_found(source.m_found), m_percentage(source.m_percentage),
      m_purity(source.m_purity), m_confirmationTest(source.m_confirmationTest),
      m_confirmationText(std::move(source.m_confirmationText)) {}

CResultsData& CResultsData::operator=(const CResultsData& source) {
    if (this != &source)
        Initialise(&source);
    return *this;
}

CResultsData& CResultsData::operator=(CResultsData&& source) noexcept {
    if (this != &source) {
        m_mono = source.m_mono;
        m_found = source.m_found;
        m_percentage = source.m_percentage;
        m_purity = source.m_purity;
        m_confirmationTest = source.m_confirmationTest;
        m_confirmationText = std::move(source.m_confirmationText);
    }
    return *this;
}

CResultsData::~CResultsData() = default;

void CResultsData::Initialise(const CResultsData* source) {
    if (source == nullptr) {
        m_mono = 0.0;
        m_found = 0;
        m_percentage = 0.0;
        m_purity = 0.0;
        m_confirmationTest = -1;
        m_confirmationText.Empty();
        return;
    }
    m_mono = source->m_mono;
    m_found = source->m_found;
    m_percentage = source->m_percentage;
    m_purity = source->m_purity;
    m_confirmationTest = source->m_confirmationTest;
    m_confirmationText = source->m_confirmationText;
}

void CResultsData::SetConfirmationTest(int result, const char* text) {
    m_confirmationTest = result;
    m_confirmationText = text ? text : "";
}

int CResultsData::GetConfirmationTest(CString* text) const {
    if (text != nullptr)
        *text = m_confirmationText;
    return m_confirmationTest;
}

bool CResultsData::IsMassFound(double mass) const {
    return m_found != 0 && std::fabs(m_mono - mass) < kMassTolerance;
}

} // namespace quillon
