#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/ProcessInfo.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// Reads the report at inPath into samples, lets prepare edit them, then writes the report from
// inPath to outPath (which may be the same file) and returns the written file's text.
template <class Prepare>
std::string ReadAndWrite(CSamples& samples, const std::string& inPath, const std::string& outPath,
                         Prepare prepare) {
    EXPECT_EQ(samples.Read(inPath.c_str()), 1);
    prepare(samples);
    {
        CDelimitFile in(inPath.c_str(), CFile::modeRead);
        const UINT outFlags =
            inPath == outPath ? UINT(CFile::modeWrite) : UINT(CFile::modeWrite | CFile::modeCreate);
        CDelimitFile out(outPath.c_str(), outFlags);
        EXPECT_EQ(samples.Write(&in, &out), 1);
    }
    return quillon::testing::ReadBytes(outPath);
}

// Writes the text to "in.txt", reads it into samples, lets prepare edit them, and returns the
// text written from it to "out.txt" beside it.
template <class Prepare>
std::string CopyReport(CSamples& samples, const std::string& text, Prepare prepare) {
    TempFile input("in.txt");
    input.Write(text);
    return ReadAndWrite(samples, input.Path(), (input.Folder() / "out.txt").string(), prepare);
}

// Samples 5 (with a function), 3 (with a compound) and 7, in that order in the file.
const std::string kReport = ";Report of batch 7\n\n"
                            "[SAMPLE]\n{\nSample\t5\nSampleType\tAnalyte\n\n"
                            "[FUNCTION]\n{\nFunction\t1\n[CHROMATOGRAM]\n{\n1.0\t200\n}\n}\n}\n"
                            "[SAMPLE]\n{\nSample\t3\n[COMPOUND]\n{\n151.06\tC8H9NO2\tParent\n}\n}\n"
                            "[SAMPLE]\n{\nSample\t7\n}\n";

} // namespace

TEST(SamplesWriteTest, DuplicateSamplesAreDroppedFromFileAndMemory) {
    CSamples samples;
    const std::string written = CopyReport(samples, kReport, [](CSamples& collection) {
        // Held as 3, 5, 7; the 5 is the first sample of the file.
        collection.GetSample(1)->IsDuplicate(true);
        collection.GetSample(0)->SetType("Control");
        collection.GetSample(0)->Empty(); // no reference mass: every later sample is linked
        collection.SetControlSamples();
        ASSERT_EQ(collection.GetSample(2)->GetControlSample(), collection.GetSample(0));
    });

    const std::vector<std::string> lines = Lines(written);
    const std::vector<std::string> expected = Lines(";Report of batch 7\n"
                                                    "[SAMPLE]\n{\nSample\t3\n"
                                                    "[COMPOUND]\n{\n151.06\tC8H9NO2\tParent\n}\n}\n"
                                                    "[SAMPLE]\n{\nSample\t7\n}\n");
    ASSERT_EQ(lines.size(), expected.size() + 2);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + expected.size()), expected);
    // Each closing comment names the program and the time, in fields of their own.
    const std::string program = " \t" + std::string(GetModuleFilePath().c_str()) + " \t";
    const std::string& comment = lines[expected.size()];
    EXPECT_EQ(comment.rfind(";Metabolite sections updated by" + program, 0), 0u);
    EXPECT_GT(comment.size(), program.size() + 33); // the time follows
    EXPECT_EQ(comment.back(), ' ');
    EXPECT_EQ(lines[expected.size() + 1].rfind(";Duplicate samples removed by" + program, 0), 0u);

    ASSERT_EQ(samples.GetSamplesCount(), 2);
    EXPECT_EQ(samples.GetSample(0)->GetNumber(), 3);
    EXPECT_EQ(samples.GetSample(1)->GetNumber(), 7);
    EXPECT_EQ(samples.GetSample(1)->GetControlSample(), samples.GetSample(0));
}

TEST(SamplesWriteTest, AFileRewrittenInPlaceLosesItsStaleTail) {
    TempFile report("report.txt");
    report.Write(kReport);
    CSamples samples;
    const std::string written =
        ReadAndWrite(samples, report.Path(), report.Path(),
                     [](CSamples& collection) { collection.GetSample(2)->IsDuplicate(true); });

    const std::vector<std::string> lines = Lines(written);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2].rfind(";Metabolite sections updated by", 0), 0u);
    EXPECT_EQ(lines.back().rfind(";Duplicate samples removed by", 0), 0u);
    EXPECT_EQ(written.find("Sample\t7"), std::string::npos);
    EXPECT_EQ(written.back(), '\n');
    EXPECT_EQ(samples.GetSamplesCount(), 2);
}

