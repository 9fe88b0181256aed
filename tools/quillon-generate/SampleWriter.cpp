#include "SampleWriter.h"

#include "ParentMolfile.h"

#include <algorithm>
#include <cmath>

namespace quillon::generate {

namespace {

constexpr double kScanSeconds = 0.2;
constexpr double kMassWindow = 0.02; // correlation mass window, u

const char* const kLowLabel = "1: TOF MS ES+";
const char* const kHighLabel = "2: TOF MSe ES+";
const char* const kDiodeLabel = "3: Diode Array";

std::string Join(const std::vector<double>& values) {
    std::string text;
    for (double value : values) {
        text += (text.empty() ? "" : ",") + Format("%.4f", value);
    }
    return text.empty() ? "0" : text;
}

bool Contains(const std::vector<double>& values, double value) {
    return std::any_of(values.begin(), values.end(),
                       [&](double v) { return std::fabs(v - value) <= kMassWindow; });
}

int Scan(double minutes) {
    return static_cast<int>(minutes * 60.0 / kScanSeconds) + 1;
}

} // namespace

CSampleWriter::CSampleWriter(CReportFile& file, const CDrugModel& drug,
                             const std::vector<Biotransformation>& searched,
                             const GeneratorOptions& options, std::string reportName)
    : m_file(file), m_drug(drug), m_searched(searched), m_options(options),
      m_reportName(std::move(reportName)), m_spectra(file, drug, options.noisePeaks),
      m_random(options.seed) {}

SampleSummary CSampleWriter::Write(const SamplePlan& plan, int sampleIndex) {
    m_sampleIndex = sampleIndex;
    m_random = CRandom::Derived(m_options.seed, kSpectra, static_cast<uint64_t>(sampleIndex));
    m_peaks.assign(plan.components.size(), ComponentPeaks{});

    SampleSummary summary;
    summary.number = plan.number;
    summary.sampleType = plan.control ? "QC" : "Analyte";
    summary.subjectTime = plan.subjectTime;

    m_file.WriteComment(CString(
        Format("Sample %d: %s", plan.number,
               plan.control ? "control incubation without cofactor" : "incubation with cofactor")));
    m_file.WriteSectionHeader("SAMPLE");
    m_file.WriteBlockStart();
    WriteHeader(plan, summary);
    WriteCompoundAndParameters(summary);
    WriteSearchLists();
    WriteLowEnergyFunction(plan, summary);
    WriteHighEnergyFunction(plan, summary);
    WriteDiodeArrayFunction(plan, summary);
    WriteAnalogChannel(plan, summary);
    WriteExpectedMetabolites(plan, summary);
    WriteUnexpectedMetabolites(plan, summary);
    WriteMSMSCorrelation(plan, summary);
    WriteMolfileList(summary);
    m_file.WriteBlockEnd();
    WriteAppendSection(plan, summary);
    m_file.WriteRecord(CString(""));
    return summary;
}

void CSampleWriter::WriteHeader(const SamplePlan& plan, SampleSummary& summary) {
    CReportFile& f = m_file;
    const int donor = plan.group + 1;
    const int minutes = static_cast<int>(plan.subjectTime);
    f.WriteRecord("%s%d", "Sample", plan.number);
    f.WriteRecord("%s%s", "FileName", Format("CPZ_HLM_D%02d_%03d", donor, plan.number).c_str());
    f.WriteRecord("%s%d", "Well", (plan.number - 1) % 48 + 1);
    f.WriteRecord("%s%s", "Plate", "48 Vial Tray");
    f.WriteRecord("%s%s", "SampleType", summary.sampleType.c_str());
    f.WriteRecord("%s%s", "SampleID",
                  plan.control ? Format("D%02d QC -NADPH", donor).c_str()
                               : Format("D%02d T%03d", donor, minutes).c_str());
    f.WriteRecord("%s%s", "SampleDescription",
                  Format("%s 10 uM, donor %d, %d min%s", m_drug.ParentName().c_str(), donor,
                         minutes, plan.control ? ", no cofactor" : "")
                      .c_str());
    f.WriteRecord("%s%s", "ProcessParameters", "CPZ_MetID_HighRes.prm");
    f.WriteRecord("%s%s", "InletFileName", "UPLC_20min_HSS_T3");
    f.WriteRecord("%s%s", "MSMethodFileName", "MSe_ESpos_50-1000");
    f.WriteRecord("%s%s", "MSTuneFileName", "ESpos_Sensitivity_2026");
    f.WriteRecord("%s%s", "InjectionVolume", "5.0");
    f.WriteRecord("%s%d", "SubjectTime", minutes);
    f.WriteRecord("%s%s", "SubjectText", "Incubation time (min)");
    f.WriteRecord("%s%s", "SubjectParent", m_drug.ParentName().c_str());
    f.WriteRecord("%s%.1f", "Concentration", 10.0);
    f.WriteRecord("%s%s", "Date", Format("%02d-Mar-2026", 12 + plan.group % 15).c_str());
    f.WriteRecord("%s%s", "Time",
                  Format("%02d:%02d:%02d", 9 + (plan.number * 23 / 60) % 12,
                         (plan.number * 23) % 60, (plan.number * 17) % 60)
                      .c_str());
    f.WriteRecord("%s%d", "LockSprayEnabled", 1);
    f.WriteRecord("%s%d", "MUXEnabled", 0);
    f.WriteRecord("%s%.4f", "Masses", m_drug.ParentFormula().MonoisotopicMass());
    f.WriteRecord("%s%s", "ProcessingTime", Format("%.1f s", 14.0 + plan.number % 7).c_str());
    f.WriteRecord("%s%s", "Info", "Peak detection on mass chromatograms, window 0.02 Da");
    f.WriteRecord("%s%s", "Warning",
                  plan.control ? "Control sample: no metabolites expected" : "None");
    f.WriteRecord("%s%s", "EleParameters", "C0-60 H0-120 N0-6 O0-14 S0-3 Cl0-1 Na0-1");
    f.WriteRecord("%s%s", "JobCode", "MET-2026-031");
    f.WriteRecord("%s%s", "TaskCode", Format("HLM-STAB-D%02d", donor).c_str());
    f.WriteRecord("%s%s", "UserName", "a.tarrant");
    f.WriteRecord("%s%s", "LabName", "Biotransformation Laboratory 2");
    f.WriteRecord("%s%s", "Instrument", "Q-TOF 04");
    f.WriteRecord("%s%s", "Conditions", "HSS T3 2.1x100 mm, 0.1% formic acid, 5-95% MeCN");
    f.WriteRecord("%s%s", "Submitter", "DMPK Discovery");
    summary.headerFields = 32;
}

void CSampleWriter::WriteSearchLists() {
    CReportFile& f = m_file;
    f.WriteSectionHeader("METABOLITE COMPOUNDS");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s", "Mass shift", "Formula change", "Name");
    for (size_t k = 1; k < m_searched.size(); ++k) {
        const Biotransformation& change = m_searched[k];
        std::string text;
        if (!change.added.IsEmpty()) {
            text += "+" + change.added.ToString();
        }
        if (!change.removed.IsEmpty()) {
            text += "-" + change.removed.ToString();
        }
        f.WriteRecord("%.4f%s%s", ShiftOf(m_drug.Apply(change)), text.c_str(), change.name.c_str());
    }
    f.WriteBlockEnd();
    f.WriteSectionHeader("NEUTRAL LOSS COMPOUNDS");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s", "Mass", "Formula", "Name");
    for (const NeutralLossDefinition& loss : m_drug.NeutralLosses()) {
        if (loss.selected) {
            f.WriteRecord("%.4f%s%s", loss.formula.MonoisotopicMass(), loss.formulaText.c_str(),
                          loss.name.c_str());
        }
    }
    f.WriteBlockEnd();
}

void CSampleWriter::WriteCompoundAndParameters(SampleSummary& summary) {
    CReportFile& f = m_file;
    const double mass = m_drug.ParentFormula().MonoisotopicMass();
    f.WriteSectionHeader("COMPOUND");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s", "Mass", "Formula", "Name");
    f.WriteRecord("%.4f%s%s", mass, m_drug.ParentFormula().ToString().c_str(),
                  m_drug.ParentName().c_str());
    f.WriteBlockEnd();
    summary.compounds = 1;
    summary.compoundMass = RoundFixed(mass, 4);

    // Adduct mass shifts from the element table: H+, Na+, K+; [M-H]-, Cl-, formate.
    const double electron = CElements::kElectronMass;
    const double h = CElements::Find("H")->MonoisotopicMass();
    const double na = CElements::Find("Na")->MonoisotopicMass();
    const double k = CElements::Find("K")->MonoisotopicMass();
    const double cl = CElements::Find("Cl")->MonoisotopicMass();
    const double formate = CFormula::Parse("CHO2").MonoisotopicMass();
    f.WriteSectionHeader("PARAMETERS");
    f.WriteBlockStart();
    f.WriteRecord("%s%s", "PeakFindMode", "Automatic");
    f.WriteRecord("%s%.2f", "PeakFindWindow", 0.2);
    f.WriteRecord("%s%s", "SpectrumThresholdMode", "Relative");
    f.WriteRecord("%s%.1f", "SpectrumThreshold", 1.0);
    f.WriteRecord("%s%.6f%.6f%.6f", "PositiveAdducts", h - electron, na - electron, k - electron);
    f.WriteRecord("%s%.6f%.6f%.6f", "NegativeAdducts", -(h - electron), cl + electron,
                  formate + electron);
    f.WriteRecord("%s%.1f", "PeakFindThreshold", 500.0);
    f.WriteRecord("%s%d", "SigPeaks", 5);
    f.WriteBlockEnd();
    summary.positiveAdducts = 3;
    summary.negativeAdducts = 3;
}

TraceShape CSampleWriter::BaseShape() const {
    TraceShape shape{};
    shape.points = m_options.pointsPerTrace;
    shape.startTime = 0.0;
    shape.endTime = kRunMinutes;
    return shape;
}

void CSampleWriter::WriteFunctionHeader(int number, const char* ionMode, const char* type,
                                        const char* description, int coneVoltage,
                                        double collisionEnergy) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("FUNCTION");
    f.WriteBlockStart();
    f.WriteRecord("%s%d", "Function", number);
    f.WriteRecord("%s%s", "IonMode", ionMode);
    f.WriteRecord("%s%s", "Type", type);
    f.WriteRecord("%s%s", "Description", description);
    f.WriteRecord("%s%d", "ConeVoltage", coneVoltage);
    f.WriteRecord("%s%.1f", "CollisionEnergy", collisionEnergy);
    f.WriteRecord("%s%.3f", "ScanCycleTime", number == 3 ? 0.5 : kScanSeconds);
    f.WriteRecord("%s%.3f", "InterScanDelay", number == 3 ? 0.0 : 0.02);
}

