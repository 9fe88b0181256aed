#include <quillon/metabolites/MetaboliteDisplay.h>

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>

namespace quillon {

namespace {

// Decimals beyond this add nothing to a double.
constexpr int kMaxDecimals = 17;

void FormatNumber(CString& text, double value, int decimals) {
    const int places = decimals < 0 ? 0 : decimals > kMaxDecimals ? kMaxDecimals : decimals;
    text.Format("%.*f", places, value);
}

// The text after the last ":" of a description, trimmed, when it is a number; "" otherwise.
CString MassOfDescription(const CString& description) {
    CString mass = description.Mid(description.ReverseFind(':') + 1);
    mass.TrimLeft();
    mass.TrimRight();
    if (mass.IsEmpty())
        return CString();
    size_t used = 0;
    ParseDouble(mass.view(), used);
    return used == mass.str().size() ? mass : CString();
}

} // namespace

void GetAreaText(const CMetaboliteData& metabolite, CString& text, int decimals) {
    text.Empty();
    if (metabolite.GetPeakArea() >= 0.0)
        FormatNumber(text, metabolite.GetPeakArea(), decimals);
}

void GetRelativeAreaText(const CMetaboliteData& metabolite, CString& text, int decimals) {
    text.Empty();
    if (metabolite.GetRelativePeakArea() >= 0.0)
        FormatNumber(text, metabolite.GetRelativePeakArea(), decimals);
}

void GetTimeText(const CMetaboliteData& metabolite, CString& text, int decimals) {
    text.Empty();
    if (metabolite.GetPeakNum() >= 1)
        FormatNumber(text, metabolite.GetPeakTime(), decimals);
}

void GetTraceText(const CMetaboliteData& metabolite, CSampleData* sample, CString& text) {
    text.Empty();
    const CChromatoData* trace = metabolite.GetTrace(sample);
    if (trace == nullptr)
        return;
    if (trace->IsTIC()) {
        text = "TIC";
        return;
    }
    text = trace->IsMassChromatogram() ? MassOfDescription(trace->GetDescription()) : CString();
    if (text.IsEmpty()) {
        text = trace->GetDescription();
        text.TrimLeft();
        text.TrimRight();
    }
}

void GetISAreaRatioText(const CMetaboliteData& metabolite, const CSampleData* sample, CString& text,
                        int decimals) {
    text.Empty();
    if (sample == nullptr || sample->GetInternalStandardEntry() < 0 ||
        !(sample->GetInternalStandardArea() > 0.0) || metabolite.GetPeakArea() < 0.0)
        return;
    FormatNumber(text, metabolite.GetPeakArea() / sample->GetInternalStandardArea(), decimals);
}

void SetStringDecimalPlaces(CString& list, int decimals) {
    CString result;
    int start = 0;
    while (true) {
        const int comma = list.Find(',', start);
        CString item = comma >= 0 ? list.Mid(start, comma - start) : list.Mid(start);
        item.TrimLeft();
        item.TrimRight();
        size_t used = 0;
        const double value = ParseDouble(item.view(), used);
        if (!item.IsEmpty() && used == item.str().size())
            FormatNumber(item, value, decimals);
        result += item;
        if (comma < 0)
            break;
        result += ',';
        start = comma + 1;
    }
    list = result;
}

} // namespace quillon