TEST(SamplesWriteTest, TextWrittenBeforeTheCopyIsKept) {
    TempFile input("in.txt");
    input.Write(kReport);
    TempFile output("out.txt");
    CSamples samples;
    ASSERT_EQ(samples.Read(input.c_str()), 1);
    samples.GetSample(0)->IsDuplicate(true);
    {
        CDelimitFile in(input.c_str(), CFile::modeRead);
        CDelimitFile out(output.c_str(), CFile::modeWrite | CFile::modeCreate);
        out.WriteComment(CString("written before"));
        EXPECT_EQ(samples.Write(&in, &out), 1);
    }
    const std::vector<std::string> lines = Lines(output.Read());
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[0], ";written before");
    EXPECT_EQ(lines[1], ";Report of batch 7");
    EXPECT_EQ(lines.back().rfind(";Duplicate samples removed by", 0), 0u);
}

TEST(SamplesWriteTest, MolfileListIsCopiedWithItsParentNameRewritten) {
    const std::string report = "[SAMPLE]\n{\nSample\t1\n[MOLFILE LIST]\n{\n"
                               "Reference\tin.txt_Parent and in.txt_Parent\n"
                               "[MOLFILE]\n{\nin.txt_Parent\n\n"
                               "  2  1  0  0  0  0  0  0  0  0999 V2000\n}\n"
                               "Reference\tin.txt_Parent\n}\n}\n";
    CSamples samples;
    const std::string written = CopyReport(samples, report, [](CSamples&) {});

    // The list is copied verbatim, empty lines included, up to the first lone "}"; the lines
    // after it are copied as any others.
    const std::string expected = "[SAMPLE]\n{\nSample\t1\n[MOLFILE LIST]\n{\n"
                                 "Reference\tout.txt_Parent and in.txt_Parent\n"
                                 "[MOLFILE]\n{\nout.txt_Parent\n\n"
                                 "  2  1  0  0  0  0  0  0  0  0999 V2000\n}\n"
                                 "Reference\tin.txt_Parent\n}\n}\n";
    EXPECT_EQ(written.substr(0, expected.size()), expected);

    // Written under the same name, nothing is rewritten.
    TempFile sameName("in.txt");
    sameName.Write(report);
    TempFile target("in.txt");
    CSamples again;
    const std::string unchanged =
        ReadAndWrite(again, sameName.Path(), target.Path(), [](CSamples&) {});
    EXPECT_EQ(unchanged.substr(0, report.size()), report);
}

TEST(SamplesWriteTest, SamplesTheCollectionDoesNotHoldAreNotWritten) {
    CSamples samples;
    const std::string written = CopyReport(samples, kReport, [](CSamples& collection) {
        collection.DeleteAll();
        CSampleData only;
        only.SetNumber(5);
        collection.AddSample(only);
    });
    // At each further "[SAMPLE]" the input skips to the next header, which it consumes; the
    // lines after that are copied again.
    const std::vector<std::string> lines = Lines(written);
    const std::vector<std::string> expected =
        Lines(";Report of batch 7\n[SAMPLE]\n{\nSample\t5\nSampleType\tAnalyte\n"
              "[FUNCTION]\n{\nFunction\t1\n[CHROMATOGRAM]\n{\n1.0\t200\n}\n}\n}\n"
              "{\n151.06\tC8H9NO2\tParent\n}\n}\n");
    ASSERT_EQ(lines.size(), expected.size() + 1);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.end() - 1), expected);

    EXPECT_EQ(samples.Write(nullptr, nullptr), 0);
}

TEST(SamplesWriteTest, SectionsBeforeTheFirstSampleBelongToTheSampleOfEntryMinusOne) {
    const std::string noted = "[NOTE]\nnote line\n" + kReport;

    // Normally the first sample (held first, here the 3) stands in for the lines before the
    // first "[SAMPLE]": they are copied.
    CSamples kept;
    const std::string copied = CopyReport(kept, noted, [](CSamples&) {});
    EXPECT_EQ(copied.rfind("[NOTE]\nnote line\n;Report of batch 7\n", 0), 0u);

    // A duplicate whose file entry is -1 claims them: the header and the line after it go.
    CSamples dropped;
    const std::string written = CopyReport(dropped, noted, [](CSamples& collection) {
        collection.GetSample(2)->SetFileEntry(-1);
        collection.GetSample(2)->IsDuplicate(true);
    });
    EXPECT_EQ(written.rfind(";Report of batch 7\n[SAMPLE]\n", 0), 0u);
    EXPECT_EQ(written.find("note line"), std::string::npos);
    EXPECT_EQ(dropped.GetSamplesCount(), 2);
}