std::vector<PeakResult> CSampleWriter::WriteChromatogram(const char* section,
                                                         const std::string& description,
                                                         int traceNumber, int traceInFunction,
                                                         TraceShape shape, bool continued,
                                                         ChromatogramSummary& summary) {
    CReportFile& f = m_file;
    CTraceStream trace(std::move(shape), m_options.seed,
                       kTraceNoise + static_cast<uint64_t>(m_sampleIndex),
                       static_cast<uint64_t>(traceNumber));
    summary.traceNumber = traceNumber;
    summary.traceInFunction = traceInFunction;
    summary.points = trace.PointsLeft();

    f.WriteSectionHeader(section);
    f.WriteBlockStart();
    f.WriteRecord("%s%s", "Description", description.c_str());
    f.WriteRecord("%s%s", "ProcDesc", "Smooth(Mn,2x2)");
    f.WriteRecord("%s%.0f", "MaxIntensity", trace.MaxIntensity());
    f.WriteRecord("%s%d", "TraceNumber", traceNumber);
    f.WriteRecord("%s%d", "TraceNumberInFunction", traceInFunction);
    f.WriteSectionHeader("TRACE");
    f.WriteBlockStart();
    trace.WritePoints(f, continued ? trace.PointsLeft() / 3 : trace.PointsLeft());
    f.WriteBlockEnd();
    if (continued) {
        // The rest of the points follows in two continuation sections of the same trace; the
        // second also carries the peaks.
        f.WriteBlockEnd();
        for (int part = 0; part < 2; ++part) {
            f.WriteSectionHeader("CHROMATOGRAM_APPEND");
            f.WriteBlockStart();
            f.WriteRecord("%s%d", "TraceNumber", traceNumber);
            f.WriteSectionHeader("TRACE");
            f.WriteBlockStart();
            trace.WritePoints(f, part == 0 ? trace.PointsLeft() / 2 : trace.PointsLeft());
            f.WriteBlockEnd();
            if (part == 1) {
                for (const PeakResult& peak : trace.Peaks()) {
                    WritePeak(peak, traceNumber);
                }
            }
            f.WriteBlockEnd();
        }
    } else {
        for (const PeakResult& peak : trace.Peaks()) {
            WritePeak(peak, traceNumber);
        }
        f.WriteBlockEnd();
    }
    for (const PeakResult& peak : trace.Peaks()) {
        summary.peakIds.push_back(peak.peakId);
    }
    return trace.Peaks();
}

