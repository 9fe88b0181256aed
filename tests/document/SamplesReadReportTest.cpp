// The read report: what reading passed over or took as a default, where (offset and line), and
// that noting it changes nothing that is read.
#include <quillon/document/Samples.h>
#include <quillon/platform/HostHooks.h>

#include "support/HostRecorder.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

using namespace quillon;
using quillon::testing::ReadBytes;
using quillon::testing::TempFile;

namespace {

using Found = std::vector<std::pair<CReadReport::Kind, int64_t>>; // kind and line, by line

std::string Sample(int number) {
    return "[SAMPLE]\n{\nSample\t" + std::to_string(number) + "\n}\n";
}

// The line number (from 1) of the line that starts at offset.
int64_t LineAt(const std::string& bytes, size_t offset) {
    return 1 + std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(offset), '\n');
}

// Reads bytes as a report (the messages a damaged sample raises are not shown), checks that every
// entry's line number is that of its offset, and returns the entries' kinds and lines by line.
Found ReadFound(const std::string& bytes, CSamples& samples) {
    TempFile file("report.txt");
    file.Write(bytes);
    {
        const quillon::testing::HostRecorder silent;
        EXPECT_EQ(samples.Read(file.c_str()), 1);
    }
    Found found;
    for (const CReadReport::Entry& entry : samples.GetReadReport().entries) {
        EXPECT_EQ(entry.line, LineAt(bytes, static_cast<size_t>(entry.offset))) << entry.name;
        found.emplace_back(entry.kind, entry.line);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.second < b.second; });
    return found;
}

const std::string& Example() {
    static const std::string bytes =
        ReadBytes(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt");
    return bytes;
}

// The offsets of the starts of the lines that begin with prefix.
std::vector<size_t> LinesStartingWith(const std::string& bytes, const std::string& prefix) {
    std::vector<size_t> starts;
    for (size_t at = bytes.find(prefix); at != std::string::npos; at = bytes.find(prefix, at + 1))
        if (at == 0 || bytes[at - 1] == '\n')
            starts.push_back(at);
    return starts;
}

} // namespace

TEST(SamplesReadReport, NotesWhatTheTopLevelPassesOverWithItsLine) {
    // An unknown section with a sample header inside its block, stray lines and blocks, a header
    // without a block (whose look-ahead must not count lines twice), and a sample the file ends
    // inside.
    const std::string unknown = "[PLATE NOTES]\n{\nRow\t1\n[NESTED]\n{\n[SAMPLE]\n}\n}\n";
    const std::string stray = "loose line\n}\n{\nx\n}\n";
    const std::string noBlock = "[NO BLOCK]\n\n";
    const std::string open = "[SAMPLE]\n{\nSample\t3\n[COMPOUND]\n{\n1.0\tC\tX\n";
    const std::string bytes = Sample(1) + unknown + stray + noBlock + Sample(2) + open;
    CSamples samples;
    const Found found = ReadFound(bytes, samples);
    // Reading is unchanged: every sample is there, the one left open too.
    ASSERT_EQ(samples.GetSamplesCount(), 3);
    EXPECT_EQ(samples.GetSample(2)->GetNumber(), 3);
    EXPECT_EQ(found, (Found{{CReadReport::UnknownSection, 5},
                            {CReadReport::StrayLine, 13},
                            {CReadReport::StrayBlockEnd, 14},
                            {CReadReport::StrayBlock, 15},
                            {CReadReport::UnknownSection, 18},
                            {CReadReport::OpenBlock, 24}}));
    EXPECT_EQ(samples.GetReadReport().entries[0].name, "PLATE NOTES");

    // A clean report, read again into the same collection, leaves a clean read report, even
    // when its last sample's "}" is the file's last line.
    EXPECT_TRUE(ReadFound(Sample(1) + Sample(2), samples).empty());
    EXPECT_TRUE(samples.GetReadReport().IsClean());
}

