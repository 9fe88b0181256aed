#include "EditJson.h"

#include "Query.h"

#include <algorithm>
#include <array>
#include <climits>

namespace quillon::tool::serve {

namespace {

constexpr std::array<std::pair<CMetaboliteEdit::Kind, const char*>, 4> kKinds = {{
    {CMetaboliteEdit::Confirm, "confirm"},
    {CMetaboliteEdit::Unconfirm, "unconfirm"},
    {CMetaboliteEdit::SetLabel, "label"},
    {CMetaboliteEdit::DeleteElemental, "delete_elemental"},
}};

int WholeNumber(const nlohmann::json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_number_integer() || *found < INT_MIN || *found > INT_MAX)
        throw ApiError(400, std::string("an edit needs \"") + name + "\" as a whole number");
    return found->get<int>();
}

} // namespace

nlohmann::json EditJson(const CMetaboliteEdit& edit) {
    nlohmann::json json = {
        {"kind", nullptr}, {"sample", edit.sample}, {"metabolite", edit.metabolite}};
    for (const auto& [kind, name] : kKinds)
        if (kind == edit.kind)
            json["kind"] = name;
    if (edit.kind == CMetaboliteEdit::SetLabel)
        json["label"] = edit.label.str();
    if (edit.kind == CMetaboliteEdit::DeleteElemental)
        json["candidate"] = edit.candidate;
    return json;
}

CMetaboliteEdit EditOfJson(const nlohmann::json& json) {
    if (!json.is_object() || !json.contains("kind") || !json.at("kind").is_string())
        throw ApiError(400, "an edit needs a \"kind\"");
    CMetaboliteEdit edit;
    const std::string kind = json.at("kind");
    const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                    [&](const auto& entry) { return kind == entry.second; });
    if (found == kKinds.end())
        throw ApiError(400, "no edit is called \"" + kind + "\"");
    edit.kind = found->first;
    edit.sample = WholeNumber(json, "sample");
    edit.metabolite = WholeNumber(json, "metabolite");
    if (edit.kind == CMetaboliteEdit::SetLabel) {
        if (!json.contains("label") || !json.at("label").is_string())
            throw ApiError(400, "a label edit needs \"label\" as a text");
        edit.label = CString(json.at("label").get<std::string>());
    }
    if (edit.kind == CMetaboliteEdit::DeleteElemental)
        edit.candidate = WholeNumber(json, "candidate");
    return edit;
}

} // namespace quillon::tool::serve