void CSampleWriter::WritePeak(const PeakResult& peak, int peakRef) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("PEAK");
    f.WriteBlockStart();
    f.WriteRecord("%s%d", "Peak ID", peak.peakId);
    f.WriteRecord("%s%d", "Peak Cluster ID", peak.clusterId);
    f.WriteRecord("%s%d", "Peak Ref", peakRef);
    f.WriteRecord("%s%.4f", "Time", peak.apexTime);
    f.WriteRecord("%s%.4f%.4f", "Peak", peak.startTime, peak.endTime);
    f.WriteRecord("%s%.2f%.2f", "Intensity", peak.startIntensity, peak.endIntensity);
    f.WriteRecord("%s%.2f", "Height", peak.height);
    f.WriteRecord("%s%.4f", "AreaAbs", peak.area);
    f.WriteRecord("%s%.4f", "Width", peak.width);
    f.WriteBlockEnd();
}

SpectrumHeader CSampleWriter::SpectrumAt(const char* trace, const PeakResult& extent,
                                         int traceNumber, int peakId, int clusterId) const {
    SpectrumHeader header;
    header.trace = trace;
    header.extent = extent;
    header.traceNumber = traceNumber;
    header.peakId = peakId;
    header.clusterId = clusterId;
    header.time = extent.apexTime;
    header.description = Format("Combine (%d:%d-%d)", Scan(extent.apexTime), Scan(extent.startTime),
                                Scan(extent.endTime));
    header.processing = "Centroid, lock mass corrected";
    return header;
}

