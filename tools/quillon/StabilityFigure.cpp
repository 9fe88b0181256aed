#include "StabilityFigure.h"

#include "Tool.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace quillon::tool {

namespace {

std::vector<CMetabolicStabilityInfo>
GroupsOf(CSamples& samples, const CMetabolicStabilityInfo& series, const std::string& field) {
    std::map<std::string, CMetabolicStabilityInfo> groups;
    std::vector<std::string> order; // of first appearance
    for (const CMetabolicStabilityInfo::Point& point : series.points) {
        CString value;
        samples.GetSample(point.sampleIndex)->GetHeaderField(field, value);
        auto [group, added] = groups.try_emplace(value.str());
        if (added) {
            order.push_back(value.str());
            group->second.parent = series.parent + ", " + field.c_str() + " " + value;
            group->second.processParameters = series.processParameters;
            group->second.parameters = series.parameters;
        }
        group->second.points.push_back(point);
    }
    std::vector<CMetabolicStabilityInfo> fits;
    for (const std::string& value : order) {
        groups[value].Evaluate({});
        fits.push_back(std::move(groups[value]));
    }
    return fits;
}

std::string Round(double value) {
    return Fixed(value, value < 10 ? 2 : 1);
}

Chart DecayChart(const CMetabolicStabilityInfo& fit) {
    Chart chart;
    chart.title = "Stability of " + fit.parent.str();
    chart.xLabel = "Incubation time (min)";
    chart.yLabel = "ln(% parent remaining)";
    chart.yFromZero = false;
    chart.pointsName = "samples";
    for (const auto& point : fit.points)
        if (point.hasAmount && point.percentRemaining > 0)
            chart.points.push_back({point.time, std::log(point.percentRemaining)});
    double line = 0, low = 0, high = 0;
    if (!fit.times.empty() && fit.FittedPercentBand(fit.times.front(), line, low, high)) {
        ChartLine fitted{"fitted line", {}, false, false};
        ChartBand band{"95% confidence band", {}};
        const double start = fit.times.front(), end = fit.times.back();
        for (int step = 0; step <= 40; ++step) {
            const double time = start + (end - start) * step / 40;
            fit.FittedPercentBand(time, line, low, high);
            fitted.points.emplace_back(time, line);
            band.points.push_back({time, low, high});
        }
        chart.lines.push_back(std::move(fitted));
        chart.bands.push_back(std::move(band));
        chart.legendNotes.push_back("R² = " + Fixed(fit.rSquared, 3));
    }
    if (fit.HasHalfLife())
        chart.legendNotes.push_back(
            "t½ = " + Round(fit.halfLife) + " min (95%: " + Round(fit.halfLifeLow) + "–" +
            (fit.halfLifeHigh > 0 ? Round(fit.halfLifeHigh) : std::string("∞")) + ")");
    else
        chart.legendNotes.push_back(
            "no half-life: " + std::string(fit.pointsUsed < 3 ? "too few points" : "no decline"));
    return chart;
}

Chart FormationChart(const CMetabolicStabilityInfo& fit) {
    Chart chart;
    chart.title = "Metabolites formed";
    chart.xLabel = "Incubation time (min)";
    chart.yLabel = "% of the initial parent";
    for (const auto& formation : fit.formation) {
        ChartLine line{formation.name.str() +
                           (formation.label.IsEmpty() ? "" : " (" + formation.label.str() + ")"),
                       {},
                       true,
                       false};
        for (size_t t = 0; t < fit.times.size() && t < formation.amountAtTime.size(); ++t)
            line.points.emplace_back(fit.times[t],
                                     formation.amountAtTime[t] / fit.initialAmount * 100.0);
        chart.lines.push_back(std::move(line));
    }
    return chart;
}

} // namespace

std::vector<CMetabolicStabilityInfo> ChosenSeries(CSamples& samples,
                                                  const CArray<CMetabolicStabilityInfo>& series,
                                                  const std::string& chosen,
                                                  const std::string& groupBy) {
    std::vector<CMetabolicStabilityInfo> picked;
    std::string names;
    for (int s = 0; s < series.GetSize(); ++s) {
        names += (s ? ", " : "") + std::to_string(s + 1) + " " + series[s].parent.str();
        if (chosen.empty() || chosen == std::to_string(s + 1) || chosen == series[s].parent.str())
            picked.push_back(series[s]);
    }
    if (picked.empty())
        throw ToolError("no series '" + chosen + "'; the series are " + names, kExitUsage);
    if (groupBy.empty())
        return picked;
    CString probe;
    if (!samples.GetSample(0)->GetHeaderField(groupBy, probe))
        throw ToolError("--group-by " + groupBy + ": not a header field the samples keep",
                        kExitUsage);
    std::vector<CMetabolicStabilityInfo> groups;
    for (const CMetabolicStabilityInfo& whole : picked)
        for (CMetabolicStabilityInfo& group : GroupsOf(samples, whole, groupBy))
            groups.push_back(std::move(group));
    return groups;
}

HalfLifeSpread SpreadOf(const std::vector<CMetabolicStabilityInfo>& fits) {
    HalfLifeSpread spread;
    double sum = 0, squares = 0;
    for (const CMetabolicStabilityInfo& fit : fits)
        if (fit.HasHalfLife()) {
            ++spread.groups;
            sum += fit.halfLife;
            squares += fit.halfLife * fit.halfLife;
        }
    if (spread.groups == 0)
        return spread;
    spread.mean = sum / spread.groups;
    if (spread.groups > 1)
        spread.standardDeviation = std::sqrt(std::max(
            0.0, (squares - spread.groups * spread.mean * spread.mean) / (spread.groups - 1)));
    return spread;
}

std::string SpreadText(const HalfLifeSpread& spread) {
    if (spread.groups == 0)
        return "no group has a half-life";
    if (spread.groups == 1)
        return "t½ of the one group with a half-life: " + Fixed(spread.mean, 1) + " min, no SD";
    return "t½ over " + std::to_string(spread.groups) + " groups: mean " + Fixed(spread.mean, 1) +
           " min, SD " + Fixed(spread.standardDeviation, 1) + " min";
}

std::string StabilityFigureSvg(const std::vector<CMetabolicStabilityInfo>& fits, bool grouped,
                               FigureSize size) {
    std::vector<Chart> panels;
    const bool formation = !grouped && std::any_of(fits.begin(), fits.end(), [](const auto& fit) {
        return !fit.formation.empty() && fit.initialAmount > 0;
    });
    for (const CMetabolicStabilityInfo& fit : fits) {
        panels.push_back(DecayChart(fit));
        if (formation)
            panels.push_back(FormationChart(fit));
    }
    std::vector<std::string> notes;
    if (grouped)
        notes.push_back(SpreadText(SpreadOf(fits)));
    const int columns = formation ? 2 : std::min<int>(2, static_cast<int>(fits.size()));
    return FigureSvg("", panels, columns, size, notes);
}

} // namespace quillon::tool
