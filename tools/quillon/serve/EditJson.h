#pragma once

// A reviewer's edit as JSON, as the journal keeps it and the page sends it:
//     {"kind":"confirm","sample":4,"metabolite":7}
//     {"kind":"label","sample":4,"metabolite":7,"label":"M+O, checked"}
//     {"kind":"delete_elemental","sample":4,"metabolite":7,"candidate":2}
// "unconfirm" like "confirm". Inserting a candidate is how a delete is undone, never an edit of
// its own, so it has no JSON.

#include <quillon/quillon.h>

#include <nlohmann/json.hpp>

namespace quillon::tool::serve {

nlohmann::json EditJson(const CMetaboliteEdit& edit);

// The edit that json describes. Throws ApiError 400 naming what is missing or wrong.
CMetaboliteEdit EditOfJson(const nlohmann::json& json);

} // namespace quillon::tool::serve
