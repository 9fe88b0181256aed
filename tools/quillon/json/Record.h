#pragma once

// A record of the model as typed fields, so that one description of each record kind serves JSON
// (in memory or streamed), CSV and the aligned table alike.

#include <quillon/platform/String.h>

#include <span>
#include <string_view>
#include <variant>

namespace quillon::tool {

// No value: JSON null, an empty CSV or table cell.
struct Null {};

// One field's value as the model stores it. A float stays a float so that it prints in the
// shortest text that reads back to the stored float (260.7292f as 260.7292, not 260.72919); a
// double prints in the shortest text that reads back to the double. A list is an array of numbers.
using FieldValue = std::variant<Null, bool, long long, float, double, std::string_view,
                                std::span<const double>, std::span<const int>>;

// Receives a record's fields in order. Every record of a kind has the same keys in the same order.
class RecordSink {
public:
    virtual ~RecordSink() = default;

    virtual void Put(std::string_view key, const FieldValue& value) = 0;

    // Typed entry points, so that an int never becomes a bool or a text a bool by conversion.
    void Field(std::string_view key, bool value) { Put(key, value); }
    void Field(std::string_view key, int value) { Put(key, static_cast<long long>(value)); }
    void Field(std::string_view key, long long value) { Put(key, value); }
    void Field(std::string_view key, float value) { Put(key, value); }
    void Field(std::string_view key, double value) { Put(key, value); }
    void Field(std::string_view key, std::string_view text) { Put(key, text); }
    void Field(std::string_view key, const char* text) { Put(key, std::string_view(text)); }
    void Field(std::string_view key, const CString& text) { Put(key, text.view()); }
    void Field(std::string_view key, std::span<const double> list) { Put(key, list); }
    void Field(std::string_view key, std::span<const int> list) { Put(key, list); }
    void FieldNull(std::string_view key) { Put(key, Null{}); }
    // The value when present is true, else null.
    template <class Number>
    void FieldIf(std::string_view key, bool present, Number value) {
        if (present)
            Field(key, value);
        else
            FieldNull(key);
    }
};

// Receives rows of records: BeginRow, the record's fields, EndRow.
class RowSink : public RecordSink {
public:
    virtual void BeginRow() = 0;
    virtual void EndRow() = 0;
};

} // namespace quillon::tool
