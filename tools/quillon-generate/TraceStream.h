#pragma once

#include "Random.h"
#include "ReportFile.h"

#include <cstdint>
#include <vector>

namespace quillon::generate {

// A Gaussian chromatographic peak on a trace.
struct PeakShape {
    double time;
    double sigma;
    double height;
    int peakId; // 0: the peak is in the signal but not listed as a "PEAK"
    int clusterId;
};

// How a trace looks: its time axis, baseline, noise and peaks, and how its intensities are
// written (decimals, and whether as percentages of the maximum intensity).
struct TraceShape {
    int points;
    double startTime;
    double endTime;
    double baseline;
    double drift;      // amplitude of a slow baseline wave
    double noise;      // deviation of the baseline noise
    double shotNoise;  // noise deviation per square root of signal
    int decimals;      // of the written intensities
    bool percentOfMax; // intensities written in percent of the maximum intensity
    std::vector<PeakShape> peaks;
};

// What a reader finds for a listed peak when it integrates the trace as written.
struct PeakResult {
    int peakId;
    int clusterId;
    double apexTime;
    double startTime;
    double endTime;
    double startIntensity;
    double endIntensity;
    double height;
    double width; // full width at half height of the Gaussian, minutes
    double area;  // trapezoidal integral of the written points over the extent
};

// Writes a trace's points in one or more pieces with constant memory. The noise comes from a
// generator of its own, so the trace is computed twice: once to know its maximum intensity (which
// the file states before the points) and once while writing, integrating the listed peaks from
// exactly the values written.
class CTraceStream {
public:
    CTraceStream(TraceShape shape, uint64_t seed, uint64_t part, uint64_t subPart);

    // The maximum intensity as the file states it.
    double MaxIntensity() const { return m_maxIntensity; }
    int PointsLeft() const { return m_shape.points - m_next; }

    // Writes the next count points (fewer when the trace ends).
    void WritePoints(CReportFile& file, int count);

    // The listed peaks, complete once every point has been written.
    const std::vector<PeakResult>& Peaks() const { return m_results; }

private:
    double TimeAt(int index) const;
    // The trace's value at a point; draws the point's noise from the generator.
    double Value(int index, CRandom& random) const;

    TraceShape m_shape;
    CRandom m_writer; // replays the noise of the first pass
    double m_maxIntensity = 0.0;
    int m_next = 0;
    std::vector<int> m_firstIndex; // extent of each listed peak, in point indices
    std::vector<int> m_lastIndex;
    std::vector<PeakResult> m_results;
    double m_previousTime = 0.0;
    double m_previousValue = 0.0;
};

} // namespace quillon::generate
