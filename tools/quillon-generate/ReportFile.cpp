#include "ReportFile.h"

#include <cerrno>
#include <cmath>
#include <cstring>

namespace quillon::generate {

namespace {

constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
constexpr size_t kWriteBuffer = 1 << 20;
constexpr int kPointsPerRecord = 256;

} // namespace

CReportFile::CReportFile(const char* path, bool windowsLineEnds)
    : CDelimitFile(path, CFile::modeCreate | CFile::modeWrite), m_windowsLineEnds(windowsLineEnds) {
    std::setvbuf(m_pStream, nullptr, _IOFBF, kWriteBuffer);
}

CReportFile::~CReportFile() {
    if (m_pStream != nullptr) {
        try {
            FlushPoints();
        } catch (const CException&) {
            // The base class closes the file; a write error here has nowhere to go.
        }
    }
}

void CReportFile::WritePoint(double x, int xDecimals, double y, int yDecimals) {
    AppendFixed(m_points, x, xDecimals);
    m_points.push_back('\t');
    AppendFixed(m_points, y, yDecimals);
    m_points.push_back('\n');
    if (++m_pendingPoints == kPointsPerRecord) {
        FlushPoints();
    }
}

void CReportFile::FlushPoints() {
    if (m_pendingPoints == 0) {
        return;
    }
    m_pendingPoints = 0;
    m_points.pop_back(); // the record's own line end follows
    m_record.str().swap(m_points);
    m_points.clear();
    WriteRecord(m_record);
}

void CReportFile::Close() {
    FlushPoints();
    CDelimitFile::Close();
}

void CReportFile::WriteString(const char* text) {
    FlushPoints();
    if (!m_windowsLineEnds || text == nullptr) {
        CDelimitFile::WriteString(text);
        return;
    }
    if (m_pStream == nullptr) {
        ThrowError("write", EBADF);
    }
    for (const char* start = text; *start != '\0';) {
        const char* newline = std::strchr(start, '\n');
        const size_t length = newline ? static_cast<size_t>(newline - start) : std::strlen(start);
        if (std::fwrite(start, 1, length, m_pStream) != length ||
            (newline && std::fwrite("\r\n", 1, 2, m_pStream) != 2)) {
            ThrowError("write", errno);
        }
        start += length + (newline ? 1 : 0);
    }
}

void AppendFixed(std::string& out, double value, int decimals) {
    const double scaled = std::round(std::fabs(value) * kPowersOfTen[decimals]);
    if (!(scaled < 9e18)) {
        out += std::to_string(value); // far outside anything generated; printf's text
        return;
    }
    unsigned long long units = static_cast<unsigned long long>(scaled);
    if (value < 0 && units != 0) {
        out.push_back('-');
    }
    char digits[32];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + units % 10);
        units /= 10;
    } while (units != 0 || count <= decimals);
    for (int i = count - 1; i >= 0; --i) {
        out.push_back(digits[i]);
        if (i == decimals && decimals > 0) {
            out.push_back('.');
        }
    }
}

double RoundFixed(double value, int decimals) {
    const double sign = value < 0 ? -1.0 : 1.0;
    return sign * std::round(std::fabs(value) * kPowersOfTen[decimals]) / kPowersOfTen[decimals];
}

} // namespace quillon::generate
