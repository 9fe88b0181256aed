#include <quillon/companions/BroEntry.h>
#include <quillon/document/Samples.h>

#include "support/Collect.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using quillon::testing::TempFile;
using quillon::testing::TextOf;

const char kEntry[] = "Sample\t99\n" // before any section: dropped
                      "[SAMPLE]\n"
                      "Sample\t3\n"
                      "SampleType\tQC\n"
                      "Well\tA7\n"
                      "Info\tfirst\n"
                      "Info\tsecond\n"
                      "Concentration\tx\n"
                      "LockSprayEnabled\t2\n"
                      "Unknown\tvalue\n"
                      "[NOT A SECTION]\n"
                      "Well\t9\n" // under an unknown section: dropped
                      "[MS]\n"
                      "100\t5\n" // no function to store into
                      "[SAMPLE]\n"
                      "{\n"
                      "SampleID\tsecond sample\n"
                      "}\n";

TEST(BroEntryTest, EntryFilesFillTheTargetCollection) {
    TempFile file;
    file.Write(kEntry);

    CBroEntry unattached;
    EXPECT_EQ(unattached.Read(file.c_str()), 1); // read through without effect
    EXPECT_EQ(unattached.Read((file.Path() + ".missing").c_str()), 0);

    CSamples samples;
    CBroEntry entry;
    entry.SetSamples(&samples);
    EXPECT_EQ(entry.Read(file.c_str()), 1);
    ASSERT_EQ(samples.GetSamplesCount(), 2);
    const CSampleData& first = *samples.GetSample(0);
    EXPECT_EQ(first.GetNumber(), 3);
    CString text;
    first.GetWell(text);
    EXPECT_EQ(text, "A7");
    EXPECT_EQ(TextOf(first, &CSampleData::GetProcessingInfo), "first\nsecond");
    EXPECT_EQ(first.GetFunctionCount(), 0);
    EXPECT_EQ(TextOf(*samples.GetSample(1), &CSampleData::GetID), "second sample");

    int id = 0;
    EXPECT_EQ(entry.ParseParagraph("sample", id), 0); // names are case-sensitive
    EXPECT_EQ(id, -1);
    EXPECT_EQ(entry.ParseFunctionField("InterScanDelay", id), 1);
    EXPECT_EQ(id, 7);
}

TEST(BroEntryTest, MassesAndPointsGoToTheLastSpectrum) {
    CSamples samples;
    CBroEntry entry;
    const auto fields = [](std::initializer_list<const char*> values) {
        CStringArray array;
        for (const char* value : values)
            array.Add(value);
        return array;
    };
    EXPECT_EQ(entry.NewParagraph(0), 0); // no target collection
    entry.SetSamples(&samples);
    EXPECT_EQ(entry.NewMassesField(fields({"1", "2", "3", "4"})), 0); // no sample yet
    ASSERT_EQ(entry.NewParagraph(0), 1);
    ASSERT_EQ(entry.NewParagraph(1), 1);
    EXPECT_EQ(entry.ParagraphEntry(1, fields({"Process", "4"})), 0); // no spectrum yet
    CFunctionData* function = samples.GetSample()->GetFunction();
    ASSERT_NE(function, nullptr);
    function->AddSpectrum();
    EXPECT_EQ(entry.ParagraphEntry(1, fields({"Process", "4"})), 1);
    EXPECT_EQ(entry.ParagraphEntry(1, fields({"IonMode", "ES+"})), 1);
    EXPECT_EQ(entry.ParagraphEntry(2, fields({"1", "2", "3"})), 0);
    EXPECT_EQ(entry.ParagraphEntry(2, fields({"318.1", "318.2", "318.3", "45"})), 1);
    EXPECT_EQ(entry.ParagraphEntry(3, fields({"100"})), 0);
    EXPECT_EQ(entry.ParagraphEntry(3, fields({"100.5", "2000"})), 1);

    const CSpectrumData& spectrum = *function->GetSpectrum();
    EXPECT_EQ(spectrum.GetProcess(), 4);
    ASSERT_EQ(spectrum.MassesGet()->GetSize(), 1);
    EXPECT_DOUBLE_EQ((*spectrum.MassesGet())[0].GetPercentage(), 45.0);
    CPeakData point;
    ASSERT_TRUE(spectrum.GetPeak(0, point));
    EXPECT_DOUBLE_EQ(point.GetMass(), 100.5);
    EXPECT_DOUBLE_EQ(point.GetIntensity(), 2000.0);
    EXPECT_EQ(TextOf(*function, &CFunctionData::GetIonMode), "ES+");
}

TEST(BroEntryTest, GarbageReadsAsFarAsItGoes) {
    const char garbage[] =
        "[SAMPLE]\n\xff\xfe\t\t\n[\n]\n}\n}\n{\n\0\0Sample\t5\n[MASSES]\n1\t2\t3\t4\n"
        "Info\tlast"; // the last line has no line end
    TempFile file;
    file.Write(std::string(garbage, sizeof(garbage) - 1));
    CSamples samples;
    CBroEntry entry;
    entry.SetSamples(&samples);
    EXPECT_EQ(entry.Read(file.c_str()), 1);
    ASSERT_EQ(samples.GetSamplesCount(), 1);
    EXPECT_EQ(samples.GetSample()->GetNumber(), 0);
    CString info;
    samples.GetSample()->GetProcessingInfo(info);
    EXPECT_EQ(info, ""); // under "[MASSES]", not the sample header
}

} // namespace
} // namespace quillon
