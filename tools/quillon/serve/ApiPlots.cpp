#include "ApiPlots.h"

#include "Decimate.h"

#include "../json/ModelJson.h"
#include "../json/ModelRecords.h"

namespace quillon::tool::serve {

namespace {

template <class Series>
XyPoints PointsOf(const Series& series) {
    XyPoints points;
    points.x.reserve(static_cast<size_t>(series.GetNumPeaks()));
    points.y.reserve(static_cast<size_t>(series.GetNumPeaks()));
    CPeakData point;
    for (int i = 0; i < series.GetNumPeaks(); ++i)
        if (series.GetPeak(i, point)) {
            points.x.push_back(point.GetMass());
            points.y.push_back(point.GetIntensity());
        }
    return points;
}

// The points as {"x": [...], "y": [...], "total": n}, thinned unless full=1. Trace points are
// stored as floats and travel in the shortest text of the float.
nlohmann::json PointsJson(const XyPoints& all, const Query& query, bool floats) {
    const bool full = query.Flag("full");
    const long long width = query.Integer("width", 1, kWidestPlotPixels).value_or(kPlotPixels);
    const XyPoints points = full ? all : Decimate(all, static_cast<size_t>(width));
    nlohmann::json x = nlohmann::json::array();
    nlohmann::json y = nlohmann::json::array();
    for (size_t i = 0; i < points.x.size(); ++i) {
        x.push_back(floats ? JsonNumber(static_cast<float>(points.x[i])) : JsonNumber(points.x[i]));
        y.push_back(floats ? JsonNumber(static_cast<float>(points.y[i])) : JsonNumber(points.y[i]));
    }
    return {{"x", std::move(x)}, {"y", std::move(y)}, {"total", all.x.size()}};
}

// The trace's listed peaks, each with the metabolite it belongs to (null when none).
nlohmann::json PeaksJson(CSampleData& sample, int function, const CChromatoData& trace) {
    nlohmann::json peaks = nlohmann::json::array();
    JsonRowsSink sink(peaks);
    const TraceKey key{sample.GetNumber(), function, trace.GetTraceNumber()};
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        sink.BeginRow();
        PeakRecord(sink, key, peak);
        const CMetaboliteData* metabolite = sample.GetMetaboliteWithPeakID(peak.GetPeakID());
        sink.FieldIf("metabolite", metabolite != nullptr,
                     std::string_view(metabolite ? metabolite->GetMetName() : ""));
    }
    return peaks;
}

nlohmann::json TraceJson(CSampleData& sample, const CChromatoData& trace, int function,
                         const Query& query) {
    return {{"trace", RecordJson([&](RecordSink& sink) {
                 TraceRecord(sink, sample.GetNumber(), function, trace);
             })},
            {"points", PointsJson(PointsOf(trace), query, true)},
            {"peaks", PeaksJson(sample, function, trace)}};
}

nlohmann::json TraceAnswer(CSampleData& sample, std::string_view segment, const Query& query) {
    const auto number = ParseInteger(segment, 1, 1'000'000'000);
    const CChromatoData* trace = number ? sample.GetTrace(static_cast<int>(*number)) : nullptr;
    if (trace == nullptr)
        throw ApiError(404, "sample " + std::to_string(sample.GetNumber()) + " has no trace " +
                                std::string(segment));
    const CFunctionData* function = sample.GetFunctionContainingTrace(static_cast<int>(*number));
    return TraceJson(sample, *trace, function ? function->GetNumber() : 0, query);
}

// The combined trace of the found metabolites: "expected", "all" (expected and MS/MS) or
// "unexpected" (every found one), the parent left out as the browser does.
nlohmann::json CombinedAnswer(CSampleData& sample, std::string_view kind, const Query& query) {
    int type = 0;
    if (kind == "expected")
        type = CSampleData::COMBINED_EXPECTED_FOUND;
    else if (kind == "all")
        type = CSampleData::COMBINED_ALL_FOUND;
    else if (kind == "unexpected")
        type = CSampleData::COMBINED_ALL_FOUND_AND_UNEXPECTED;
    else
        throw ApiError(404, "a combined trace is expected, all or unexpected, not '" +
                                std::string(kind) + "'");
    sample.SetCombinedTraceType(type, -100);
    sample.CombinedTraceNeedsData(true, false, false);
    sample.SetupCombinedTrace(-100, CDivBroParams(), true, false);
    const CChromatoData& trace = *sample.GetTrace(-100);
    nlohmann::json answer = TraceJson(sample, trace, -100, query);
    answer["kind"] = std::string(kind);
    return answer;
}

nlohmann::json SpectrumAnswer(CSampleData& sample, std::string_view segment, const Query& query) {
    const auto peak = ParseInteger(segment, 1, 1'000'000'000);
    const int wanted = static_cast<int>(query.Integer("function", 0, 1'000'000'000).value_or(0));
    int functionNumber = 0;
    const CSpectrumData* spectrum =
        peak ? SpectrumOfPeak(sample, static_cast<int>(*peak), wanted, functionNumber) : nullptr;
    if (spectrum == nullptr)
        throw ApiError(404, "sample " + std::to_string(sample.GetNumber()) +
                                " has no spectrum of peak " + std::string(segment));
    // A diode-array spectrum runs over wavelengths, a mass spectrum over m/z.
    const CChromatoData* trace =
        spectrum->GetTraceNumber() > 0 ? sample.GetTrace(spectrum->GetTraceNumber()) : nullptr;
    return {{"x_axis", trace != nullptr && trace->IsPDA() ? "wavelength_nm" : "mz"},
            {"relative_intensity", IntensitiesArePercent(*spectrum)},
            {"spectrum", RecordJson([&](RecordSink& sink) {
                 SpectrumRecord(sink, sample.GetNumber(), functionNumber, *spectrum);
             })},
            {"points", PointsJson(PointsOf(*spectrum), query, false)}};
}

nlohmann::json AllPeaksAnswer(CSampleData& sample) {
    nlohmann::json peaks = nlohmann::json::array();
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        for (int c = 0; c < function.GetNumChromatogram(); ++c)
            for (auto& peak : PeaksJson(sample, function.GetNumber(), *function.GetChromatogram(c)))
                peaks.push_back(std::move(peak));
    }
    return {{"peaks", std::move(peaks)}};
}

} // namespace

const CSpectrumData* SpectrumOfPeak(CSampleData& sample, int peakId, int function,
                                    int& functionNumber) {
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& candidate = *sample.GetFunction(f);
        if (function != 0 && candidate.GetNumber() != function)
            continue;
        for (int p = 0; p < candidate.GetNumSpectra(false); ++p)
            if (candidate.GetSpectrum(p, false)->GetPeakID() == peakId) {
                functionNumber = candidate.GetNumber();
                return candidate.GetSpectrum(p, false);
            }
    }
    return nullptr;
}

nlohmann::json PlotAnswer(CSampleData& sample, std::span<const std::string_view> rest,
                          const Query& query) {
    if (rest.size() == 2 && rest[0] == "traces")
        return TraceAnswer(sample, rest[1], query);
    if (rest.size() == 2 && rest[0] == "combined")
        return CombinedAnswer(sample, rest[1], query);
    if (rest.size() == 2 && rest[0] == "spectra")
        return SpectrumAnswer(sample, rest[1], query);
    if (rest.size() == 1 && rest[0] == "peaks")
        return AllPeaksAnswer(sample);
    throw ApiError(404, "no such resource beneath a sample");
}

} // namespace quillon::tool::serve
