#pragma once

#include <quillon/quillon.h>

#include <sstream>
#include <string>

namespace quillon::testing {

// Everything a report puts into a collection, as text: every sample's header fields, compounds,
// parameters, mass-defect filter, metabolites with their elemental candidates and correlation
// lists, functions with their chromatograms (points and peaks) and spectra (points, masses,
// results), and analog channels. Left out: byte positions in the file (they depend on the line
// ends) and the text of a metabolite's molfile reference (it names the file it was read from).
class ModelDump {
public:
    static std::string Of(CSamples& samples) {
        ModelDump dump;
        for (int i = 0; i < samples.GetSamplesCount(); ++i)
            dump.Sample(*samples.GetSample(i));
        return dump.m_out.str();
    }

private:
    template <class Getter>
    static std::string Text(Getter getter) {
        CString text;
        getter(text);
        return text.str();
    }

    template <class Array>
    void Numbers(const char* name, const Array& values) {
        m_out << name;
        for (int i = 0; i < values.GetSize(); ++i)
            m_out << ' ' << values[i];
        m_out << '\n';
    }

    void Sample(CSampleData& s) {
        m_out << "sample " << s.GetNumber() << " entry " << s.GetFileEntry() << " duplicate "
              << s.IsDuplicate() << " control "
              << (s.GetControlSample() ? s.GetControlSample()->GetNumber() : -1) << '\n';
        CString well;
        CString plate;
        s.GetWell(well);
        s.GetPlateDescription(plate);
        m_out << Text([&](CString& t) { s.GetFileName(t); }) << '|' << well.str() << '|'
              << plate.str() << '|' << Text([&](CString& t) { s.GetType(t); }) << '|'
              << Text([&](CString& t) { s.GetID(t); }) << '|'
              << Text([&](CString& t) { s.GetDescription(t); }) << '|' << s.GetProcessParameters()
              << '|' << Text([&](CString& t) { s.GetInletFileName(t); }) << '|'
              << Text([&](CString& t) { s.GetMSMethodFileName(t); }) << '|'
              << Text([&](CString& t) { s.GetMSTuneFileName(t); }) << '|'
              << Text([&](CString& t) { s.GetInjectionVolume(t); }) << '|'
              << Text([&](CString& t) { s.GetSubjectTime(t); }) << '|' << s.GetSubjectText() << '|'
              << s.GetSubjectParent() << '|' << s.GetConcentration() << '|'
              << Text([&](CString& t) { s.GetDate(t); }) << '|'
              << Text([&](CString& t) { s.GetTime(t); }) << '|' << s.GetLockSprayEnabled()
              << s.GetMUXEnabled() << s.GetElementalEnabled() << s.GetMoleculeEnabled() << '|'
              << Text([&](CString& t) { s.GetProcessingTime(t); }) << '|'
              << Text([&](CString& t) { s.GetProcessingInfo(t); }) << '|'
              << Text([&](CString& t) { s.GetProcessingWarning(t); }) << '|'
              << Text([&](CString& t) { s.GetJobCode(t); }) << '|'
              << Text([&](CString& t) { s.GetTaskCode(t); }) << '|'
              << Text([&](CString& t) { s.GetUserNameA(t); }) << '|'
              << Text([&](CString& t) { s.GetLabName(t); }) << '|' << s.GetInstrument() << '|'
              << Text([&](CString& t) { s.GetCondtions(t); }) << '|'
              << Text([&](CString& t) { s.GetSubmitter(t); }) << '|' << s.GetMoleculeDimensions()
              << ' ' << s.GetHighEnergyExpectedCount() << ' ' << s.GetHighEnergyUnexpectedCount()
              << ' ' << s.GetInternalStandardEntry() << ' ' << s.GetInternalStandardArea() << ' '
              << s.GetMSMSCorrelationFirstEntry() << ' ' << s.GetNumParentMasses() << '\n';
        for (int i = 0; i < s.GetCompoundCount(); ++i) {
            const CCompoundData& compound = *s.GetCompound(i);
            m_out << "compound " << compound.GetMass() << '|'
                  << Text([&](CString& t) { compound.GetFormula(t); }) << '|'
                  << Text([&](CString& t) { compound.GetName(t); }) << '|' << compound.IsSelected()
                  << '\n';
        }
        const CParametersData& parameters = *s.GetParameters();
        m_out << "parameters " << parameters.PeakFindMode().str() << '|'
              << parameters.PeakFindWindow() << '|' << parameters.SpectrumThresholdMode().str()
              << '|' << parameters.SpectrumThreshold() << '|' << parameters.PeakFindThreshold()
              << '|' << parameters.SigPeaks() << '\n';
        Numbers("positive adducts", parameters.PositiveAdducts());
        Numbers("negative adducts", parameters.NegativeAdducts());
        Numbers("mdf masses", *s.GetMDFMasses());
        Numbers("mdf parameters", *s.GetMDFParams());
        m_out << "metabolites " << s.GetExpectedMetaboliteCount() << ' '
              << s.GetUnexpectedMetaboliteCount() << ' ' << s.GetMSMSCorrelationMetaboliteCount()
              << '\n';
        for (int i = 0; i < s.GetMetaboliteCount(); ++i)
            Metabolite(*s.GetMetabolite(i));
        for (int f = 0; f < s.GetFunctionCount(); ++f)
            Function(*s.GetFunction(f));
        for (int a = 0; a < s.GetAnalogCount(); ++a)
            Chromatogram(*s.GetAnalogChannel(a));
    }

