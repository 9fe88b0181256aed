// The analyses over a loaded batch (fragment analysis, metabolic stability) and saving the
// reviewer's edits, each as the tool runs it.
#include "Operation.h"

#include <pybind11/stl.h>

#include <filesystem>
#include <optional>

namespace quillon::python {

namespace {

// The fragment settings of a browser parameter record from a dict of snake_case names.
CDivBroParams FragmentSettings(const std::optional<py::dict>& settings) {
    CDivBroParams params;
    if (!settings)
        return params;
    for (const auto& [key, value] : *settings) {
        const std::string name = py::str(key);
        if (name == "intensity_threshold")
            params.FragmentIntensityThreshold = value.cast<double>();
        else if (name == "mass_tolerance")
            params.FragmentMassTolerance = value.cast<double>();
        else if (name == "use_mass_defect_filter")
            params.FragmentUseMassDefectFilter = value.cast<bool>();
        else if (name == "mass_defect_lower")
            params.FragmentMassDefectLower = value.cast<double>();
        else if (name == "mass_defect_upper")
            params.FragmentMassDefectUpper = value.cast<double>();
        else if (name == "parent_intensity_threshold")
            params.FragmentParentIntensityThreshold = value.cast<double>();
        else if (name == "extra_option")
            params.FragmentExtraOption = value.cast<bool>();
        else
            throw py::value_error("unknown fragment setting '" + name + "'");
    }
    return params;
}

py::dict FragmentResults(const CFragmentAnalysis& analysis) {
    py::list fragments, losses, fragmentLines, lossLines;
    for (const FragmentEntry& e : analysis.GetFragmentEntries())
        fragments.append(py::dict(
            py::arg("nominal_mass") = e.NominalMass, py::arg("parent_index") = e.ParentIndex,
            py::arg("partner_index") = e.PartnerIndex, py::arg("function_index") = e.FunctionIndex,
            py::arg("spectrum_peak_id") = e.SpectrumPeakID, py::arg("cluster_id") = e.ClusterID));
    for (const NeutralLossEntry& e : analysis.GetNeutralLossEntries())
        losses.append(py::dict(py::arg("mass") = e.Mass, py::arg("nominal_mass") = e.NominalMass,
                               py::arg("label") = Text(e.Label.str())));
    CStringArray lines;
    analysis.GetFragments(lines);
    for (const CString& line : lines)
        fragmentLines.append(Text(line.str()));
    lines.RemoveAll();
    analysis.GetNeutralLosses(lines);
    for (const CString& line : lines)
        lossLines.append(Text(line.str()));
    return py::dict(py::arg("fragments") = fragments, py::arg("neutral_losses") = losses,
                    py::arg("fragment_lines") = fragmentLines,
                    py::arg("neutral_loss_lines") = lossLines);
}

// Runs the sample's fragment analysis with the GIL released. The neutral-loss list comes from
// the settings file (Tarnwick.ini) in the folder of settings_file, or beside the report.
py::dict RunFragmentAnalysis(const SampleRef& ref, std::optional<py::dict> settings,
                             py::object progress, std::optional<std::string> settingsFile) {
    CSampleData& sample = ref.Get();
    CDivBroParams params = FragmentSettings(settings);
    const std::filesystem::path folder =
        std::filesystem::absolute(settingsFile ? *settingsFile : ref.batch->path).parent_path();
    CDivBroParams* previous = sample.GetParams();
    CFragmentAnalysis& analysis = *sample.GetFragmentAnalysis();
    Operation operation(std::move(progress), folder.string());
    {
        const BusyBatch busy(*ref.batch);
        py::gil_scoped_release released;
        sample.SetParams(&params);
        analysis.DoFragmentAnalysis(&sample);
        sample.SetParams(previous);
    }
    operation.RaiseIfStopped();
    if (!operation.messages.empty())
        throw std::runtime_error("fragment analysis of sample " +
                                 std::to_string(sample.GetNumber()) + ": " +
                                 operation.messages.front());
    return FragmentResults(analysis);
}

py::dict SeriesRecord(const CMetabolicStabilityInfo& info) {
    const bool t = info.HasHalfLife();
    py::dict record(py::arg("parent") = Text(info.parent.str()),
                    py::arg("process_parameters") = Text(info.processParameters.str()),
                    py::arg("points_used") = info.pointsUsed, py::arg("k_per_min") = info.k,
                    py::arg("k_standard_error") = info.standardErrorK,
                    py::arg("r_squared") = info.rSquared, py::arg("flags") = info.FlagsText(),
                    py::arg("half_life_min") = NoneUnless(t, info.halfLife),
                    py::arg("half_life_low_min") = NoneUnless(t, info.halfLifeLow),
                    py::arg("half_life_high_min") =
                        NoneUnless(info.halfLifeHigh > 0, info.halfLifeHigh),
                    py::arg("clint_ul_min_mg") = NoneUnless(t, info.intrinsicClearance),
                    py::arg("scaled_clearance_ml_min_kg") = NoneUnless(t, info.scaledClearance));
    py::list points, formation;
    for (const auto& p : info.points)
        points.append(py::dict(py::arg("sample") = p.sampleNumber, py::arg("time_min") = p.time,
                               py::arg("amount") = NoneUnless(p.hasAmount, p.amount),
                               py::arg("percent_remaining") = NoneUnless(
                                   p.hasAmount && info.initialAmount > 0, p.percentRemaining),
                               py::arg("used_in_fit") = p.usedInFit));
    for (const auto& f : info.formation)
        formation.append(py::dict(py::arg("name") = Text(f.name.str()),
                                  py::arg("shift") = Text(f.label.str()),
                                  py::arg("amount_at_time") = f.amountAtTime,
                                  py::arg("time_of_maximum_min") = f.timeOfMaximum,
                                  py::arg("maximum_percent_of_parent") = f.maximumPercentOfParent));
    record["points"] = points;
    record["formation"] = formation;
    record["times_min"] = info.times;
    return record;
}

py::list Stability(const BatchPtr& batch, double protein, double proteinPerLiver, double liverPerKg,
                   double minimumRSquared) {
    MetabolicStabilityParameters parameters;
    parameters.proteinMgPerMl = protein;
    parameters.proteinMgPerGramLiver = proteinPerLiver;
    parameters.liverGramsPerKg = liverPerKg;
    parameters.minimumRSquared = minimumRSquared;
    CArray<CMetabolicStabilityInfo> series;
    {
        const BusyBatch busy(*batch);
        py::gil_scoped_release released;
        batch->samples.CreateMetabolicStabilityAnalysis(series, parameters);
    }
    py::list records;
    for (const CMetabolicStabilityInfo& info : series)
        records.append(SeriesRecord(info));
    return records;
}

// Saves the batch through the library's atomic save, in place without a path; afterwards the
// batch belongs to the file written.
void Save(const BatchPtr& batch, std::optional<std::string> path) {
    const std::string target = path ? *path : batch->path;
    std::optional<CFileException> failure;
    {
        const BusyBatch busy(*batch);
        py::gil_scoped_release released;
        try {
            SaveReportAtomically(batch->samples, batch->path, target);
        } catch (const CFileException& exception) {
            failure = exception;
        }
    }
    if (failure)
        RaiseOSError(failure->m_lOsError, failure->what(), target);
    batch->path = target;
}

} // namespace

void BindAnalyses(py::module_& m) {
    m.def("_fragment_analysis", &RunFragmentAnalysis, py::arg("sample"),
          py::arg("settings") = py::none(), py::arg("progress") = py::none(),
          py::arg("settings_file") = py::none());
    m.def("_stability", &Stability, py::arg("batch"), py::arg("protein") = 0.5,
          py::arg("protein_per_liver") = 45.0, py::arg("liver_per_kg") = 20.0,
          py::arg("minimum_r_squared") = 0.8);
    m.def("_save", &Save, py::arg("batch"), py::arg("path") = py::none());
}

} // namespace quillon::python
