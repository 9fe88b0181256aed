#pragma once

// The browser page as one self-contained file: the page's script and style inlined, and the
// answers the page would ask the server for stored in it under their API paths, so that it opens
// from disk with no server and no network. Traces are thinned to a fixed width; every spectrum,
// every metabolite's candidates and correlation rows and each sample's fragment analysis are
// included.

#include "Api.h"

#include <nlohmann/json.hpp>

#include <string>

namespace quillon::tool::serve {

// The width the snapshot's traces are thinned to.
constexpr int kSnapshotWidth = 1200;

// The answers keyed by API path ("reports", "batch?report=0", "samples/3?report=0", ...), as the
// page asks for them. Runs each sample's fragment analysis.
nlohmann::json SnapshotAnswers(ServedReports& reports);

// The page with the answers inlined.
std::string SnapshotPage(const nlohmann::json& answers);

} // namespace quillon::tool::serve