    void Metabolite(const CMetaboliteData& m) {
        m_out << "metabolite " << m.IsExpected() << m.IsUnexpected() << m.IsMSMSCorrelation() << ' '
              << m.GetCompound() << ' ' << m.GetPrecursor() << ' ' << m.GetMetabolite() << ' '
              << m.GetMzFound() << ' ' << m.GetMolecularMass() << ' ' << m.GetPeakNum() << ' '
              << m.GetPeakClusterNum() << ' ' << m.GetFunctionNum() << ' ' << m.GetTraceNum() << ' '
              << m.GetFound() << m.GetConfirmed() << m.GetMSMS() << m.IsMSMSParent() << '|'
              << m.GetMetName() << '|' << m.GetFormula() << '|' << m.GetUserLabel() << '|'
              << Text([&](CString& t) { m.GetChroTraceList(t); }) << '|'
              << m.GetMoleculeReference().IsEmpty() << '\n';
        CElementalResultsData candidate;
        for (int i = 0; m.GetElementalResults(i, candidate); ++i)
            m_out << "elemental " << candidate.GetMass() << ' ' << candidate.GetCalcMass() << ' '
                  << candidate.GetmDa() << ' ' << candidate.GetPPM() << ' ' << candidate.GetDBE()
                  << ' ' << candidate.GetiFIT() << ' ' << candidate.GetiFITnorm() << '|'
                  << candidate.GetFormula().str() << '|' << candidate.GetMonoMassFormula().str()
                  << '\n';
        for (int entry = 0; entry < m.GetCorrelationEntryCount(); ++entry) {
            CString masses;
            CString losses;
            CString common;
            m.GetCorrelationMasses(entry, masses);
            m.GetNeutralLossesFromAllParentSpectrumMassesAt(entry, losses);
            m.GetCommonNeutralLossesAt(entry, common);
            m_out << "correlation " << entry << '|' << masses.str() << '|' << losses.str() << '|'
                  << common.str() << '\n';
        }
    }

