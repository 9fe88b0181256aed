#pragma once

// JSON text written as it is produced, for documents too large to hold: records go out one by one
// and only the nesting is remembered.
//
//     JsonWriter json(output);
//     json.BeginObject();
//     json.Key("samples");
//     json.BeginArray();
//     json.BeginRow(); SampleRecord(json, sample); json.EndRow();   // {"sample":1,...}
//     json.EndArray();
//     json.EndObject();

#include "Record.h"

#include <string>
#include <vector>

namespace quillon::tool {

class Output;

class JsonWriter : public RowSink {
public:
    explicit JsonWriter(Output& output);

    void BeginObject();
    void EndObject();
    void BeginArray();
    void EndArray();
    // The key of the next value inside an object.
    void Key(std::string_view key);
    void Value(const FieldValue& value);
    // A record: an object on a line of its own, its fields given through the RecordSink interface.
    void BeginRow() override { BeginObject(); }
    void EndRow() override { EndObject(); }

    // RecordSink: a key and its value inside the current object.
    void Put(std::string_view key, const FieldValue& value) override;

    // Writes what is pending to the output (the output itself is closed by its owner).
    void Flush();

private:
    void BeforeValue();

    Output& m_output;
    std::string m_text;
    struct Level {
        bool first; // nothing written in it yet
        bool array;
    };
    std::vector<Level> m_levels; // the open objects and arrays, outermost first
    bool m_afterKey = false;
};

// Appends value as JSON text: null for Null and for NaN or infinities; floats and doubles in their
// shortest text, with ".0" when that text is a whole number so that a reader keeps them floats.
void AppendJson(std::string& out, const FieldValue& value);
// Appends text as a JSON string with its quotes, escaping quotes, backslashes and control
// characters.
void AppendJsonString(std::string& out, std::string_view text);

} // namespace quillon::tool
