#pragma once

// Builds the text of a one-sample report for the fragment analysis tests: functions with
// centroid spectra, a compound, and metabolite rows with their peak identifiers; and reads it.

#include "TempFile.h"

#include <quillon/document/Samples.h>
#include <quillon/platform/HostHooks.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace quillon::testing {

struct SpectrumPoint {
    double mass;
    double intensity;
};

// One metabolite row: the peak identifier fields, the name and the masses.
struct MetaboliteRow {
    std::string name;
    int peak = 1;
    int function = 1;
    int cluster = 1;
    double mzFound = 0.0;
    double molecularMass = 0.0;
    double precursor = 0.0;
    double shift = 0.0; // the "Metabolite" column: mass shift from the parent
    bool found = true;
};

class FragmentReport {
public:
    void Compound(double mass, const std::string& formula, const std::string& name) {
        m_compounds += Format("%.4f\t%s\t%s\n", mass, formula.c_str(), name.c_str());
    }
    // Starts a function; the spectra added next belong to it.
    void Function(int number, double collisionEnergy, int coneVoltage = 0,
                  const std::string& ionMode = "ES+", const std::string& type = "MS",
                  const std::string& description = "TOF MS") {
        CloseFunction();
        m_functions += Format("[FUNCTION]\n{\nFunction\t%d\nIonMode\t%s\nType\t%s\n", number,
                              ionMode.c_str(), type.c_str());
        m_functions += Format("Description\t%s\nConeVoltage\t%d\nCollisionEnergy\t%.1f\n",
                              description.c_str(), coneVoltage, collisionEnergy);
        m_open = true;
    }
    void Spectrum(int peakId, int cluster, const std::vector<SpectrumPoint>& points,
                  bool continuum = false, double bpi = 1000.0) {
        m_functions += Format("[SPECTRUM]\n{\nBPI\t%.1f\nContinuum\t%s\nPeak ID\t%d\n", bpi,
                              continuum ? "TRUE" : "FALSE", peakId);
        m_functions += Format("Peak Cluster ID\t%d\n[MS]\n{\n", cluster);
        for (const SpectrumPoint& p : points)
            m_functions += Format("%.6f\t%.4f\n", p.mass, p.intensity);
        m_functions += "}\n}\n";
    }
    void Unexpected(const MetaboliteRow& row) { m_unexpected += Row(row); }

    std::string Text() {
        CloseFunction();
        std::string text = "[SAMPLE]\n{\nSample\t1\nSampleType\tAnalyte\n";
        if (!m_compounds.empty())
            text += "[COMPOUND]\n{\n" + m_compounds + "}\n";
        text += m_functions;
        if (!m_unexpected.empty())
            text += "[UNEXPECTED METABOLITES]\n{\n" + m_unexpected + "}\n";
        return text + "}\n";
    }

private:
    template <typename... Args>
    static std::string Format(const char* format, Args... args) {
        char buffer[512];
        std::snprintf(buffer, sizeof buffer, format, args...);
        return buffer;
    }
    static std::string Row(const MetaboliteRow& r) {
        return Format("0\t%.4f\t%.4f\t%d\t0\t0\t%d/%d/0/%.6f/%d/%.6f\t%s\t\t\t1\t0\t\t\n",
                      r.precursor, r.shift, r.found ? 1 : 0, r.peak, r.function, r.mzFound,
                      r.cluster, r.molecularMass, r.name.c_str());
    }
    void CloseFunction() {
        if (m_open)
            m_functions += "}\n";
        m_open = false;
    }

    std::string m_compounds;
    std::string m_functions;
    std::string m_unexpected;
    bool m_open = false;
};

// A report read from text, and the neutral-loss settings the analysis reads, in one folder
// that the working-directory hook points at while the object lives.
class LoadedReport {
public:
    explicit LoadedReport(const std::string& text, const std::string& losses = "")
        : m_file("report.txt") {
        m_file.Write(text);
        if (!losses.empty()) {
            std::ofstream(m_file.Folder() / "Tarnwick.ini") << "[Hollbeck Neutral Losses]\n"
                                                            << losses;
        }
        m_saved = GetHostHooks();
        HostHooks hooks = m_saved;
        const std::string folder = m_file.Folder().string();
        hooks.workingDirectory = [folder] { return CString(folder); };
        SetHostHooks(hooks);
        m_samples.Read(m_file.c_str());
    }
    LoadedReport(const LoadedReport&) = delete;
    LoadedReport& operator=(const LoadedReport&) = delete;
    ~LoadedReport() { SetHostHooks(m_saved); }

    CSampleData& Sample() { return *m_samples.GetSample(0); }
    CSamples& Samples() { return m_samples; }

private:
    TempFile m_file;
    HostHooks m_saved;
    CSamples m_samples;
};

} // namespace quillon::testing