    void Function(CFunctionData& f) {
        double cycle = 0;
        double delay = 0;
        f.GetScanCycleTime(cycle);
        f.GetInterScanDelay(delay);
        m_out << "function " << f.GetNumber() << '|' << Text([&](CString& t) { f.GetIonMode(t); })
              << '|' << Text([&](CString& t) { f.GetType(t); }) << '|'
              << Text([&](CString& t) { f.GetDescription(t); }) << '|' << f.GetConeVoltage() << '|'
              << f.GetCollisionEnergy() << '|' << cycle << '|' << delay << '|' << f.GetTraceType()
              << '\n';
        for (int c = 0; c < f.GetNumChromatogram(); ++c)
            Chromatogram(*f.GetChromatogram(c));
        for (const bool filtered : {false, true}) {
            for (int i = 0; i < f.GetNumSpectra(filtered); ++i)
                Spectrum(*f.GetSpectrum(i, filtered));
        }
    }

    void Chromatogram(const CChromatoData& c) {
        float maximum = 0;
        c.GetMaxIntensity(maximum);
        m_out << "chromatogram " << c.GetDescription().str() << '|' << c.GetProcDesc().str() << '|'
              << maximum << '|' << c.GetTraceNumber() << '|' << c.GetTraceNumberInFunction() << '|'
              << c.GetFunctionNumber() << '|' << c.GetTraceType() << '|'
              << c.GetCustomChartParams().str() << '\n';
        CPeakData point;
        for (int i = 0; c.GetPeak(i, point); ++i)
            m_out << ' ' << point.GetMass() << ':' << point.GetIntensity();
        m_out << '\n';
        for (int i = 0; i < c.GetNumberOfListPeaks(); ++i) {
            const CChromatogramPeak& p = *c.GetChromatPeakData(i);
            m_out << "peak " << p.GetPeakID() << ' ' << p.GetPeakClusterID() << ' '
                  << p.GetPeakRef() << ' ' << p.GetTime() << ' ' << p.GetAreaAbs() << ' '
                  << p.GetRelativeArea() << ' ' << p.GetAreaPercentTotal() << ' ' << p.GetHeight()
                  << ' ' << p.GetWidth() << ' ' << Extent(*p.GetChromatPeakData()) << '\n';
        }
    }

    static std::string Extent(const CPeakList& extent) {
        std::ostringstream out = Precise();
        out << extent.GetStartTime() << ' ' << extent.GetEndTime() << ' '
            << extent.GetStartIntensity() << ' ' << extent.GetEndIntensity() << ' '
            << extent.GetFound() << ' ' << extent.GetID();
        return out.str();
    }

    void Spectrum(const CSpectrumData& s) {
        m_out << "spectrum " << s.GetProcess() << ' ' << s.GetTraceNumber() << ' ' << s.GetBPI()
              << ' ' << s.GetBPM() << ' ' << s.GetTIC() << '|'
              << Text([&](CString& t) { s.GetTrace(t); }) << '|'
              << Text([&](CString& t) { s.GetState(t); }) << '|'
              << Text([&](CString& t) { s.GetDesc(t); }) << '|'
              << Text([&](CString& t) { s.GetProcDesc(t); }) << '|' << s.GetContinuum() << ' '
              << s.GetPeakID() << ' ' << s.GetPeakClusterID() << ' ' << s.GetPeakRef() << ' '
              << s.GetControlPeakID() << ' ' << s.GetTime() << ' '
              << Extent(*s.GetChromatPeakData()) << '\n';
        CPeakData point;
        for (int i = 0; s.GetPeak(i, point); ++i)
            m_out << ' ' << point.GetMass() << ':' << point.GetIntensity();
        m_out << '\n';
        for (const CMassesData& masses : *s.MassesGet())
            m_out << "masses " << masses.GetMono() << ' ' << masses.GetExpected() << ' '
                  << masses.GetObserved() << ' ' << masses.GetPercentage() << ' '
                  << masses.IsIsotope() << '\n';
        CResultsData results;
        for (int i = 0; s.GetResults(i, results); ++i)
            m_out << "results " << results.GetMono() << ' ' << results.GetFound() << ' '
                  << results.GetPercentage() << ' ' << results.GetPurity() << '\n';
    }

    std::ostringstream m_out = Precise();

    static std::ostringstream Precise() {
        std::ostringstream out;
        out.precision(17);
        return out;
    }
};

} // namespace quillon::testing