void CSampleWriter::WriteSurveySpectra(const char* trace, int traceNumber, FunctionSummary& summary,
                                       int first, int count) {
    for (int i = first; i < first + count; ++i) {
        const double time = kRunMinutes * (i + 0.5) / m_options.surveySpectra;
        PeakResult at{};
        at.apexTime = at.startTime = at.endTime = RoundFixed(time, 4);
        SpectrumHeader header = SpectrumAt(trace, at, traceNumber, 0, 0);
        header.description = Format("Scan %d", Scan(time));
        const SpectrumCounts counts =
            m_spectra.WriteSurvey(header, m_random.Uniform(2.0e4, 6.0e4), m_random);
        summary.spectrumPeakIds.push_back(0);
        summary.spectrumPoints.push_back(counts.points);
    }
}

void CSampleWriter::WriteLowEnergyFunction(const SamplePlan& plan, SampleSummary& summary) {
    m_file.WriteComment("%s", "Function 1: low collision energy");
    WriteFunctionHeader(1, "ES+", "MS", "TOF MS ES+ (50:1000)", 30, 6.0);
    FunctionSummary function{1, "MS", {}, {}, {}, 0, 0};

    TraceShape tic = BaseShape();
    tic.baseline = 1.8e5;
    tic.drift = 2.0e4;
    tic.noise = 2500.0;
    tic.shotNoise = 1.5;
    for (const Component& c : plan.components) {
        tic.peaks.push_back(
            {c.retentionTime, c.sigma, c.xicHeight * kLowTicShare, c.ticPeakId, c.cluster});
    }
    function.chromatograms.emplace_back();
    WriteChromatogram("CHROMATOGRAM", "TOF MS ES+ : TIC", plan.ticTrace, 1, tic, true,
                      function.chromatograms.back());

    for (const MassTrace& xic : plan.xics) {
        TraceShape shape = BaseShape();
        shape.baseline = 40.0;
        shape.drift = 10.0;
        shape.noise = 12.0;
        shape.shotNoise = 0.9;
        for (int member : xic.components) {
            const Component& c = plan.components[static_cast<size_t>(member)];
            shape.peaks.push_back({c.retentionTime, c.sigma, c.xicHeight, c.peakId, c.cluster});
        }
        function.chromatograms.emplace_back();
        const std::vector<PeakResult> peaks =
            WriteChromatogram("CHROMATOGRAM", Format("TOF MS ES+ : %.4f", xic.mz), xic.traceNumber,
                              xic.traceInFunction, shape, false, function.chromatograms.back());
        for (size_t i = 0; i < xic.components.size(); ++i) {
            m_peaks[static_cast<size_t>(xic.components[i])].low = peaks[i];
        }
    }

    for (size_t i = 0; i < plan.components.size(); ++i) {
        const Component& c = plan.components[i];
        const PeakResult& peak = m_peaks[i].low;
        SpectrumHeader header =
            SpectrumAt(kLowLabel, peak, plan.xics[static_cast<size_t>(c.xic)].traceNumber, c.peakId,
                       c.cluster);
        header.peakRef = c.ticPeakId;
        // Analyte spectra of the parent point at the parent's peak in the preceding control.
        header.controlPeakId = (!plan.control && c.kind == ComponentKind::Parent) ? 1 : 0;
        const SpectrumCounts counts = m_spectra.WriteLowEnergy(header, c, peak.height, m_random);
        function.spectrumPeakIds.push_back(c.peakId);
        function.spectrumPoints.push_back(counts.points);
        function.spectrumMasses += counts.masses;
        function.spectrumResults += counts.results;
    }
    m_file.WriteBlockEnd();

    // The survey spectra follow in continuation sections of the function. These come in pairs:
    // a reader continues a function from the line after the block start, so it reads on to the
    // end of the next block, which is then the second continuation of the same function.
    const int surveys = m_options.surveySpectra;
    const int firstPart = (surveys + 1) / 2;
    for (int part = 0; part < 2; ++part) {
        m_file.WriteSectionHeader("FUNCTION_APPEND");
        m_file.WriteBlockStart();
        m_file.WriteRecord("%s%d", "Function", 1);
        WriteSurveySpectra(kLowLabel, plan.ticTrace, function, part == 0 ? 0 : firstPart,
                           part == 0 ? firstPart : surveys - firstPart);
        m_file.WriteBlockEnd();
    }
    summary.functions.push_back(std::move(function));
}

