#include "ReportGenerator.h"

#include "BulkSampleWriter.h"
#include "DrugModel.h"
#include "ReportFile.h"
#include "SamplePlan.h"
#include "SampleWriter.h"
#include "SettingsWriter.h"

namespace quillon::generate {

BatchSummary GenerateBatch(const GeneratorOptions& options) {
    const CDrugModel drug;
    const std::vector<Biotransformation> searched =
        SearchedTransformations(drug, options.metabolites);

    BatchSummary summary;
    summary.neutralLosses =
        WriteNeutralLossSettings(SettingsPath(options), drug, options.windowsLineEnds);
    for (const NeutralLossDefinition& loss : drug.NeutralLosses()) {
        summary.selectedNeutralLosses += loss.selected ? 1 : 0;
    }

    CReportFile file(options.reportPath.c_str(), options.windowsLineEnds);
    const std::string reportName = file.GetFileName().str();
    file.WriteComment("%s", "Metabolite identification results");
    CString batch;
    batch.Format("Parent %s, %d samples, seed %llu", drug.ParentName().c_str(), options.samples,
                 static_cast<unsigned long long>(options.seed));
    file.WriteComment(batch);
    file.WriteRecord(CString(""));

    if (options.bulkMetabolites > 0) {
        WriteBulkSample(file, drug, options);
    }
    CSampleWriter writer(file, drug, searched, options, reportName);
    for (int index = 0; options.bulkMetabolites == 0 && index < options.samples; ++index) {
        const SamplePlan plan = PlanSample(drug, searched, options, index);
        summary.samples.push_back(writer.Write(plan, index));
    }
    file.WriteComment("%s", "End of report");
    file.Close();
    return summary;
}

} // namespace quillon::generate
