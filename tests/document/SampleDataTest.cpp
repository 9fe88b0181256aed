#include <quillon/document/SampleData.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace quillon;
using quillon::testing::ReadBlock;
using quillon::testing::TextOf;
using quillon::testing::VectorOf;

TEST(SampleDataTest, ReadsEveryHeaderFieldWithItsConversion) {
    // The fields read as the text they hold.
    using TextGetter = void (CSampleData::*)(CString&) const;
    const struct {
        const char* field;
        const char* value;
        TextGetter get;
    } texts[] = {{"FileName", "RUN012", &CSampleData::GetFileName},
                 {"SampleID", "ID-7", &CSampleData::GetID},
                 {"SampleDescription", "liver microsomes", &CSampleData::GetDescription},
                 {"ProcessParameters", "method A", &CSampleData::GetProcessParameters},
                 {"InletFileName", "inlet", &CSampleData::GetInletFileName},
                 {"MSMethodFileName", "ms", &CSampleData::GetMSMethodFileName},
                 {"MSTuneFileName", "tune", &CSampleData::GetMSTuneFileName},
                 {"InjectionVolume", "5.0", &CSampleData::GetInjectionVolume},
                 {"SubjectText", "rat", &CSampleData::GetSubjectText},
                 {"SubjectParent", "parent drug", &CSampleData::GetSubjectParent},
                 {"Date", "01-Feb-2026", &CSampleData::GetDate},
                 {"Time", "10:11:12", &CSampleData::GetTime},
                 {"ProcessingTime", "12 s", &CSampleData::GetProcessingTime},
                 {"JobCode", "J1", &CSampleData::GetJobCode},
                 {"TaskCode", "T1", &CSampleData::GetTaskCode},
                 {"UserName", "user", &CSampleData::GetUserNameA},
                 {"LabName", "lab", &CSampleData::GetLabName},
                 {"Instrument", "instrument", &CSampleData::GetInstrument},
                 {"Conditions", "conditions", &CSampleData::GetCondtions},
                 {"Submitter", "submitter", &CSampleData::GetSubmitter}};
    std::string block = "{\nSample\t12\t99\nWell\t0\nPlate\tANSI-96\nSampleType\tQC\n"
                        "SubjectTime\t30.5min\nConcentration\t2.5e-1\nLockSprayEnabled\t0\n"
                        "MUXEnabled\t3\nMasses\t1\t2\t3\nInfo\tfirst\nInfo\tsecond\n"
                        "Warning\ta\nWarning\tb\nEleParameters\tx\nUnknown\tignored\n";
    for (const auto& each : texts)
        block += std::string(each.field) + "\t" + each.value + "\n";
    CSampleData sample;
    EXPECT_EQ(ReadBlock(sample, block + "}\n"), "AFTER");
    CString byName;
    for (const auto& each : texts) {
        EXPECT_EQ(TextOf(sample, each.get), each.value) << each.field;
        EXPECT_TRUE(sample.GetHeaderField(each.field, byName) && byName == each.value)
            << each.field;
    }
    // By name, the converted fields read as the sample keeps them; unkept names are refused.
    for (const auto& [field, kept] : {std::pair{"Sample", "12"},
                                      {"Well", "1"},
                                      {"SampleType", "Control"},
                                      {"Concentration", "0.25"},
                                      {"MUXEnabled", "1"},
                                      {"Info", "first\nsecond"}})
        EXPECT_TRUE(sample.GetHeaderField(field, byName) && byName == kept) << field;
    EXPECT_FALSE(sample.GetHeaderField("Masses", byName));
    EXPECT_FALSE(sample.GetHeaderField("Unknown", byName));

    // The fields with a conversion.
    EXPECT_EQ(sample.GetNumber(), 12);
    EXPECT_EQ(sample.GetWell(), 1);
    CString plate;
    EXPECT_EQ(sample.GetPlateDescription(plate), 1);
    EXPECT_EQ(plate, "ANSI-96");
    EXPECT_EQ(TextOf(sample, &CSampleData::GetType), "Control");
    EXPECT_TRUE(sample.IsControl());
    EXPECT_FLOAT_EQ(sample.GetSubjectTime(), 30.5f);
    EXPECT_DOUBLE_EQ(sample.GetConcentration(), 0.25);
    EXPECT_FALSE(sample.GetLockSprayEnabled());
    EXPECT_TRUE(sample.GetMUXEnabled());
    EXPECT_EQ(TextOf(sample, &CSampleData::GetProcessingInfo), "first\nsecond");
    EXPECT_EQ(TextOf(sample, &CSampleData::GetProcessingWarning), "a\nb");

    // Values that do not convert read 0, an empty well is the first, and only the exact spelling
    // of a type makes it.
    CSampleData odd;
    ReadBlock(odd, "{\nSample\tabc\nWell\nSampleType\tqc\nConcentration\tnone\n}\n");
    EXPECT_EQ(odd.GetNumber(), 0);
    CString well;
    odd.GetWell(well);
    EXPECT_EQ(well, "1");
    EXPECT_EQ(TextOf(odd, &CSampleData::GetType), "qc");
    EXPECT_FALSE(odd.IsControl());
    EXPECT_EQ(odd.GetConcentration(), 0.0);
    ReadBlock(odd, "{\nSampleType\tAnalyte\n}\n");
    EXPECT_TRUE(odd.IsAnalyte());
}

TEST(SampleDataTest, ReadsItsSectionsAndSkipsOthersWithTheirBlocks) {
    CSampleData sample;
    const CString next = ReadBlock(
        sample, "{\nSample\t4\n"
                "[COMPOUND]\n{\n;Mass\tFormula\tName\n151.0633\tC8H9NO2\tParacetamol\n194.08\n}\n"
                "[METABOLITE COMPOUNDS]\n{\n999\tX\tnot a compound\n}\n"
                "[NEUTRAL LOSS COMPOUNDS]\n{\n18.01\tH2O\tWater\n}\n"
                "[SOMETHING NEW]\n{\nSample\t77\n[NESTED]\n{\nSample\t78\n}\n}\n"
                "[PARAMETERS]\n{\nPeakFindMode\tAuto\n}\n"
                "[MASS DEFECT FILTER]\n{\n151.0633\nLower limit\t-0.05\n"
                "Upper limit\t0.04\textra\nnot a number\n}\n"
                "[MASS DEFECT FILTER]\n{\n300.5\n}\n"
                "SampleID\tafter sections\n}\n");
    EXPECT_EQ(next, "AFTER");
    EXPECT_EQ(sample.GetNumber(), 4);
    EXPECT_EQ(TextOf(sample, &CSampleData::GetID), "after sections");

    ASSERT_EQ(sample.GetCompoundCount(), 2);
    CString formula, name;
    sample.GetCompound(0)->GetFormula(formula);
    sample.GetCompound(0)->GetName(name);
    EXPECT_DOUBLE_EQ(sample.GetCompound(0)->GetMass(), 151.0633);
    EXPECT_EQ(formula + "|" + name, "C8H9NO2|Paracetamol");
    sample.GetCompound()->GetFormula(formula);
    EXPECT_DOUBLE_EQ(sample.GetCompound()->GetMass(), 194.08);
    EXPECT_EQ(formula, "");
    EXPECT_EQ(sample.GetParameters()->PeakFindMode(), "Auto");

    EXPECT_EQ(VectorOf(*sample.GetMDFMasses()), (std::vector<double>{151.0633, 0.0, 300.5}));
    EXPECT_EQ(VectorOf(*sample.GetMDFParams()), (std::vector<double>{-0.05, 0.04}));
}
