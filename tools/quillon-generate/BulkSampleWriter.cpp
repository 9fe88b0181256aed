#include "BulkSampleWriter.h"

#include "Random.h"
#include "SamplePlan.h"
#include "SpectrumWriter.h"

#include <cstdio>
#include <string>

namespace quillon::generate {

namespace {

void WriteFunctionHeader(CReportFile& f, int number, const char* description,
                         double collisionEnergy) {
    f.WriteSectionHeader("FUNCTION");
    f.WriteBlockStart();
    f.WriteRecord("%s%d", "Function", number);
    f.WriteRecord("%s%s", "IonMode", "ES+");
    f.WriteRecord("%s%s", "Type", "MS");
    f.WriteRecord("%s%s", "Description", description);
    f.WriteRecord("%s%d", "ConeVoltage", 30);
    f.WriteRecord("%s%.1f", "CollisionEnergy", collisionEnergy);
}

// One metabolite row of the unexpected layout, found, with its peak identifier.
void WriteRow(CReportFile& f, const Component& c, int function, const char* name,
              const CDrugModel& drug) {
    const double measured = c.observedMz - kProtonMass;
    const std::string peak =
        Format("%d/%d/%d/%.4f/%d/%.4f", c.peakId, function, 0, c.observedMz, c.cluster, measured);
    f.WriteRecord("%d%.4f%.4f%d%s%s%s%s%s%s%d%d%s%s", 0, measured,
                  measured - drug.ParentFormula().MonoisotopicMass(), 1, "0", "0", peak.c_str(),
                  name, "", "", function == 1 ? 1 : 0, 0, "", "");
}

} // namespace

int WriteBulkSample(CReportFile& file, const CDrugModel& drug, const GeneratorOptions& options) {
    const std::vector<Biotransformation> searched = SearchedTransformations(drug, 150);
    CRandom random = CRandom::Derived(options.seed, kBulk);
    const int count = options.bulkMetabolites;
    const double runMinutes = 20.0;

    // The metabolites: the searched products again and again, at spread-out times, each its own
    // peak and cluster.
    std::vector<Component> components;
    components.reserve(static_cast<size_t>(count));
    for (int k = 0; k < count; ++k) {
        const Biotransformation& change = searched[static_cast<size_t>(k) % searched.size()];
        Component c{};
        c.kind = ComponentKind::Unexpected;
        c.neutral = drug.Apply(change);
        c.exactMz = CDrugModel::CationMz(CDrugModel::Protonated(c.neutral));
        c.observedMz = c.exactMz * (1.0 + random.Normal() * 1.2e-6);
        c.retentionTime = 1.0 + (runMinutes - 2.0) * (k + 0.5) / count;
        c.peakId = k + 1;
        c.cluster = k + 1;
        components.push_back(c);
    }

    CReportFile& f = file;
    f.WriteComment("%s", "Bulk sample for the fragment analysis at scale");
    f.WriteSectionHeader("SAMPLE");
    f.WriteBlockStart();
    f.WriteRecord("%s%d", "Sample", 1);
    f.WriteRecord("%s%s", "SampleType", "Analyte");
    f.WriteRecord("%s%s", "SampleID", Format("Bulk %d", count).c_str());
    f.WriteSectionHeader("COMPOUND");
    f.WriteBlockStart();
    f.WriteRecord("%.4f%s%s", drug.ParentFormula().MonoisotopicMass(),
                  drug.ParentFormula().ToString().c_str(), drug.ParentName().c_str());
    f.WriteBlockEnd();

    CSpectrumWriter spectra(file, drug, options.noisePeaks);
    SpectrumHeader header;
    header.processing = "Centroid, lock mass corrected";

    // The low-energy function needs only one centroid spectrum to take part.
    WriteFunctionHeader(f, 1, "TOF MS ES+ (50:1000)", 6.0);
    header.trace = "1: TOF MS ES+";
    header.description = "Scan 1";
    spectra.WriteSurvey(header, 4.0e4, random);
    f.WriteBlockEnd();

    WriteFunctionHeader(f, 2, "TOF MSe ES+ (50:1000)", 30.0);
    header.trace = "2: TOF MSe ES+";
    for (int k = 0; k < count; ++k) {
        const Component& c = components[static_cast<size_t>(k)];
        header.peakId = c.peakId;
        header.clusterId = c.cluster;
        header.time = c.retentionTime;
        header.extent.apexTime = c.retentionTime;
        header.extent.startTime = c.retentionTime - 0.05;
        header.extent.endTime = c.retentionTime + 0.05;
        header.description = Format("Combine (%d)", k + 1);
        spectra.WriteHighEnergy(header, c, searched[static_cast<size_t>(k) % searched.size()],
                                random.Uniform(2.0e4, 2.0e5), random);
    }
    f.WriteBlockEnd();

    f.WriteSectionHeader("UNEXPECTED METABOLITES");
    f.WriteBlockStart();
    f.WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Compound", "Precursor", "Metabolite", "Found",
                   "Formula", "ChroTrace", "Peak", "MetName", "mDa", "PPM", "MSMS", "Confirmed",
                   "Molfile", "Label");
    for (const Component& c : components) {
        WriteRow(f, c, 1, Format("m/z %.4f", c.observedMz).c_str(), drug);
        WriteRow(f, c, 2, "MSe fragments", drug);
    }
    f.WriteBlockEnd();
    f.WriteBlockEnd();
    f.WriteRecord(CString(""));
    return 2 * count;
}

} // namespace quillon::generate
