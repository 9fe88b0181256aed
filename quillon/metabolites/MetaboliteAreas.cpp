// The area of a metabolite's peak on a trace of a given kind.

#include <quillon/metabolites/MetaboliteData.h>

#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/document/SampleData.h>

namespace quillon {

float CMetaboliteData::GetAreaAbs(TRACE_TYPE kind, CSampleData* sample) const {
    if (m_nPeakNum < 1 || !CheckValidTrace(GetTrace(sample), kind))
        return 0.0f;
    const CChromatogramPeak* peak =
        sample->GetCorispondingPeakInfo(m_nPeakNum, m_nFunctionNum, m_nTraceNum);
    return peak != nullptr ? peak->GetAreaAbs() : 0.0f;
}

} // namespace quillon
