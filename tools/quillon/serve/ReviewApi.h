#pragma once

// The answers of the review routes (see Api.h). Every change names the model version it was made
// against, in an If-Match header ("7" or "\"7\"") or as "version" in its JSON body; another
// version is refused with 409 and the current version, so that a stale page never changes what it
// has not seen. Each answer carries the review's state ("review"), and an edit, undo or redo also
// the metabolite it changed ("changed": sample, metabolite, its table row and its candidates), so
// that the page needs one request per action.

#include "ServedReport.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <span>
#include <string_view>

namespace quillon::tool::serve {

// What a change request brings besides its path.
struct ChangeRequest {
    std::string_view method;
    std::string_view body;    // JSON, or empty
    std::string_view ifMatch; // the If-Match header, or empty
};

// The answer when segments name a review route, none otherwise. Throws ApiError.
std::optional<nlohmann::json> ReviewAnswer(ServedReport& report, const ChangeRequest& request,
                                           std::span<const std::string_view> segments);

} // namespace quillon::tool::serve