void CSampleWriter::WriteHighEnergyFunction(const SamplePlan& plan, SampleSummary& summary) {
    m_file.WriteComment("%s", "Function 2: elevated collision energy (ramp 15-45 eV)");
    WriteFunctionHeader(2, "ES+", "MS", "TOF MSe ES+ (50:1000)", 30, 30.0);
    FunctionSummary function{2, "MS", {}, {}, {}, 0, 0};

    TraceShape tic = BaseShape();
    tic.baseline = 2.4e5;
    tic.drift = 2.5e4;
    tic.noise = 3000.0;
    tic.shotNoise = 1.5;
    for (const Component& c : plan.components) {
        tic.peaks.push_back(
            {c.retentionTime, c.sigma, c.xicHeight * kHighTicShare, c.highTicPeakId, c.cluster});
    }
    function.chromatograms.emplace_back();
    WriteChromatogram("CHROMATOGRAM", "TOF MSe ES+ : TIC", plan.highTicTrace, 1, tic, false,
                      function.chromatograms.back());

    for (const MassTrace& xic : plan.xics) {
        if (xic.highTraceNumber == 0) {
            continue;
        }
        TraceShape shape = BaseShape();
        shape.baseline = 25.0;
        shape.drift = 6.0;
        shape.noise = 9.0;
        shape.shotNoise = 0.9;
        std::vector<int> listed;
        for (int member : xic.components) {
            const Component& c = plan.components[static_cast<size_t>(member)];
            // Little precursor survives the collision cell; only partners are listed as peaks.
            shape.peaks.push_back({c.retentionTime, c.sigma, c.xicHeight * 0.18,
                                   c.hasFragments ? c.peakId : 0, c.cluster});
            if (c.hasFragments) {
                listed.push_back(member);
            }
        }
        function.chromatograms.emplace_back();
        const std::vector<PeakResult> peaks = WriteChromatogram(
            "CHROMATOGRAM", Format("TOF MSe ES+ : %.4f", xic.mz), xic.highTraceNumber,
            xic.traceInFunction, shape, false, function.chromatograms.back());
        for (size_t i = 0; i < listed.size(); ++i) {
            m_peaks[static_cast<size_t>(listed[i])].high = peaks[i];
        }
    }

    for (size_t i = 0; i < plan.components.size(); ++i) {
        const Component& c = plan.components[i];
        if (!c.hasFragments) {
            continue;
        }
        const PeakResult& peak = m_peaks[i].high;
        SpectrumHeader header =
            SpectrumAt(kHighLabel, peak, plan.xics[static_cast<size_t>(c.xic)].highTraceNumber,
                       c.peakId, c.cluster);
        header.peakRef = c.highTicPeakId;
        const Biotransformation& change = c.kind == ComponentKind::Unexpected
                                              ? m_drug.Unexpected()[static_cast<size_t>(c.change)]
                                              : m_searched[static_cast<size_t>(c.change)];
        const SpectrumCounts counts =
            m_spectra.WriteHighEnergy(header, c, change, c.xicHeight * 0.6, m_random);
        function.spectrumPeakIds.push_back(c.peakId);
        function.spectrumPoints.push_back(counts.points);
    }
    WriteSurveySpectra(kHighLabel, plan.highTicTrace, function, 0, m_options.surveySpectra);
    m_file.WriteBlockEnd();
    summary.functions.push_back(std::move(function));
}

void CSampleWriter::WriteDiodeArrayFunction(const SamplePlan& plan, SampleSummary& summary) {
    m_file.WriteComment("%s", "Function 3: diode array, intensities in percent of the maximum");
    WriteFunctionHeader(3, "", "Diode Array", "Diode Array 210-400 nm", 0, 0.0);
    FunctionSummary function{3, "Diode Array", {}, {}, {}, 0, 0};

    TraceShape tic = BaseShape();
    tic.baseline = 2000.0;
    tic.drift = 800.0;
    tic.noise = 120.0;
    tic.shotNoise = 0.3;
    tic.decimals = 2;
    tic.percentOfMax = true;
    std::vector<int> listed;
    for (size_t i = 0; i < plan.components.size(); ++i) {
        const Component& c = plan.components[i];
        if (c.uvHeight > 0.0) {
            // The diode array sits before the mass spectrometer: its peaks come a little earlier.
            tic.peaks.push_back(
                {c.retentionTime - 0.05, c.sigma * 1.1, c.uvHeight, c.pdaPeakId, c.cluster});
            listed.push_back(static_cast<int>(i));
        }
    }
    function.chromatograms.emplace_back();
    const std::vector<PeakResult> peaks =
        WriteChromatogram("CHROMATOGRAM", "Diode Array : TIC", plan.pdaTrace, 1, tic, false,
                          function.chromatograms.back());
    for (size_t i = 0; i < listed.size(); ++i) {
        const Component& c = plan.components[static_cast<size_t>(listed[i])];
        m_peaks[static_cast<size_t>(listed[i])].pda = peaks[i];
        SpectrumHeader header =
            SpectrumAt(kDiodeLabel, peaks[i], plan.pdaTrace, c.pdaPeakId, c.cluster);
        header.continuum = true;
        header.processing = "Absorbance, baseline subtracted";
        const SpectrumCounts counts = m_spectra.WriteUltraviolet(header, peaks[i].height, m_random);
        function.spectrumPeakIds.push_back(c.pdaPeakId);
        function.spectrumPoints.push_back(counts.points);
    }
    m_file.WriteBlockEnd();
    summary.functions.push_back(std::move(function));
}

