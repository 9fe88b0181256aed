#pragma once

#include <quillon/platform/String.h>

namespace quillon {

// The chart settings of traces, owned by the host. A trace keeps an opaque chart parameter text;
// this interface produces the text for a new trace and reads the chart properties out of it. The
// format of the text belongs to the host: the library only stores it and hands it back here.
//
// A host with real chart settings derives from CChartSettings and installs its object with
// SetChartSettings. Without one, CNeutralChartSettings is in force: empty parameter texts, no
// units, no decimal digits, offset 0, scaling 1, no scientific notation.
class CChartSettings {
public:
    virtual ~CChartSettings() = default;

    // The parameter text for the traces of a function with the given description.
    virtual CString GetDefaultCustomChartParams(const char* functionDescription) const = 0;
    // The parameter text for diode-array traces.
    virtual CString GetCustomChartDADParams() const = 0;

    // Chart properties of a trace, read from its parameter text.
    virtual CString GetCustomChartUnits(const char* params) const = 0;
    virtual float GetCustomChartScaling(const char* params) const = 0;
    virtual float GetCustomChartOffset(const char* params) const = 0;
    virtual int GetCustomChartVerticalAxisDecimalDigits(const char* params) const = 0;
    virtual int GetCustomChartHeaderDecimalDigits(const char* params) const = 0;
    virtual int GetCustomChartUseScientificNotation(const char* params) const = 0;
};

// The settings in force when no host supplies its own.
class CNeutralChartSettings final : public CChartSettings {
public:
    CString GetDefaultCustomChartParams(const char*) const override { return CString(); }
    CString GetCustomChartDADParams() const override { return CString(); }
    CString GetCustomChartUnits(const char*) const override { return CString(); }
    float GetCustomChartScaling(const char*) const override { return 1.0f; }
    float GetCustomChartOffset(const char*) const override { return 0.0f; }
    int GetCustomChartVerticalAxisDecimalDigits(const char*) const override { return 0; }
    int GetCustomChartHeaderDecimalDigits(const char*) const override { return 0; }
    int GetCustomChartUseScientificNotation(const char*) const override { return 0; }
};

// The chart settings in force: the host's when it installed some, else the neutral ones.
const CChartSettings& GetChartSettings();

// Installs the host's chart settings; null restores the neutral ones. The object is not owned and
// must stay alive while it is installed.
void SetChartSettings(const CChartSettings* settings);

} // namespace quillon
