#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/FileException.h>
#include <quillon/platform/HostHooks.h>

#include "support/Collect.h"
#include "support/HostRecorder.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::HostRecorder;
using quillon::testing::SampleNumbers;
using quillon::testing::TempFile;
using quillon::testing::TextOf;

namespace {

std::string SampleSection(int number, const std::string& extra = "") {
    return "[SAMPLE]\n{\nSample\t" + std::to_string(number) + "\n" + extra + "}\n";
}

// A report file that fails on the line "FAIL FILE" with a file exception, on "FAIL PLAIN" with a
// library exception that carries no text, and on "FAIL OTHER" with an exception that is not one
// of the library's.
class FailingFile : public CDelimitFile {
public:
    using CDelimitFile::CDelimitFile;
    bool ReadLineView(std::string_view& line) override {
        const bool read = CDelimitFile::ReadLineView(line);
        if (line == "FAIL FILE")
            throw CFileException(CFileException::hardIO, 5, "report.txt", "read");
        if (line == "FAIL PLAIN")
            throw CException();
        if (line == "FAIL OTHER")
            throw 42;
        return read;
    }
};

} // namespace

// Samples are held in number order and know their order in the file and the bytes of their
// sections (from the start of the header line), whatever the line ends.
TEST(SamplesTest, ReadKeepsNumberOrderFileEntriesAndSectionPositions) {
    for (const std::string lineEnd : {"\n", "\r\n"}) {
        SCOPED_TRACE(lineEnd.size());
        const auto withEnds = [&lineEnd](const std::string& text) {
            std::string ended;
            for (char ch : text)
                ended += ch == '\n' ? lineEnd : std::string(1, ch);
            return ended;
        };
        const std::string comment = withEnds(";report\n");
        const std::string first = withEnds(SampleSection(5, "SampleType\tAnalyte\n"));
        const std::string second = withEnds(SampleSection(3));
        const std::string third = withEnds(SampleSection(5, "SampleID\tsecond five\n"));
        TempFile file;
        file.Write(comment + first + second + third);

        CSamples samples;
        ASSERT_EQ(samples.Read(file.c_str()), 1);
        EXPECT_EQ(SampleNumbers(samples), (std::vector<int>{3, 5, 5}));
        EXPECT_EQ(samples.GetSample(0)->GetFileEntry(), 1);
        EXPECT_EQ(samples.GetSample(1)->GetFileEntry(), 0);
        EXPECT_EQ(samples.GetSample(2)->GetFileEntry(), 2);
        EXPECT_EQ(TextOf(*samples.GetSample(2), &CSampleData::GetID), "second five");

        const unsigned long secondStart = comment.size() + first.size();
        EXPECT_EQ(samples.GetSample(1)->GetFilePosStart(), comment.size());
        EXPECT_EQ(samples.GetSample(1)->GetFilePosEnd(), secondStart);
        EXPECT_EQ(samples.GetSample(0)->GetFilePosStart(), secondStart);
        EXPECT_EQ(samples.GetSample(0)->GetFilePosEnd(), secondStart + second.size());
        EXPECT_EQ(samples.GetSample(2)->GetFilePosEnd(), file.Read().size());
    }
}

TEST(SamplesTest, AppendedSectionsGoToTheHighestNumberedSample) {
    TempFile file;
    file.Write("[SAMPLE_APPEND]\n{\nSample\t8\nWarning\tearly\n}\n" + SampleSection(2) +
               "[SAMPLE_APPEND]\n{\nWarning\tlate\n[COMPOUND]\n{\n300.1\n}\n}\n");
    CSamples samples;
    ASSERT_EQ(samples.Read(file.c_str()), 1);
    ASSERT_EQ(SampleNumbers(samples), (std::vector<int>{2, 8}));
    const CSampleData& appended = *samples.GetSample(1);
    EXPECT_EQ(TextOf(appended, &CSampleData::GetProcessingWarning), "early\nlate");
    EXPECT_EQ(appended.GetCompoundCount(), 1);
    EXPECT_EQ(appended.GetFilePosEnd(), file.Read().size());
    EXPECT_EQ(samples.GetSample(0)->GetCompoundCount(), 0);
}

TEST(SamplesTest, ReadingErrorsAreShownAndReadingGoesOn) {
    TempFile file;
    file.Write(SampleSection(1) + SampleSection(2, "FAIL FILE\nSampleID\tlost\n") +
               SampleSection(3, "FAIL OTHER\n") + SampleSection(5, "FAIL PLAIN\n") +
               SampleSection(4));
    FailingFile input(file.c_str(), CFile::modeRead);
    HostRecorder catcher;
    CSamples samples;
    ASSERT_EQ(samples.Read(&input), 1);

    EXPECT_EQ(SampleNumbers(samples), (std::vector<int>{1, 4}));
    ASSERT_EQ(catcher.messages.size(), 3u);
    char expected[260];
    CFileException(CFileException::hardIO, 5, "report.txt", "read").GetErrorMessage(expected, 260);
    EXPECT_EQ(catcher.messages[0].text, expected);
    EXPECT_EQ(catcher.messages[1].text, "Error reading sample");
    EXPECT_EQ(catcher.messages[2].text, ""); // a library exception's own (empty) text
    for (const HostRecorder::Message& message : catcher.messages) {
        EXPECT_EQ(message.title, "Hollbeck Browser");
        EXPECT_EQ(message.icon, MessageIcon::Exclamation);
    }
}