void CSampleWriter::WriteAnalogChannel(const SamplePlan& plan, SampleSummary& summary) {
    m_file.WriteComment("%s", "Analog channel 1: radio-flow detector (counts per minute)");
    TraceShape shape = BaseShape();
    shape.baseline = 30.0;
    shape.drift = 5.0;
    shape.noise = 6.0;
    shape.shotNoise = 0.5;
    shape.decimals = 1;
    for (const Component& c : plan.components) {
        if (c.radioHeight > 0.0) {
            // The flow cell sits after the mass spectrometer split: a short delay.
            shape.peaks.push_back(
                {c.retentionTime + 0.08, c.sigma * 1.4, c.radioHeight, c.analogPeakId, c.cluster});
        }
    }
    summary.analogChannels.emplace_back();
    WriteChromatogram("ANALOG", "ANALOG 1 : Radio flow", plan.analogTrace, 1, shape, false,
                      summary.analogChannels.back());
}

double CSampleWriter::ShiftOf(const CFormula& neutral) const {
    return neutral.MonoisotopicMass() - m_drug.ParentFormula().MonoisotopicMass();
}

std::string CSampleWriter::PeakIdentifier(const Component& c, int peakId, int function, int trace,
                                          double mz) const {
    return Format("%d/%d/%d/%.4f/%d/%.4f", peakId, function, trace, mz, c.cluster,
                  c.observedMz - kProtonMass);
}

void CSampleWriter::WriteMSRow(const Component& c, const std::string& formula, bool found,
                               const std::string& chroTrace, const std::string& peak,
                               const std::string& name, bool msms, bool confirmed, bool molfile) {
    const bool known = c.kind != ComponentKind::Unexpected;
    const double measured = c.observedMz - kProtonMass;
    const double precursor = known ? c.neutral.MonoisotopicMass() : measured;
    std::string mDa;
    std::string ppm;
    if (found && known && name != "MSe fragments") {
        const double error = (measured - precursor) * 1000.0;
        mDa = Format("%.1f", error);
        ppm = Format("%.1f", error / measured * 1000.0);
    }
    const std::string molfileName = molfile ? m_reportName + "_Parent" : "";
    m_file.WriteRecord("%d%.4f%.4f%d%s%s%s%s%s%s%d%d%s%s", 0, precursor,
                       known ? ShiftOf(c.neutral)
                             : measured - m_drug.ParentFormula().MonoisotopicMass(),
                       found ? 1 : 0, formula.empty() ? "0" : formula.c_str(), chroTrace.c_str(),
                       peak.c_str(), name.c_str(), mDa.c_str(), ppm.c_str(), msms ? 1 : 0,
                       confirmed ? 1 : 0, molfileName.c_str(), "");
}

void CSampleWriter::WriteExpectedMetabolites(const SamplePlan& plan, SampleSummary& summary) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("EXPECTED METABOLITES");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Compound", "Precursor", "Metabolite", "Found",
                   "Formula", "ChroTrace", "Peak", "MetName", "mDa", "PPM", "MSMS", "Confirmed",
                   "Molfile", "Label");
    auto writePartner = [&](const Component& c) {
        const MassTrace& xic = plan.xics[static_cast<size_t>(c.xic)];
        WriteMSRow(c, "", true, Format("%d", xic.highTraceNumber),
                   PeakIdentifier(c, c.peakId, 2, xic.highTraceNumber, c.observedMz),
                   "MSe fragments", false, false, false);
        summary.expectedRecords++;
        summary.highEnergyPartners++;
    };
    for (const Search& search : plan.searches) {
        const Biotransformation& change = m_searched[static_cast<size_t>(search.change)];
        const CFormula neutral = m_drug.Apply(change);
        const std::string name = search.change == 0 ? "Parent" : change.name;
        if (search.found.empty()) {
            Component absent{};
            absent.kind = ComponentKind::Expected;
            absent.neutral = neutral;
            WriteMSRow(absent, neutral.ToString(), false, "", "0", name, false, false, false);
            summary.expectedRecords++;
            continue;
        }
        for (int member : search.found) {
            const Component& c = plan.components[static_cast<size_t>(member)];
            const MassTrace& xic = plan.xics[static_cast<size_t>(c.xic)];
            std::string traces = Format("%d", xic.traceNumber);
            std::string peaks = PeakIdentifier(c, c.peakId, 1, xic.traceNumber, c.observedMz);
            int records = 1;
            if (c.kind == ComponentKind::Parent && c.pdaPeakId > 0) {
                // The parent row also stands for its diode-array peak.
                traces += Format(",%d", plan.pdaTrace);
                peaks += "," + PeakIdentifier(c, c.pdaPeakId, 3, plan.pdaTrace, c.observedMz);
                records = 2;
            }
            WriteMSRow(c, neutral.ToString(), true, traces, peaks, name, c.hasFragments,
                       c.kind == ComponentKind::Parent, c.kind == ComponentKind::Parent);
            summary.expectedRecords += records;
            if (c.hasFragments) {
                writePartner(c);
            }
        }
    }
    for (int member : plan.excluded) {
        const Component& c = plan.components[static_cast<size_t>(member)];
        const MassTrace& xic = plan.xics[static_cast<size_t>(c.xic)];
        WriteMSRow(c, c.neutral.ToString(), true, Format("%d", xic.traceNumber),
                   PeakIdentifier(c, c.peakId, 1, xic.traceNumber, c.observedMz), c.name, false,
                   false, false);
        summary.expectedRecords++;
    }
    f.WriteBlockEnd();
}

