#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/metabolites/ElementalResultsData.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

const std::string kExample =
    std::string(QUILLON_SOURCE_DIR) + "/examples/Chlorpromazine_HLM_batch.txt";

std::vector<std::string> Lines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<double> Values(const CDoubleArray& array) {
    return std::vector<double>(array.begin(), array.end());
}

// Drops the blocks of the sections the writer regenerates from memory.
std::vector<std::string> WithoutMetaboliteSections(const std::vector<std::string>& lines) {
    std::vector<std::string> kept;
    int depth = -1; // >= 0 while inside a regenerated section
    for (const std::string& line : lines) {
        if (depth < 0 && (line == "[EXPECTED METABOLITES]" || line == "[UNEXPECTED METABOLITES]" ||
                          line == "[ELEMENTAL]" || line == "[MSMS CORRELATION]")) {
            depth = 0;
            continue;
        }
        if (depth >= 0) {
            depth += line == "{" ? 1 : line == "}" ? -1 : 0;
            if (depth == 0 && line == "}")
                depth = -1;
            continue;
        }
        kept.push_back(line);
    }
    return kept;
}

void WriteCopy(CSamples& samples, const std::string& from, const TempFile& to) {
    CDelimitFile in(from.c_str(), CFile::modeRead);
    CDelimitFile out(to.c_str(), CFile::modeWrite | CFile::modeCreate);
    ASSERT_EQ(samples.Write(&in, &out), 1);
}

} // namespace

// The example batch written back under another name: every line outside the metabolite sections
// is copied (empty lines dropped, molfile references renamed), the metabolite sections are
// regenerated from memory and read back into the same metabolites and elemental candidates, and
// a second save of the copy under the same name gives the same file.
TEST(SamplesExampleTest, TheExampleBatchIsWrittenBackAndReadsTheSame) {
    CSamples original;
    ASSERT_EQ(original.Read(kExample.c_str()), 1);
    ASSERT_GT(original.GetSamplesCount(), 1);
    TempFile copy("copy.txt");
    WriteCopy(original, kExample, copy);

    std::vector<std::string> expected;
    for (const std::string& line : Lines(kExample)) {
        if (!line.empty())
            expected.push_back(line);
    }
    std::vector<std::string> written = Lines(copy.Path());
    EXPECT_EQ(written.back().rfind(";Metabolite sections updated by", 0), 0u);
    written.pop_back();
    const std::string oldParent = "Chlorpromazine_HLM_batch.txt_Parent";
    const std::string newParent = "copy.txt_Parent";
    int renamed = 0;
    for (std::string& line : written) {
        const size_t found = line.find(newParent);
        if (found != std::string::npos) {
            line.replace(found, newParent.size(), oldParent);
            ++renamed;
        }
    }
    EXPECT_GT(renamed, 0);
    EXPECT_EQ(WithoutMetaboliteSections(written), WithoutMetaboliteSections(expected));

    CSamples readBack;
    ASSERT_EQ(readBack.Read(copy.c_str()), 1);
    ASSERT_EQ(readBack.GetSamplesCount(), original.GetSamplesCount());
    int metabolites = 0;
    for (int i = 0; i < original.GetSamplesCount(); ++i) {
        CSampleData& before = *original.GetSample(i);
        CSampleData& after = *readBack.GetSample(i);
        EXPECT_EQ(after.GetNumber(), before.GetNumber());
        EXPECT_EQ(after.GetFunctionCount(), before.GetFunctionCount());
        EXPECT_EQ(after.GetParameters()->SigPeaks(), before.GetParameters()->SigPeaks());
        EXPECT_EQ(Values(*after.GetMDFMasses()), Values(*before.GetMDFMasses()));
        EXPECT_EQ(after.GetControlSample() != nullptr, before.GetControlSample() != nullptr);
        EXPECT_EQ(after.GetExpectedMetaboliteCount(), before.GetExpectedMetaboliteCount());
        EXPECT_EQ(after.GetUnexpectedMetaboliteCount(), before.GetUnexpectedMetaboliteCount());
        EXPECT_EQ(after.GetMSMSCorrelationMetaboliteCount(),
                  before.GetMSMSCorrelationMetaboliteCount());
        ASSERT_EQ(after.GetMetaboliteCount(), before.GetMetaboliteCount());
        for (int m = 0; m < before.GetMetaboliteCount(); ++m, ++metabolites) {
            const CMetaboliteData& a = *after.GetMetabolite(m);
            const CMetaboliteData& b = *before.GetMetabolite(m);
            EXPECT_STREQ(a.GetMetName(), b.GetMetName());
            EXPECT_STREQ(a.GetFormula(), b.GetFormula());
            EXPECT_EQ(a.GetFound(), b.GetFound());
            EXPECT_EQ(a.GetPeakNum(), b.GetPeakNum());
            EXPECT_EQ(a.GetPeakArea(), b.GetPeakArea());
            EXPECT_NEAR(a.GetMzFound(), b.GetMzFound(), 1e-4);
            EXPECT_EQ(a.IsMSMSParent(), b.IsMSMSParent());
            ASSERT_EQ(a.GetNumElementalResults(), b.GetNumElementalResults());
            CElementalResultsData left;
            CElementalResultsData right;
            for (int c = 0; c < b.GetNumElementalResults(); ++c) {
                a.GetElementalResults(c, left);
                b.GetElementalResults(c, right);
                EXPECT_EQ(left.GetMonoMassFormula(), right.GetMonoMassFormula());
                EXPECT_NEAR(left.GetiFITnorm(), right.GetiFITnorm(), 1e-6);
            }
            for (int e = 0; e < b.GetCorrelationEntryCount(); ++e) {
                CString left;
                CString right;
                a.GetCorrelationMasses(e, left);
                b.GetCorrelationMasses(e, right);
                EXPECT_EQ(left, right);
            }
        }
    }
    EXPECT_GT(metabolites, 0);

    TempFile again("copy.txt");
    WriteCopy(readBack, copy.Path(), again);
    // The copy of a copy differs only by one more closing comment.
    std::vector<std::string> second = Lines(again.Path());
    second.pop_back();
    EXPECT_EQ(second, Lines(copy.Path()));
}
