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
//
// Values: null for Null and for NaN or infinities; floats and doubles in their shortest text, with
// ".0" when that text is a whole number so that a reader keeps them floats (100.0f -> 100.0,
// 0.1 -> 0.1); texts quoted, with quotes, backslashes and control characters escaped ("a\tb").

#include "Record.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon::tool {

class Output;

class JsonWriter final : public RowSink {
public:
    explicit JsonWriter(Output& output);

    void BeginObject() { Open('{', false); }
    void EndObject() { Close('}'); }
    void BeginArray() { Open('[', true); }
    void EndArray() { Close(']'); }
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
    void Open(char bracket, bool array);
    void Close(char bracket);
    // Writes at out what comes before a value: a comma after an earlier value of the same object
    // or array, a line break when the value starts a line of its own. Returns the new end.
    char* Separate(char* out);
    // Room for at least bytes more characters at the end of the pending text, which is handed to
    // the output first when it is full; Commit(end) then keeps what was written up to end.
    char* Room(size_t bytes);
    void Commit(char* end) { m_used = static_cast<size_t>(end - m_text.get()); }

    Output& m_output;
    std::unique_ptr<char[]> m_text; // the pending text, m_used of m_capacity characters
    size_t m_used = 0;
    size_t m_capacity = 0;
    struct Level {
        bool first;   // nothing written in it yet
        bool ownLine; // each value starts a line
    };
    std::vector<Level> m_levels; // the open objects and arrays, outermost first
    bool m_afterKey = false;
};

} // namespace quillon::tool
