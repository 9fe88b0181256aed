#pragma once

#include "DrugModel.h"

#include <string>

namespace quillon::generate {

// Writes the host settings file with the batch's neutral-loss list: section "Hollbeck Neutral
// Losses", keys "Loss 1", "Loss 2", ... with values "mass,selected,name length,formula length,
// name,formula". Returns the number of entries; throws CFileException when the file cannot be
// written.
int WriteNeutralLossSettings(const std::string& path, const CDrugModel& drug, bool windowsLineEnds);

} // namespace quillon::generate
