// Properties of reading and writing over many generated reports: a written report reads back into
// the same model and writing it again changes nothing; Windows line ends read like Unix ones and
// are written back.

#include "ReportGenerator.h"

#include <quillon/quillon.h>

#include "support/ModelDump.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::ModelDump;
using quillon::testing::ReadBytes;
using quillon::testing::TempFile;
namespace fs = std::filesystem;

namespace {

// A small report of random shape from the seed, written to folder/name.
std::string GenerateSmallReport(uint64_t seed, const fs::path& folder, const std::string& name,
                                bool windowsLineEnds) {
    std::mt19937_64 random(seed);
    generate::GeneratorOptions options;
    options.reportPath = (folder / name).string();
    options.iniPath = (folder / "Tarnwick.ini").string();
    options.samples = 1 + static_cast<int>(random() % 3);
    options.metabolites = static_cast<int>(random() % 4);
    options.unexpected = static_cast<int>(random() % 3);
    options.pointsPerTrace = 50 + static_cast<int>(random() % 40);
    options.surveySpectra = static_cast<int>(random() % 2);
    options.noisePeaks = static_cast<int>(random() % 4);
    options.seed = seed;
    options.windowsLineEnds = windowsLineEnds;
    generate::GenerateBatch(options);
    return options.reportPath;
}

// Reads the report at in, writes it to out, and returns the dump of the model after writing. A
// copy of the model, constructed or assigned, dumps the same: every record copies every field.
std::string ReadAndWrite(const std::string& in, const std::string& out) {
    CSamples samples;
    CDelimitFile input(in.c_str(), CFile::modeRead);
    EXPECT_EQ(samples.Read(&input), 1);
    input.SeekToBegin();
    CDelimitFile output(out.c_str(), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(samples.Write(&input, &output), 1);
    const std::string model = ModelDump::Of(samples);
    CSamples copy(samples);
    CSamples assigned;
    assigned = copy;
    EXPECT_EQ(ModelDump::Of(copy), model);
    EXPECT_EQ(ModelDump::Of(assigned), model);
    return model;
}

std::string DumpOf(const std::string& path) {
    CSamples samples;
    EXPECT_EQ(samples.Read(path.c_str()), 1);
    return ModelDump::Of(samples);
}

bool IsAppendedByWriter(const std::string& line) {
    return line.starts_with(";Metabolite sections updated by ") ||
           line.starts_with(";Duplicate samples removed by ");
}

// The sections a write puts out from memory rather than copying them.
bool IsWrittenFromMemory(const std::string& line) {
    return line == "[EXPECTED METABOLITES]" || line == "[UNEXPECTED METABOLITES]" ||
           line == "[ELEMENTAL]" || line == "[MSMS CORRELATION]";
}

// The lines of a text without their line ends; empty lines and the comments each write appends
// are left out, and so are the sections written from memory (with their blocks) when
// copiedOnly is set. Every occurrence of from (the parent structure's name, which names the file)
// is replaced by to.
std::vector<std::string> ContentLines(const std::string& text, bool copiedOnly,
                                      const std::string& from = "", const std::string& to = "") {
    std::vector<std::string> lines;
    bool skipping = false;
    int depth = 0;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (copiedOnly && IsWrittenFromMemory(line)) {
            skipping = true;
            depth = 0;
            continue;
        }
        if (skipping) {
            depth += line == "{" ? 1 : line == "}" ? -1 : 0;
            skipping = depth > 0 || line != "}";
            continue;
        }
        const size_t at = from.empty() ? std::string::npos : line.find(from);
        if (at != std::string::npos)
            line.replace(at, from.size(), to);
        if (!line.empty() && !IsAppendedByWriter(line))
            lines.push_back(line);
    }
    return lines;
}

// "" when the line lists are equal, otherwise the first line where they part.
std::string FirstDifference(const std::vector<std::string>& actual,
                            const std::vector<std::string>& expected) {
    for (size_t i = 0; i < std::max(actual.size(), expected.size()); ++i) {
        const std::string a = i < actual.size() ? actual[i] : "<end>";
        const std::string e = i < expected.size() ? expected[i] : "<end>";
        if (a != e)
            return "line " + std::to_string(i + 1) + ": \"" + a + "\" instead of \"" + e + "\"";
    }
    return "";
}

} // namespace

// For many reports of random seeds and sizes: the first write copies every line but the empty ones
// and the sections it writes from memory (the parent structure is named after the new file), the
// written files read into the same model as the original, and a second write changes nothing.
TEST(ReportPropertiesTest, WritingIsAFixedPointThatLosesOnlyEmptyLines) {
    constexpr uint64_t kReports = 200;
    TempFile folder;
    for (uint64_t seed = 1; seed <= kReports; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string original = GenerateSmallReport(seed, folder.Folder(), "a.txt", false);
        const std::string first = (folder.Folder() / "b.txt").string();
        const std::string second = (folder.Folder() / "c.txt").string();

        const std::string model = ReadAndWrite(original, first);
        EXPECT_EQ(FirstDifference(
                      ContentLines(ReadBytes(first), true),
                      ContentLines(ReadBytes(original), true, "a.txt_Parent", "b.txt_Parent")),
                  "");
        EXPECT_EQ(ReadAndWrite(first, second), model);
        EXPECT_EQ(
            FirstDifference(ContentLines(ReadBytes(second), false),
                            ContentLines(ReadBytes(first), false, "b.txt_Parent", "c.txt_Parent")),
            "");
        EXPECT_EQ(DumpOf(second), model);
        if (::testing::Test::HasFailure())
            break;
    }
}

// A report with Windows line ends reads into exactly the model of the same report with Unix line
// ends, and its copy keeps the Windows line ends on every line.
TEST(ReportPropertiesTest, WindowsLineEndsReadLikeUnixOnesAndAreWrittenBack) {
    TempFile unix;
    TempFile windows;
    for (uint64_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string lf = GenerateSmallReport(seed, unix.Folder(), "r.txt", false);
        const std::string crlf = GenerateSmallReport(seed, windows.Folder(), "r.txt", true);
        ASSERT_NE(ReadBytes(crlf).find("\r\n"), std::string::npos);

        const std::string lfOut = (unix.Folder() / "w.txt").string();
        const std::string crlfOut = (windows.Folder() / "w.txt").string();
        const std::string lfModel = ReadAndWrite(lf, lfOut);
        EXPECT_EQ(ReadAndWrite(crlf, crlfOut), lfModel);
        EXPECT_EQ(DumpOf(crlfOut), lfModel);

        const std::string written = ReadBytes(crlfOut);
        size_t lineFeeds = 0;
        size_t bareLineFeeds = 0;
        for (size_t i = 0; i < written.size(); ++i) {
            if (written[i] == '\n') {
                ++lineFeeds;
                bareLineFeeds += i == 0 || written[i - 1] != '\r';
            }
        }
        EXPECT_GT(lineFeeds, 100u);
        EXPECT_EQ(bareLineFeeds, 0u);
        EXPECT_EQ(
            FirstDifference(ContentLines(written, false), ContentLines(ReadBytes(lfOut), false)),
            "");
    }
}
