#pragma once

#include <quillon/platform/Object.h>

namespace quillon {

// The extent of a peak: where it starts and ends in time, the intensities at both ends, a found
// flag and an identifier. A chromatogram peak and a spectrum each own one.
class CPeakList : public CObject {
    QUILLON_DECLARE_DYNAMIC(CPeakList)

public:
    CPeakList() = default;
    CPeakList(double startTime, double endTime, double startIntensity, double endIntensity,
              int found = 0, int id = -1)
        : m_StartTime(startTime), m_EndTime(endTime), m_StartIntensity(startIntensity),
          m_EndIntensity(endIntensity), m_Found(found), m_ID(id) {}

    double GetStartTime() const { return m_StartTime; }
    void SetStartTime(double time) { m_StartTime = time; }
    double GetEndTime() const { return m_EndTime; }
    void SetEndTime(double time) { m_EndTime = time; }
    double GetStartIntensity() const { return m_StartIntensity; }
    void SetStartIntensity(double intensity) { m_StartIntensity = intensity; }
    double GetEndIntensity() const { return m_EndIntensity; }
    void SetEndIntensity(double intensity) { m_EndIntensity = intensity; }
    int GetFound() const { return m_Found; }
    void SetFound(int found) { m_Found = found; }
    int GetID() const { return m_ID; }
    void SetID(int id) { m_ID = id; }

private:
    double m_StartTime = 0.0;
    double m_EndTime = 0.0;
    double m_StartIntensity = 0.0;
    double m_EndIntensity = 0.0;
    int m_Found = 0;
    int m_ID = -1;
};

} // namespace quillon
