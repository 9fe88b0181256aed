#pragma once

// The whole model of a report as tables of records, walked in the order of the report: samples,
// functions, traces, trace_points, peaks, spectra, spectrum_points, metabolites, elemental,
// correlation. Rows are handed out one at a time, so a caller can write them as they come.

#include "Record.h"

#include <quillon/quillon.h>

#include <array>
#include <string_view>

namespace quillon::tool {

enum class ModelTable {
    kSamples,
    kFunctions,
    kTraces,
    kTracePoints,
    kPeaks,
    kSpectra,
    kSpectrumPoints,
    kMetabolites,
    kElemental,
    kCorrelation
};

// Every table, with its name ("trace_points", ...).
constexpr std::array<std::pair<ModelTable, std::string_view>, 10> kModelTables = {{
    {ModelTable::kSamples, "samples"},
    {ModelTable::kFunctions, "functions"},
    {ModelTable::kTraces, "traces"},
    {ModelTable::kTracePoints, "trace_points"},
    {ModelTable::kPeaks, "peaks"},
    {ModelTable::kSpectra, "spectra"},
    {ModelTable::kSpectrumPoints, "spectrum_points"},
    {ModelTable::kMetabolites, "metabolites"},
    {ModelTable::kElemental, "elemental"},
    {ModelTable::kCorrelation, "correlation"},
}};

// Hands every row of table, over all samples, to rows.
void WriteModelTable(ModelTable table, CSamples& samples, RowSink& rows);

} // namespace quillon::tool
