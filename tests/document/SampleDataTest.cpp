#include <quillon/document/SampleData.h>
#include <quillon/file/DelimitFile.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

// Reads the given sample block (the lines after the "[SAMPLE]" header) into the sample and returns
// the first line the sample's reader left unread.
CString ReadBlock(CSampleData& sample, const std::string& block) {
    TempFile file;
    file.Write(block + "AFTER\n");
    CDelimitFile input(file.c_str(), CFile::modeRead);
    EXPECT_EQ(sample.Read(&input), 1);
    CString next;
    input.ReadString(next);
    return next;
}

template <class Getter>
CString Text(const CSampleData& sample, Getter getter) {
    CString text;
    (sample.*getter)(text);
    return text;
}

std::vector<double> Values(const CDoubleArray& array) {
    return std::vector<double>(array.begin(), array.end());
}

} // namespace

TEST(SampleDataTest, DefaultSample) {
    const CSampleData sample;
    EXPECT_EQ(sample.GetNumber(), 0);
    EXPECT_TRUE(sample.GetLockSprayEnabled());
    EXPECT_FALSE(sample.GetMUXEnabled());
    EXPECT_STREQ(sample.GetSubjectParent(), "Unknown");
    EXPECT_EQ(sample.GetMoleculeDimensions(), -1);
    EXPECT_EQ(sample.GetInternalStandardEntry(), -1);
    EXPECT_EQ(sample.CurrentFragment(), -1);
    EXPECT_EQ(sample.CurrentNeutralLoss(), -1);
    EXPECT_EQ(sample.GetControlSample(), nullptr);
    EXPECT_FALSE(sample.IsDuplicate());
    EXPECT_FALSE(sample.MSMSModeDisplay());
    EXPECT_EQ(sample.GetCompoundCount(), 0);
    EXPECT_STREQ(sample.GetRuntimeClass()->m_lpszClassName, "CSampleData");
}

