#include "ModelJson.h"

#include "NumberText.h"

#include <cmath>

namespace quillon::tool {

nlohmann::json JsonNumber(float value) {
    return std::isfinite(value) ? nlohmann::json(AsShortestDouble(value)) : nlohmann::json();
}

nlohmann::json JsonNumber(double value) {
    return std::isfinite(value) ? nlohmann::json(AsShortestDouble(value)) : nlohmann::json();
}

nlohmann::json ToJson(const FieldValue& value) {
    struct Visitor {
        nlohmann::json operator()(Null) const { return nullptr; }
        nlohmann::json operator()(bool flag) const { return flag; }
        nlohmann::json operator()(long long number) const { return number; }
        nlohmann::json operator()(float number) const { return JsonNumber(number); }
        nlohmann::json operator()(double number) const { return JsonNumber(number); }
        nlohmann::json operator()(std::string_view text) const { return std::string(text); }
        nlohmann::json operator()(std::span<const double> list) const {
            nlohmann::json array = nlohmann::json::array();
            for (const double number : list)
                array.push_back(JsonNumber(number));
            return array;
        }
        nlohmann::json operator()(std::span<const int> list) const {
            return nlohmann::json(std::vector<int>(list.begin(), list.end()));
        }
    };
    return std::visit(Visitor{}, value);
}

void JsonObjectSink::Put(std::string_view key, const FieldValue& value) {
    m_object[std::string(key)] = ToJson(value);
}

void JsonRowsSink::Put(std::string_view key, const FieldValue& value) {
    m_array.back()[std::string(key)] = ToJson(value);
}

nlohmann::json RecordJson(const std::function<void(RecordSink&)>& fill) {
    nlohmann::json object = nlohmann::json::object();
    JsonObjectSink sink(object);
    fill(sink);
    return object;
}

} // namespace quillon::tool
