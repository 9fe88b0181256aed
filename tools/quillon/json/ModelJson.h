#pragma once

// Records as nlohmann::json values, for answers built in memory (a sample's rows, one spectrum):
// the same keys and types as the streamed export, floats as the doubles whose shortest text is
// the stored float's.
//
//     nlohmann::json row = RecordJson([&](RecordSink& sink) { MetaboliteRecord(sink, sample, 3);
//     });

#include "Record.h"

#include <nlohmann/json.hpp>

#include <functional>

namespace quillon::tool {

// The value as JSON: null for Null, NaN and infinities; a float widened by AsShortestDouble.
nlohmann::json ToJson(const FieldValue& value);
nlohmann::json JsonNumber(float value);
nlohmann::json JsonNumber(double value);

// Fills a nlohmann::json object with a record's fields.
class JsonObjectSink : public RecordSink {
public:
    explicit JsonObjectSink(nlohmann::json& object) : m_object(object) {}
    void Put(std::string_view key, const FieldValue& value) override;

private:
    nlohmann::json& m_object;
};

// Collects rows as a JSON array of objects, one object a row.
class JsonRowsSink : public RowSink {
public:
    explicit JsonRowsSink(nlohmann::json& array) : m_array(array) {}
    void BeginRow() override { m_array.push_back(nlohmann::json::object()); }
    void EndRow() override {}
    void Put(std::string_view key, const FieldValue& value) override;

private:
    nlohmann::json& m_array;
};

// The record that fill writes, as one JSON object.
nlohmann::json RecordJson(const std::function<void(RecordSink&)>& fill);

} // namespace quillon::tool