void CSampleWriter::WriteUnexpectedMetabolites(const SamplePlan& plan, SampleSummary& summary) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("UNEXPECTED METABOLITES");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Compound", "Precursor", "Metabolite", "Found",
                   "Formula", "ChroTrace", "Peak", "MetName", "mDa", "PPM", "MSMS", "Confirmed",
                   "Molfile", "Label");
    std::vector<const Component*> records;
    for (int member : plan.unexpected) {
        const Component& c = plan.components[static_cast<size_t>(member)];
        const MassTrace& xic = plan.xics[static_cast<size_t>(c.xic)];
        WriteMSRow(c, "", true, Format("%d", xic.traceNumber),
                   PeakIdentifier(c, c.peakId, 1, xic.traceNumber, c.observedMz), c.name,
                   c.hasFragments, false, false);
        records.push_back(&c);
        if (c.hasFragments) {
            WriteMSRow(c, "", true, Format("%d", xic.highTraceNumber),
                       PeakIdentifier(c, c.peakId, 2, xic.highTraceNumber, c.observedMz),
                       "MSe fragments", false, false, false);
            records.push_back(nullptr);
        }
    }
    f.WriteBlockEnd();
    summary.unexpectedRecords = static_cast<int>(records.size());

    // One elemental section per unexpected record, in record order: candidates for a found
    // metabolite, an empty list for its high-energy partner.
    const std::pair<const char*, const char*> swaps[] = {
        {"CH4", "O"}, {"O", "CH4"}, {"N2", "CO"}, {"CO", "N2"}, {"C2H4", "N2"}, {"N2", "C2H4"}};
    for (const Component* c : records) {
        f.WriteSectionHeader("ELEMENTAL");
        f.WriteBlockStart();
        int rows = 0;
        if (c != nullptr) {
            std::vector<CFormula> candidates = {c->neutral};
            for (const auto& [added, removed] : swaps) {
                const CFormula other =
                    c->neutral + CFormula::Parse(added) - CFormula::Parse(removed);
                if (other.IsNonNegative() && candidates.size() < 4) {
                    candidates.push_back(other);
                }
            }
            f.WriteComment("%s%s%s%s%s%s%s%s", "m/z Found", "Calc. m/z", "mDa", "PPM", "DBE",
                           "m/zFormula", "MassFormula", "i-FIT");
            double bestFit = 0.0;
            for (size_t i = 0; i < candidates.size(); ++i) {
                const CFormula ion = CDrugModel::Protonated(candidates[i]);
                const double calc = CDrugModel::CationMz(ion);
                const double mDa = (c->observedMz - calc) * 1000.0;
                const double fit =
                    i == 0 ? m_random.Uniform(8.0, 40.0) : m_random.Uniform(45.0, 160.0);
                if (i == 0) {
                    bestFit = fit;
                }
                f.WriteRecord("%f%f%f%f%f%s%s%f%f", c->observedMz, calc, mDa, mDa / calc * 1000.0,
                              ion.DoubleBondEquivalent(), ion.ToString().c_str(),
                              candidates[i].ToString().c_str(), fit, fit - bestFit);
                rows++;
            }
        }
        f.WriteBlockEnd();
        summary.elementalRows.push_back(rows);
    }
}