TEST(SampleDataTest, ReadsEveryHeaderFieldWithItsConversion) {
    CSampleData sample;
    const CString next = ReadBlock(sample, "{\n"
                                           "Sample\t12\t99\n"
                                           "FileName\tRUN012\n"
                                           "Well\t0\n"
                                           "Plate\tANSI-96\n"
                                           "SampleType\tQC\n"
                                           "SampleID\tID-7\n"
                                           "SampleDescription\tliver microsomes\n"
                                           "ProcessParameters\tmethod A\n"
                                           "InletFileName\tinlet\n"
                                           "MSMethodFileName\tms\n"
                                           "MSTuneFileName\ttune\n"
                                           "InjectionVolume\t5.0\n"
                                           "SubjectTime\t30.5min\n"
                                           "SubjectText\trat\n"
                                           "SubjectParent\tparent drug\n"
                                           "Concentration\t2.5e-1\n"
                                           "Date\t01-Feb-2026\n"
                                           "Time\t10:11:12\n"
                                           "LockSprayEnabled\t0\n"
                                           "MUXEnabled\t3\n"
                                           "Masses\t1\t2\t3\n"
                                           "ProcessingTime\t12 s\n"
                                           "Info\tfirst\n"
                                           "Info\tsecond\n"
                                           "Warning\ta\n"
                                           "Warning\tb\n"
                                           "EleParameters\tx\n"
                                           "JobCode\tJ1\n"
                                           "TaskCode\tT1\n"
                                           "UserName\tuser\n"
                                           "LabName\tlab\n"
                                           "Instrument\tinstrument\n"
                                           "Conditions\tconditions\n"
                                           "Submitter\tsubmitter\n"
                                           "Unknown\tignored\n"
                                           "}\n");
    EXPECT_EQ(next, "AFTER");
    EXPECT_EQ(sample.GetNumber(), 12);
    EXPECT_EQ(Text(sample, &CSampleData::GetFileName), "RUN012");
    CString well;
    EXPECT_EQ(sample.GetWell(well), 1);
    EXPECT_EQ(well, "1");
    EXPECT_EQ(sample.GetWell(), 1);
    CString plate;
    EXPECT_EQ(sample.GetPlateDescription(plate), 1);
    EXPECT_EQ(plate, "ANSI-96");
    EXPECT_EQ(Text(sample, &CSampleData::GetType), "Control");
    EXPECT_TRUE(sample.IsControl());
    EXPECT_FALSE(sample.IsAnalyte());
    EXPECT_EQ(Text(sample, &CSampleData::GetID), "ID-7");
    EXPECT_EQ(Text(sample, &CSampleData::GetDescription), "liver microsomes");
    EXPECT_STREQ(sample.GetProcessParameters(), "method A");
    EXPECT_EQ(Text(sample, &CSampleData::GetInletFileName), "inlet");
    EXPECT_EQ(Text(sample, &CSampleData::GetMSMethodFileName), "ms");
    EXPECT_EQ(Text(sample, &CSampleData::GetMSTuneFileName), "tune");
    EXPECT_EQ(Text(sample, &CSampleData::GetInjectionVolume), "5.0");
    EXPECT_FLOAT_EQ(sample.GetSubjectTime(), 30.5f);
    EXPECT_STREQ(sample.GetSubjectText(), "rat");
    EXPECT_STREQ(sample.GetSubjectParent(), "parent drug");
    EXPECT_DOUBLE_EQ(sample.GetConcentration(), 0.25);
    EXPECT_EQ(Text(sample, &CSampleData::GetDate), "01-Feb-2026");
    EXPECT_EQ(Text(sample, &CSampleData::GetTime), "10:11:12");
    EXPECT_FALSE(sample.GetLockSprayEnabled());
    EXPECT_TRUE(sample.GetMUXEnabled());
    EXPECT_EQ(Text(sample, &CSampleData::GetProcessingTime), "12 s");
    EXPECT_EQ(Text(sample, &CSampleData::GetProcessingInfo), "first\nsecond");
    EXPECT_EQ(Text(sample, &CSampleData::GetProcessingWarning), "a\nb");
    EXPECT_EQ(Text(sample, &CSampleData::GetJobCode), "J1");
    EXPECT_EQ(Text(sample, &CSampleData::GetTaskCode), "T1");
    EXPECT_EQ(Text(sample, &CSampleData::GetUserNameA), "user");
    EXPECT_EQ(Text(sample, &CSampleData::GetLabName), "lab");
    EXPECT_STREQ(sample.GetInstrument(), "instrument");
    EXPECT_EQ(Text(sample, &CSampleData::GetCondtions), "conditions");
    EXPECT_EQ(Text(sample, &CSampleData::GetSubmitter), "submitter");
}

TEST(SampleDataTest, FieldValueEdgeCases) {
    CSampleData sample;
    ReadBlock(sample, "{\nSample\tabc\nWell\nSampleType\tqc\nConcentration\tnone\n}\n");
    EXPECT_EQ(sample.GetNumber(), 0);
    CString well;
    sample.GetWell(well);
    EXPECT_EQ(well, "1"); // an empty well is the first well
    EXPECT_EQ(Text(sample, &CSampleData::GetType), "qc");
    EXPECT_FALSE(sample.IsControl());
    EXPECT_EQ(sample.GetConcentration(), 0.0);

    CSampleData other;
    ReadBlock(other, "{\nWell\t23\nSampleType\tAnalyte\n}\n");
    EXPECT_EQ(other.GetWell(), 23);
    EXPECT_TRUE(other.IsAnalyte());
}

