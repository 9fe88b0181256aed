#pragma once

// The answers of the JSON API under /api/v1/, each a plain function of the served reports and the
// request, so that the server, the snapshot page and the tests share them. Every answer carries
// the report's index and its model version. Errors are thrown as ApiError.
//
//     GET    /api/v1/reports                                   the reports served
//     GET    /api/v1/batch?report=R                            samples, found summary, stability
//     GET    /api/v1/samples/N                                 a sample with its functions, traces
//     GET    /api/v1/samples/N/metabolites?area=...            the filtered metabolite table
//     GET    /api/v1/samples/N/metabolites/I                   one metabolite and where to plot it
//     GET    /api/v1/samples/N/metabolites/I/candidates        its elemental candidates
//     GET    /api/v1/samples/N/metabolites/I/correlation       its MS/MS correlation rows
//     GET    /api/v1/samples/N/traces/T?width=W                a trace, thinned to W pixels
//     GET    /api/v1/samples/N/combined/KIND?width=W           expected, all or unexpected
//     GET    /api/v1/samples/N/spectra/P?width=W               the spectrum of peak P
//     GET    /api/v1/samples/N/peaks                           every integrated peak
//     GET    /api/v1/samples/N/structure                       the parent's molfile
//     POST   /api/v1/samples/N/fragments                       starts the fragment analysis
//     GET    /api/v1/samples/N/fragments                       its progress and result
//     DELETE /api/v1/samples/N/fragments                       cancels it
//
// Reviewing (ReviewApi.h): changes name the version they were made against.
//     GET    /api/v1/review                                    unsaved count, undo, save time
//     PATCH  /api/v1/samples/N/metabolites/I                   {"confirmed": b} or {"label": t}
//     DELETE /api/v1/samples/N/metabolites/I/candidates/K      deletes an elemental candidate
//     POST   /api/v1/undo, /api/v1/redo                        the latest unsaved change
//     POST   /api/v1/save                                      saves over the report
//     POST   /api/v1/save-as  {"name": "new.txt"}              saves as a new file beside it
//     POST   /api/v1/journal/apply, DELETE /api/v1/journal     the previous session's changes

#include "Http.h"
#include "Query.h"
#include "ServedReport.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::tool::serve {

// The reports a server answers for, by index.
using ServedReports = std::vector<std::unique_ptr<ServedReport>>;

// The answer to an API request; path is what follows "/api/v1/" ("samples/3/metabolites").
// Throws ApiError: 404 for an unknown route, sample, metabolite, trace or spectrum; 400 for bad
// numbers or filters; 405 for a method the route does not take. body and ifMatch are those of a
// change (ReviewApi.h).
nlohmann::json ApiAnswer(ServedReports& reports, const std::string& method, std::string_view path,
                         const Query& query, std::string_view body = {},
                         std::string_view ifMatch = {});

} // namespace quillon::tool::serve