// Each way a real report gets damaged, made from the example batch: what is noted, on which line,
// and that the samples read are those of the undamaged reading.
TEST(SamplesReadReport, NotesEachDamageOfARealReportOnItsLine) {
    const std::string& clean = Example();
    ASSERT_FALSE(clean.empty());
    CSamples whole;
    ASSERT_TRUE(ReadFound(clean, whole).empty());
    const int64_t lines = LineAt(clean, clean.size()) - 1;
    const std::vector<size_t> headers = LinesStartingWith(clean, "[SAMPLE]");
    ASSERT_GT(headers.size(), 2U);

    // A time that is no number, in a sample whose time is not 0, is read as 0.
    size_t timeAt = 0;
    for (size_t at : LinesStartingWith(clean, "SubjectTime\t"))
        if (clean.compare(at + 12, 2, "0\n") != 0)
            timeAt = at;
    ASSERT_GT(timeAt, 0U);
    std::string sixty = clean;
    sixty.replace(timeAt + 12, clean.find('\n', timeAt) - timeAt - 12, "sixty");
    // A garbage line among a trace's points.
    const size_t pointsAt = clean.find("[TRACE]\n{\n") + 10;
    std::string garbage = clean;
    garbage.insert(pointsAt, "garbage line\n");
    // The file ends inside the last sample.
    const std::string truncated =
        clean.substr(0, headers.back() + (clean.size() - headers.back()) / 2);

    struct Case {
        const char* name;
        std::string bytes;
        Found expected;
        int samples;
        bool unchanged; // the samples read are those of the clean report, whole
        std::function<void(CSamples&)> alsoCheck;
    };
    Found twice;
    for (size_t at : headers)
        twice.emplace_back(CReadReport::DuplicateSample, lines + LineAt(clean, at));
    const int count = whole.GetSamplesCount();
    const std::vector<Case> cases{
        {"sixty",
         sixty,
         {{CReadReport::BadNumber, LineAt(clean, timeAt)}},
         count,
         true,
         [&](CSamples& read) {
             const CReadReport::Entry& entry = read.GetReadReport().entries[0];
             EXPECT_EQ(entry.name, "SubjectTime");
             EXPECT_EQ(entry.detail, "sixty");
         }},
        {"garbage",
         garbage,
         {{CReadReport::StrayRecord, LineAt(clean, pointsAt)}},
         count,
         true,
         [&](CSamples& read) {
             EXPECT_EQ(read.GetReadReport().entries[0].detail, "garbage line");
             EXPECT_EQ(read.GetSample(0)->GetTrace(1)->GetNumPeaks(),
                       whole.GetSample(0)->GetTrace(1)->GetNumPeaks());
         }},
        {"concatenated", clean + clean, twice, 2 * count, true, nullptr},
        {"truncated",
         truncated,
         {{CReadReport::OpenBlock, LineAt(clean, headers.back())}},
         count,
         false,
         nullptr},
    };
    for (const Case& damaged : cases) {
        SCOPED_TRACE(damaged.name);
        CSamples read;
        EXPECT_EQ(ReadFound(damaged.bytes, read), damaged.expected);
        ASSERT_EQ(read.GetSamplesCount(), damaged.samples);
        // Samples are held in number order: a sample read twice sits beside its copy.
        const int copies = damaged.samples / count;
        for (int i = 0; damaged.unchanged && i < read.GetSamplesCount(); ++i)
            EXPECT_EQ(read.GetSample(i)->GetMetaboliteCount(),
                      whole.GetSample(i / copies)->GetMetaboliteCount());
        if (damaged.alsoCheck)
            damaged.alsoCheck(read);
    }
}

// A report cut off anywhere is read as far as it goes, never more samples than the whole file
// holds, and is noted as damaged unless the cut falls just after a sample's block.
TEST(SamplesReadReport, TruncatedReportsReadAsFarAsTheyGoAndAreNoted) {
    const std::string& report = Example();
    CSamples whole;
    ReadFound(report, whole);
    constexpr int kCuts = 24;
    int previous = 0;
    for (int cut = 1; cut < kCuts; ++cut) {
        const std::string part = report.substr(0, report.size() * static_cast<size_t>(cut) / kCuts);
        CSamples samples;
        const Found found = ReadFound(part, samples);
        EXPECT_LE(samples.GetSamplesCount(), whole.GetSamplesCount()) << part.size();
        EXPECT_GE(samples.GetSamplesCount(), previous) << part.size();
        EXPECT_TRUE(!found.empty() || part.ends_with("}\n")) << part.size();
        previous = samples.GetSamplesCount();
    }
    EXPECT_EQ(previous, whole.GetSamplesCount());
}

TEST(SamplesReadReport, KeepsABoundedNumberOfEntries) {
    std::string garbage;
    for (size_t i = 0; i < CReadReport::kMaxEntries + 5; ++i)
        garbage += "noise\n";
    CSamples samples;
    ReadFound(garbage, samples);
    EXPECT_EQ(samples.GetReadReport().entries.size(), CReadReport::kMaxEntries);
    EXPECT_EQ(samples.GetReadReport().omitted, 5U);
    EXPECT_EQ(samples.GetReadReport().ProblemCount(), CReadReport::kMaxEntries + 5);
}