void CSampleWriter::WriteMSMSCorrelation(const SamplePlan& plan, SampleSummary& summary) {
    // The entries: the parent first, then the strongest expected and unexpected products.
    std::vector<const Component*> entries;
    for (const Component& c : plan.components) {
        if (c.kind == ComponentKind::Parent && c.hasFragments) {
            entries.insert(entries.begin(), &c);
        } else if (c.hasFragments && entries.size() < 6 &&
                   (c.kind == ComponentKind::Expected || c.kind == ComponentKind::Unexpected)) {
            entries.push_back(&c);
        }
    }
    if (entries.empty() || entries.front()->kind != ComponentKind::Parent) {
        return;
    }
    // Product ions and neutral losses of every entry.
    std::vector<std::vector<double>> products(entries.size());
    std::vector<std::vector<double>> losses(entries.size());
    for (size_t e = 0; e < entries.size(); ++e) {
        const Component& c = *entries[e];
        const Biotransformation& change = c.kind == ComponentKind::Unexpected
                                              ? m_drug.Unexpected()[static_cast<size_t>(c.change)]
                                              : m_searched[static_cast<size_t>(c.change)];
        for (const FragmentIon& ion : m_drug.Fragments(change)) {
            const double mz = CDrugModel::CationMz(ion.ionFormula);
            if (std::fabs(mz - c.exactMz) > kMassWindow) {
                products[e].push_back(mz);
                losses[e].push_back(c.exactMz - mz);
            }
        }
    }
    std::vector<double> configured;
    for (const NeutralLossDefinition& loss : m_drug.NeutralLosses()) {
        if (loss.selected) {
            configured.push_back(loss.formula.MonoisotopicMass());
        }
    }

    CReportFile& f = m_file;
    const double parentMz = entries.front()->observedMz;
    f.WriteSectionHeader("MSMS CORRELATION");
    f.WriteBlockStart();
    f.WriteRecord("%s%.4f", "MassWindow", kMassWindow);
    f.WriteRecord("%s%d", "ParentEntry", 0);
    f.WriteSectionHeader("METABOLITES");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Entry", "SetMass", "ParentMass", "TraceNum",
                   "Metabolite", "Status", "PeakID", "Cluster", "Time", "NeutralLoss", "Spare",
                   "Name", "Formula", "Molfile");
    for (size_t e = 0; e < entries.size(); ++e) {
        const Component& c = *entries[e];
        const MassTrace& xic = plan.xics[static_cast<size_t>(c.xic)];
        const bool parent = c.kind == ComponentKind::Parent;
        const std::string loss =
            parent || losses[e].empty()
                ? "no"
                : Format("%.4f", *std::min_element(losses[e].begin(), losses[e].end()));
        const std::string molfile = parent ? m_reportName + "_Parent" : "";
        const bool known = c.kind != ComponentKind::Unexpected;
        f.WriteRecord("%d%.4f%.4f%d%.4f%d%d%d%.2f%s%s%s%s%s", static_cast<int>(e), c.observedMz,
                      parentMz, xic.highTraceNumber,
                      known ? ShiftOf(c.neutral) : c.observedMz - parentMz, 1, c.peakId, c.cluster,
                      m_peaks[static_cast<size_t>(&c - plan.components.data())].high.apexTime,
                      loss.c_str(), "", c.name.c_str(), known ? c.neutral.ToString().c_str() : "",
                      molfile.c_str());
    }
    f.WriteBlockEnd();
    f.WriteSectionHeader("CORRELATION TABLE");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s%s%s", "Entry1", "Entry2", "Entry1MassesMatched",
                   "Entry1NeutralLossesMatched", "Entry1CommonNeutralLosses");
    for (size_t e1 = 0; e1 < entries.size(); ++e1) {
        for (size_t e2 = 0; e2 < entries.size(); ++e2) {
            std::vector<double> common;
            for (double mz : products[e1]) {
                if (Contains(products[e2], mz)) {
                    common.push_back(mz);
                }
            }
            std::vector<double> matched;
            std::vector<double> shared;
            for (double loss : losses[e1]) {
                if (Contains(losses[e2], loss)) {
                    matched.push_back(loss);
                    if (Contains(configured, loss)) {
                        shared.push_back(loss);
                    }
                }
            }
            f.WriteRecord("%d%d%s%s%s", static_cast<int>(e1), static_cast<int>(e2),
                          Join(common).c_str(), Join(matched).c_str(), Join(shared).c_str());
            summary.correlationRows++;
        }
    }
    f.WriteBlockEnd();
    f.WriteBlockEnd();
    summary.msmsRecords = static_cast<int>(entries.size());
}

void CSampleWriter::WriteMolfileList(SampleSummary& summary) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("MOLFILE LIST");
    f.WriteBlockStart();
    f.WriteRecord("%s%s", "Reference", (m_reportName + "_Parent").c_str());
    f.WriteSectionHeader("MOLFILE");
    f.WriteBlockStart();
    for (const std::string& line : ParentMolfileLines(m_drug.ParentName())) {
        f.WriteRecord(CString(line));
    }
    f.WriteBlockEnd();
    f.WriteBlockEnd();
    summary.molfiles = 1;
}

void CSampleWriter::WriteAppendSection(const SamplePlan& plan, SampleSummary& summary) {
    CReportFile& f = m_file;
    f.WriteSectionHeader("SAMPLE_APPEND");
    f.WriteBlockStart();
    f.WriteRecord("%s%s", "Info",
                  plan.control ? "Mass defect filter applied; no turnover in control"
                               : "Mass defect filter applied around parent and hydroxylated "
                                 "parent");
    f.WriteSectionHeader("MASS DEFECT FILTER");
    f.WriteBlockStart();
    f.WriteComment("%s", "Reference masses, then filter settings");
    const CFormula parentIon = CDrugModel::Protonated(m_drug.ParentFormula());
    f.WriteRecord("%.4f", CDrugModel::CationMz(parentIon));
    f.WriteRecord("%.4f", CDrugModel::CationMz(parentIon + CFormula::Parse("O")));
    f.WriteRecord("%s%.1f", "Upper mass defect (mDa)", 40.0);
    f.WriteRecord("%s%.1f", "Lower mass defect (mDa)", 60.0);
    f.WriteRecord("%s%.1f", "Mass window (Da)", 50.0);
    f.WriteBlockEnd();
    f.WriteBlockEnd();
    summary.mdfMasses = 2;
    summary.mdfParameters = 3;
}

} // namespace quillon::generate