TEST(SampleDataTest, ReadsItsSectionsAndSkipsOthersWithTheirBlocks) {
    CSampleData sample;
    const CString next = ReadBlock(sample, "{\n"
                                           "Sample\t4\n"
                                           "[COMPOUND]\n"
                                           "{\n"
                                           ";Mass\tFormula\tName\n"
                                           "151.0633\tC8H9NO2\tParacetamol\n"
                                           "194.08\n"
                                           "}\n"
                                           "[METABOLITE COMPOUNDS]\n"
                                           "{\n"
                                           "999\tX\tnot a compound\n"
                                           "}\n"
                                           "[NEUTRAL LOSS COMPOUNDS]\n"
                                           "{\n"
                                           "18.01\tH2O\tWater\n"
                                           "}\n"
                                           "[SOMETHING NEW]\n"
                                           "{\n"
                                           "Sample\t77\n"
                                           "[NESTED]\n"
                                           "{\n"
                                           "Sample\t78\n"
                                           "}\n"
                                           "}\n"
                                           "[PARAMETERS]\n"
                                           "{\n"
                                           "PeakFindMode\tAuto\n"
                                           "PositiveAdducts\t1.007\t22.989\n"
                                           "SigPeaks\t7.9\n"
                                           "}\n"
                                           "[MASS DEFECT FILTER]\n"
                                           "{\n"
                                           "151.0633\n"
                                           "Lower limit\t-0.05\n"
                                           "Upper limit\t0.04\textra\n"
                                           "not a number\n"
                                           "}\n"
                                           "[MASS DEFECT FILTER]\n"
                                           "{\n"
                                           "300.5\n"
                                           "}\n"
                                           "SampleID\tafter sections\n"
                                           "}\n");
    EXPECT_EQ(next, "AFTER");
    EXPECT_EQ(sample.GetNumber(), 4);
    EXPECT_EQ(Text(sample, &CSampleData::GetID), "after sections");

    ASSERT_EQ(sample.GetCompoundCount(), 2);
    CString formula, name;
    sample.GetCompound(0)->GetFormula(formula);
    sample.GetCompound(0)->GetName(name);
    EXPECT_DOUBLE_EQ(sample.GetCompound(0)->GetMass(), 151.0633);
    EXPECT_EQ(formula, "C8H9NO2");
    EXPECT_EQ(name, "Paracetamol");
    sample.GetCompound()->GetFormula(formula);
    sample.GetCompound()->GetName(name);
    EXPECT_DOUBLE_EQ(sample.GetCompound()->GetMass(), 194.08);
    EXPECT_EQ(formula, "");
    EXPECT_EQ(name, "");
    EXPECT_EQ(sample.GetCompound(-1), nullptr);
    EXPECT_EQ(sample.GetCompound(sample.GetCompoundCount()), nullptr);

    EXPECT_EQ(sample.GetParameters()->PeakFindMode(), "Auto");
    EXPECT_EQ(sample.GetParameters()->PositiveAdducts().GetSize(), 2);
    EXPECT_EQ(sample.GetParameters()->SigPeaks(), 7);

    EXPECT_EQ(Values(*sample.GetMDFMasses()), (std::vector<double>{151.0633, 0.0, 300.5}));
    EXPECT_EQ(Values(*sample.GetMDFParams()), (std::vector<double>{-0.05, 0.04}));
}

TEST(SampleDataTest, AnAppendedSectionAddsToTheSample) {
    CSampleData sample;
    ReadBlock(sample, "{\nSample\t3\nWarning\tw1\n[COMPOUND]\n{\n100\n}\n}\n");
    ReadBlock(sample, "{\nSampleID\tlate\nWarning\tw2\n[COMPOUND]\n{\n200\n}\n}\n");
    EXPECT_EQ(sample.GetNumber(), 3);
    EXPECT_EQ(Text(sample, &CSampleData::GetID), "late");
    EXPECT_EQ(Text(sample, &CSampleData::GetProcessingWarning), "w1\nw2");
    EXPECT_EQ(sample.GetCompoundCount(), 2);
}

TEST(SampleDataTest, WriteWritesNothing) {
    TempFile file;
    file.Write("unchanged\n");
    {
        CDelimitFile output(file.c_str(),
                            CFile::modeWrite | CFile::modeCreate | CFile::modeNoTruncate);
        const CSampleData sample;
        EXPECT_EQ(sample.Write(&output), 1);
        EXPECT_EQ(sample.Write(nullptr), 0);
    }
    EXPECT_EQ(file.Read(), "unchanged\n");
}
