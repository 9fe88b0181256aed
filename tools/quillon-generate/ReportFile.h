#pragma once

#include <quillon/file/DelimitFile.h>

#include <cstdio>
#include <string>

namespace quillon::generate {

// printf into a string, for a record's text: Format("%.4f", 319.10303) is "319.1030". Longer
// results are cut at 511 bytes.
std::string Format(const char* format, auto... values) {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

// The report file as the generator writes it: a CDelimitFile opened for writing with a large
// buffer, which can turn every line end into carriage return and line feed, and which writes the
// bulk number lines (trace and spectrum points) through a reused line buffer.
class CReportFile : public CDelimitFile {
public:
    // Creates (or truncates) the file; throws CFileException when it cannot.
    CReportFile(const char* path, bool windowsLineEnds);

    // Flushes the points not yet written.
    ~CReportFile() override;

    // Writes the line "x<tab>y" with the given decimals, formatted without printf for speed.
    // Consecutive point lines are gathered and written as one record of many lines.
    void WritePoint(double x, int xDecimals, double y, int yDecimals);

    // Every write passes here: gathered point lines go out first, so lines keep their order.
    void WriteString(const char* text) override;
    void Close() override;

private:
    void FlushPoints();

    bool m_windowsLineEnds;
    CString m_record;
    std::string m_points; // gathered point lines, each ended by a line feed
    int m_pendingPoints = 0;
};

// Appends a number with a fixed number of decimals (0 to 9), rounded half away from zero, as the
// text a reader converts back with atof.
void AppendFixed(std::string& out, double value, int decimals);

// The value that AppendFixed writes, as a number (what a reader of the file gets back).
double RoundFixed(double value, int decimals);

} // namespace quillon::generate
