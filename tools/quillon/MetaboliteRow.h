#pragma once

// The metabolite table as the browser shows it, shared by the metabolites subcommand and the web
// server (both filter it with the library's CResultFilter).

#include "json/Record.h"

#include <quillon/quillon.h>

namespace quillon::tool {

// The metabolite's record followed by the browser's derived columns: trace_name (the trace
// column's text), area_percent (of its group), found_percent (of the sample's found area),
// is_ratio (area over the internal standard's, as the browser rounds it); null when absent.
void MetaboliteRow(RecordSink& rows, CSampleData& sample, int index);

} // namespace quillon::tool
