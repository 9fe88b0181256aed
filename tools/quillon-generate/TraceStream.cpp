#include "TraceStream.h"

#include <algorithm>
#include <cmath>

namespace quillon::generate {

namespace {

constexpr double kFullWidthFactor = 2.354820045; // FWHM of a Gaussian, in deviations
constexpr double kExtentDeviations = 2.5;        // half extent of a listed peak
constexpr int kTimeDecimals = 4;

} // namespace

CTraceStream::CTraceStream(TraceShape shape, uint64_t seed, uint64_t part, uint64_t subPart)
    : m_shape(std::move(shape)), m_writer(CRandom::Derived(seed, part, subPart)) {
    CRandom firstPass = CRandom::Derived(seed, part, subPart);
    double maximum = 0.0;
    for (int i = 0; i < m_shape.points; ++i) {
        maximum = std::max(maximum, Value(i, firstPass));
    }
    m_maxIntensity = RoundFixed(maximum, m_shape.decimals);
    if (m_shape.percentOfMax && m_maxIntensity <= 0.0) {
        m_maxIntensity = 1.0;
    }

    const double step = (m_shape.endTime - m_shape.startTime) / (m_shape.points - 1);
    for (const PeakShape& peak : m_shape.peaks) {
        if (peak.peakId == 0) {
            continue;
        }
        const double from = peak.time - kExtentDeviations * peak.sigma - m_shape.startTime;
        const double to = peak.time + kExtentDeviations * peak.sigma - m_shape.startTime;
        // At least two points on either side of the apex, however finely the peak is sampled.
        const int apex = static_cast<int>(std::lround((peak.time - m_shape.startTime) / step));
        const int first = std::clamp(std::min(static_cast<int>(std::ceil(from / step)), apex - 2),
                                     0, m_shape.points - 2);
        const int last = std::clamp(std::max(static_cast<int>(std::floor(to / step)), apex + 2),
                                    first + 1, m_shape.points - 1);
        m_firstIndex.push_back(first);
        m_lastIndex.push_back(last);
        PeakResult result{};
        result.peakId = peak.peakId;
        result.clusterId = peak.clusterId;
        result.width = RoundFixed(kFullWidthFactor * peak.sigma, kTimeDecimals);
        m_results.push_back(result);
    }
}

double CTraceStream::TimeAt(int index) const {
    return m_shape.startTime + (m_shape.endTime - m_shape.startTime) * index / (m_shape.points - 1);
}

double CTraceStream::Value(int index, CRandom& random) const {
    const double t = TimeAt(index);
    double signal = 0.0;
    for (const PeakShape& peak : m_shape.peaks) {
        const double z = (t - peak.time) / peak.sigma;
        if (z > -8.0 && z < 8.0) {
            signal += peak.height * std::exp(-0.5 * z * z);
        }
    }
    // The baseline rises towards both ends of the gradient.
    const double u = (t - m_shape.startTime) / (m_shape.endTime - m_shape.startTime);
    const double baseline = m_shape.baseline + m_shape.drift * (1.0 - 4.0 * u * (1.0 - u));
    double noise = m_shape.noise * random.QuickNormal();
    if (signal > 1.0) {
        noise += m_shape.shotNoise * std::sqrt(signal) * random.QuickNormal();
    }
    return std::max(0.0, baseline + signal + noise);
}

void CTraceStream::WritePoints(CReportFile& file, int count) {
    const int end = std::min(m_shape.points, m_next + std::max(count, 0));
    for (; m_next < end; ++m_next) {
        const double time = RoundFixed(TimeAt(m_next), kTimeDecimals);
        const double raw = Value(m_next, m_writer);
        double read; // the intensity a reader takes from the line
        if (m_shape.percentOfMax) {
            const double percent = RoundFixed(raw / m_maxIntensity * 100.0, m_shape.decimals);
            file.WritePoint(time, kTimeDecimals, percent, m_shape.decimals);
            // The reader scales in single precision: percent x maximum x 0.01.
            read = static_cast<float>(percent) * static_cast<float>(m_maxIntensity) * 0.01f;
        } else {
            read = RoundFixed(raw, m_shape.decimals);
            file.WritePoint(time, kTimeDecimals, read, m_shape.decimals);
        }
        for (size_t p = 0; p < m_results.size(); ++p) {
            PeakResult& result = m_results[p];
            if (m_next < m_firstIndex[p] || m_next > m_lastIndex[p]) {
                continue;
            }
            if (m_next == m_firstIndex[p]) {
                result.startTime = time;
                result.startIntensity = read;
            } else {
                result.area += 0.5 * (read + m_previousValue) * (time - m_previousTime);
            }
            if (read > result.height || m_next == m_firstIndex[p]) {
                result.height = read;
                result.apexTime = time;
            }
            if (m_next == m_lastIndex[p]) {
                result.endTime = time;
                result.endIntensity = read;
            }
        }
        m_previousTime = time;
        m_previousValue = read;
    }
}

} // namespace quillon::generate