TEST(SamplesTest, ControlSamplesAreLinkedByNumberParametersAndMass) {
    TempFile file;
    auto sample = [](int number, const char* type, const char* parameters, const char* mass) {
        std::string extra =
            std::string("SampleType\t") + type + "\nProcessParameters\t" + parameters + "\n";
        if (mass != nullptr)
            extra += std::string("[COMPOUND]\n{\n") + mass + "\tC6H6\tparent\n}\n";
        return SampleSection(number, extra);
    };
    file.Write(sample(1, "QC", "P", "100.0") +         // control with a reference mass
               sample(2, "Analyte", "P", "100.1") +    // within the window
               sample(3, "Analyte", "Q", "100.0") +    // other parameters
               sample(4, "Analyte", "P", "100.1001") + // outside the window
               sample(5, "Analyte", "P", "99.9") +     // within, below
               sample(6, "Analyte", "P", nullptr) +    // no compound: mass 0
               sample(10, "Control", "R", nullptr) +   // control without a reference mass
               sample(11, "Analyte", "R", "5.0") + sample(12, "Analyte", "P", "100.0"));
    CSamples samples;
    ASSERT_EQ(samples.Read(file.c_str()), 1);
    ASSERT_EQ(samples.GetSamplesCount(), 9);
    CSampleData* firstControl = samples.GetSample(0);
    CSampleData* secondControl = samples.GetSample(6);
    EXPECT_TRUE(firstControl->IsControl());
    EXPECT_EQ(firstControl->GetControlSample(), nullptr);
    EXPECT_EQ(samples.GetSample(1)->GetControlSample(), firstControl);
    EXPECT_EQ(samples.GetSample(2)->GetControlSample(), nullptr);
    EXPECT_EQ(samples.GetSample(3)->GetControlSample(), nullptr);
    EXPECT_EQ(samples.GetSample(4)->GetControlSample(), firstControl);
    EXPECT_EQ(samples.GetSample(5)->GetControlSample(), nullptr);
    EXPECT_EQ(samples.GetSample(7)->GetControlSample(), secondControl);
    // The walk of a control stops at the next control.
    EXPECT_EQ(samples.GetSample(8)->GetControlSample(), nullptr);

    // A sample numbered below its control is passed over; a control loses its own link.
    samples.GetSample(1)->SetNumber(0);
    samples.GetSample(1)->SetControlSample(nullptr);
    firstControl->SetControlSample(secondControl);
    samples.SetControlSamples();
    EXPECT_EQ(samples.GetSample(1)->GetControlSample(), nullptr);
    EXPECT_EQ(firstControl->GetControlSample(), nullptr);
    EXPECT_EQ(samples.GetSample(4)->GetControlSample(), firstControl);
}

TEST(SamplesTest, ControlLinksFollowTheirSamplesThroughInsertionAndCopies) {
    CSamples samples;
    CSampleData control;
    control.SetNumber(10);
    control.SetType("Control");
    CSampleData analyte;
    analyte.SetNumber(11);
    samples.AddSample(control);
    samples.AddSample(analyte);
    samples.SetControlSamples();
    ASSERT_EQ(samples.GetSample(1)->GetControlSample(), samples.GetSample(0));

    // Inserting before both moves them; the link moves with them.
    CSampleData early;
    early.SetNumber(1);
    EXPECT_EQ(samples.AddSample(early), 0);
    EXPECT_EQ(samples.GetSample(2)->GetControlSample(), samples.GetSample(1));
    EXPECT_EQ(samples.AddSample(), 4);
    EXPECT_EQ(samples.GetSample(2)->GetControlSample(), samples.GetSample(1));

    auto* source = new CSamples(samples);
    CSamples copy(*source);
    delete source;
    EXPECT_EQ(copy.GetSample(2)->GetControlSample(), copy.GetSample(1));
    CSamples assigned;
    assigned = copy;
    EXPECT_EQ(assigned.GetSample(2)->GetControlSample(), assigned.GetSample(1));
}

// The collection's flags are on when any sample's is; out-of-range entries give no sample.
TEST(SamplesTest, CollectionWideFlagsAndAccess) {
    CSamples samples;
    CSampleData sample;
    sample.SetLockSprayEnabled(false);
    samples.AddSample(sample);
    EXPECT_FALSE(samples.GetLockSprayEnabled());
    EXPECT_FALSE(samples.GetMUXEnabled());
    sample.SetMUXEnabled(true);
    samples.AddSample(sample);
    EXPECT_TRUE(samples.GetMUXEnabled());
    EXPECT_EQ(samples.AddSample(), 3);
    EXPECT_TRUE(samples.GetLockSprayEnabled());
    EXPECT_EQ(samples.GetSample(-1), nullptr);
    EXPECT_EQ(samples.GetSample(3), nullptr);
    EXPECT_EQ(samples.GetSample(), samples.GetSample(2));
}
