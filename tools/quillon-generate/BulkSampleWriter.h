#pragma once

#include "DrugModel.h"
#include "GeneratorOptions.h"
#include "ReportFile.h"

namespace quillon::generate {

// Writes the one sample of a bulk report (the --bulk-metabolites option): as many unexpected
// metabolites as asked for, each found in the low-energy function and paired with its
// high-energy partner ("MSe fragments", same peak and cluster) whose product-ion spectrum the
// high-energy function holds. No traces are written: the sample is made for the fragment
// analysis at scale, not for display. Returns the number of metabolite rows written.
int WriteBulkSample(CReportFile& file, const CDrugModel& drug, const GeneratorOptions& options);

} // namespace quillon::generate
