#include <quillon/acquisition/MassesData.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMassesData, CObject)

CMassesData::CMassesData(double mono, double expected, double observed, double percentage,
                         bool isotope) {
    Initialise(nullptr);
    m_mono = mono;
    m_expected = expected;
    m_observed = observed;
    m_percentage = percentage;
    m_isotope = isotope;
}

CMassesData::CMassesData(const CMassesData& source) : CObject() {
    Initialise(&source);
}

CMassesData& CMassesData::operator=(const CMassesData& source) {
    if (this != &source)
        Initialise(&source);
    return *this;
}

CMassesData::~CMassesData() = default;

void CMassesData::Initialise(const CMassesData* source) {
    if (source == nullptr) {
        m_mono = 0.0;
        m_expected = 0.0;
        m_observed = 0.0;
        m_percentage = 0.0;
        m_isotope = false;
        return;
    }
    m_mono = source->m_mono;
    m_expected = source->m_expected;
    m_observed = source->m_observed;
    m_percentage = source->m_percentage;
    m_isotope = source->m_isotope;
}

} // namespace quillon
