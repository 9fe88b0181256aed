#pragma once

// The answers under /api/v1/samples/N/ (see Api.h).

#include "Query.h"
#include "ServedReport.h"

#include <nlohmann/json.hpp>

#include <span>
#include <string>
#include <string_view>

namespace quillon::tool::serve {

// The metabolite at index as a row of the metabolite table, with "edited" when an unsaved change
// touches it.
nlohmann::json MetaboliteRowJson(CSampleData& sample, int index, const ReportReview& review);

// The elemental candidates of the metabolite at index, as rows.
nlohmann::json CandidatesJson(CSampleData& sample, int index);

// segments: the sample's number and what follows it ("3", "traces", "2").
nlohmann::json SampleAnswer(ServedReport& report, const std::string& method,
                            std::span<const std::string_view> segments, const Query& query);

} // namespace quillon::tool::serve
