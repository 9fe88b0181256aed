#include "SpectrumWriter.h"

#include <quillon/chemistry/IsotopeModel.h>

#include <algorithm>
#include <cmath>

namespace quillon::generate {

namespace {

constexpr double kLowestPercent = 0.05; // weaker peaks are not written

} // namespace

CSpectrumWriter::CSpectrumWriter(CReportFile& file, const CDrugModel& drug, int noisePeaks)
    : m_file(file), m_drug(drug), m_noisePeaks(noisePeaks) {}

void CSpectrumWriter::AddCluster(std::vector<SpectrumPoint>& points, const CFormula& ion,
                                 double percent, double ppmError, CRandom& random) const {
    CIsotopeModel model(ion, 0.1);
    model.ShiftMasses(-CElements::kElectronMass);
    const double mono = model.Peaks().front().relativeIntensity;
    for (const IsotopePeak& peak : model.Peaks()) {
        const double intensity =
            percent * peak.relativeIntensity / mono * random.Uniform(0.96, 1.04);
        const double error = ppmError + random.Normal() * 0.8;
        points.push_back({peak.mass * (1.0 + error * 1e-6), intensity});
    }
}

void CSpectrumWriter::AddNoise(std::vector<SpectrumPoint>& points, double maxPercent,
                               CRandom& random) const {
    for (int i = 0; i < m_noisePeaks; ++i) {
        const double u = random.Uniform();
        points.push_back({random.Uniform(50.0, 1000.0), 0.15 + maxPercent * u * u * u});
    }
}

SpectrumCounts CSpectrumWriter::WriteLowEnergy(const SpectrumHeader& header,
                                               const Component& component, double baseIntensity,
                                               CRandom& random) {
    const double ppmError = (component.observedMz / component.exactMz - 1.0) * 1e6;
    std::vector<SpectrumPoint> points;
    const CFormula protonated = CDrugModel::Protonated(component.neutral);
    AddCluster(points, protonated, 100.0, ppmError, random);
    AddCluster(points, CDrugModel::Sodiated(component.neutral), random.Uniform(6.0, 18.0), ppmError,
               random);
    AddNoise(points, 4.0, random);

    // The sought masses: the isotope peaks of [M+H]+ as expected and as observed.
    CIsotopeModel expected(protonated, 1.0);
    expected.ShiftMasses(-CElements::kElectronMass);
    std::vector<std::string> masses;
    const double mono = expected.Peaks().front().mass;
    for (size_t i = 0; i < expected.Peaks().size(); ++i) {
        const IsotopePeak& peak = expected.Peaks()[i];
        const double observed =
            i == 0 ? component.observedMz : peak.mass * (1.0 + (ppmError + random.Normal()) * 1e-6);
        const double observedPercent = peak.relativeIntensity * random.Uniform(0.95, 1.05);
        masses.push_back(Format("%.4f\t%.4f\t%.4f\t%.2f\t%.2f\t%.1f\t%d", mono, peak.mass, observed,
                                observedPercent, peak.relativeIntensity,
                                (observed / peak.mass - 1.0) * 1e6, i == 0 ? 0 : 1));
    }
    const bool passed = random.Chance(0.85);
    std::vector<std::string> results = {
        Format("%.4f\t%d\t%.2f\t%.1f\t%d\t%s", mono, 1, 100.0, random.Uniform(82.0, 99.5),
               passed ? 1 : 0, passed ? "Isotope pattern matched" : "Isotope ratio outside 10%")};
    return Write(header, std::move(points), baseIntensity, masses, results, 4);
}

SpectrumCounts CSpectrumWriter::WriteHighEnergy(const SpectrumHeader& header,
                                                const Component& component,
                                                const Biotransformation& change,
                                                double baseIntensity, CRandom& random) {
    const double ppmError = (component.observedMz / component.exactMz - 1.0) * 1e6;
    std::vector<SpectrumPoint> points;
    for (const FragmentIon& ion : m_drug.Fragments(change)) {
        AddCluster(points, ion.ionFormula, ion.percent * random.Uniform(0.85, 1.15), ppmError,
                   random);
    }
    AddNoise(points, 3.0, random);
    return Write(header, std::move(points), baseIntensity, {}, {}, 4);
}

SpectrumCounts CSpectrumWriter::WriteUltraviolet(const SpectrumHeader& header, double maxAbsorbance,
                                                 CRandom& random) {
    // The phenothiazine chromophore: a strong band near 254 nm and a weak one near 306 nm.
    std::vector<SpectrumPoint> points;
    for (int wavelength = 210; wavelength <= 400; wavelength += 2) {
        const double w = wavelength;
        const double band = 100.0 * std::exp(-0.5 * std::pow((w - 254.0) / 11.0, 2)) +
                            14.0 * std::exp(-0.5 * std::pow((w - 306.0) / 16.0, 2)) +
                            6.0 * std::exp(-(w - 210.0) / 12.0);
        points.push_back({w, std::max(0.0, band + random.Normal() * 0.3)});
    }
    return Write(header, std::move(points), maxAbsorbance, {}, {}, 1);
}

SpectrumCounts CSpectrumWriter::WriteSurvey(const SpectrumHeader& header, double baseIntensity,
                                            CRandom& random) {
    std::vector<SpectrumPoint> points;
    AddCluster(points, CDrugModel::Protonated(m_drug.BackgroundFormula()), 100.0, 0.5, random);
    AddNoise(points, 30.0, random);
    return Write(header, std::move(points), baseIntensity, {}, {}, 4);
}

SpectrumCounts CSpectrumWriter::Write(const SpectrumHeader& header,
                                      std::vector<SpectrumPoint> points, double baseIntensity,
                                      const std::vector<std::string>& masses,
                                      const std::vector<std::string>& results, int massDecimals) {
    std::sort(points.begin(), points.end(),
              [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.mass < b.mass; });
    double largest = 0.0;
    double basePeakMass = 0.0;
    for (const SpectrumPoint& point : points) {
        if (point.percent > largest) {
            largest = point.percent;
            basePeakMass = point.mass;
        }
    }
    double total = 0.0;
    std::vector<SpectrumPoint> kept;
    for (const SpectrumPoint& point : points) {
        const double percent = RoundFixed(point.percent / largest * 100.0, 2);
        if (percent >= kLowestPercent) {
            kept.push_back({RoundFixed(point.mass, massDecimals), percent});
            total += percent;
        }
    }

    CReportFile& f = m_file;
    f.WriteSectionHeader("SPECTRUM");
    f.WriteBlockStart();
    f.WriteRecord("%s%d", "Process", 1);
    f.WriteRecord("%s%.0f", "BPI", baseIntensity);
    f.WriteRecord("%s%s", "Trace", header.trace.c_str());
    f.WriteRecord("%s%s", "State", "Combined");
    f.WriteRecord("%s%.4f%.4f", "Peak", header.extent.startTime, header.extent.endTime);
    f.WriteRecord("%s%.0f%.0f", "Intensity", header.extent.startIntensity,
                  header.extent.endIntensity);
    f.WriteRecord("%s%d", "TraceNumber", header.traceNumber);
    f.WriteRecord("%s%s", "Desc", header.description.c_str());
    f.WriteRecord("%s%.0f", "TIC", total * 0.01 * baseIntensity);
    f.WriteRecord("%s%.4f", "BPM", basePeakMass);
    f.WriteRecord("%s%s", "ProcDesc", header.processing.c_str());
    f.WriteRecord("%s%s", "Continuum", header.continuum ? "TRUE" : "FALSE");
    f.WriteRecord("%s%d", "Peak ID", header.peakId);
    f.WriteRecord("%s%d", "Peak Ref", header.peakRef);
    f.WriteRecord("%s%d", "Peak Cluster ID", header.clusterId);
    f.WriteRecord("%s%d", "Control Peak ID", header.controlPeakId);
    f.WriteRecord("%s%.4f", "Time", header.time);
    if (!masses.empty()) {
        f.WriteSectionHeader("MASSES");
        f.WriteBlockStart();
        f.WriteComment("%s%s%s%s%s%s%s", "Mono", "Expected", "Observed", "Percentage",
                       "ExpectedPercentage", "ErrorPPM", "Isotope");
        for (const std::string& line : masses) {
            f.WriteRecord(CString(line));
        }
        f.WriteBlockEnd();
    }
    if (!results.empty()) {
        f.WriteSectionHeader("RESULTS");
        f.WriteBlockStart();
        f.WriteComment("%s%s%s%s%s%s", "Mono", "Found", "Percentage", "Purity", "Test", "TestText");
        for (const std::string& line : results) {
            f.WriteRecord(CString(line));
        }
        f.WriteBlockEnd();
    }
    f.WriteSectionHeader("MS");
    f.WriteBlockStart();
    for (const SpectrumPoint& point : kept) {
        f.WritePoint(point.mass, massDecimals, point.percent, 2);
    }
    f.WriteBlockEnd();
    f.WriteBlockEnd();
    return {static_cast<int>(kept.size()), static_cast<int>(masses.size()),
            static_cast<int>(results.size())};
}

} // namespace quillon::generate
