#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>

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

} // namespace

// The example batch written back under another name: every line but the empty ones is copied,
// the molfile references name the new file, and the copy reads back into the same samples.
TEST(SamplesExampleTest, TheExampleBatchIsWrittenBackAndReadsTheSame) {
    CSamples original;
    ASSERT_EQ(original.Read(kExample.c_str()), 1);
    ASSERT_GT(original.GetSamplesCount(), 1);

    TempFile copy("copy.txt");
    {
        CDelimitFile in(kExample.c_str(), CFile::modeRead);
        CDelimitFile out(copy.c_str(), CFile::modeWrite | CFile::modeCreate);
        ASSERT_EQ(original.Write(&in, &out), 1);
    }

    std::vector<std::string> expected;
    int molfileLists = 0;
    for (const std::string& line : Lines(kExample)) {
        if (!line.empty())
            expected.push_back(line);
        molfileLists += line == "[MOLFILE LIST]";
    }
    std::vector<std::string> written = Lines(copy.Path());
    ASSERT_EQ(written.size(), expected.size() + 1);
    EXPECT_EQ(written.back().rfind(";Metabolite sections updated by", 0), 0u);
    written.pop_back();

    const std::string oldParent = "Chlorpromazine_HLM_batch.txt_Parent";
    const std::string newParent = "copy.txt_Parent";
    int renamed = 0;
    for (size_t i = 0; i < written.size(); ++i) {
        const size_t found = written[i].find(newParent);
        if (found != std::string::npos) {
            EXPECT_EQ(written[i], "Reference\t" + newParent);
            ASSERT_GE(i, 2u);
            EXPECT_EQ(written[i - 2], "[MOLFILE LIST]");
            written[i].replace(found, newParent.size(), oldParent);
            ++renamed;
        }
    }
    EXPECT_GT(renamed, 0);
    EXPECT_EQ(renamed, molfileLists);
    EXPECT_EQ(written, expected);

    CSamples readBack;
    ASSERT_EQ(readBack.Read(copy.c_str()), 1);
    ASSERT_EQ(readBack.GetSamplesCount(), original.GetSamplesCount());
    for (int i = 0; i < original.GetSamplesCount(); ++i) {
        const CSampleData& before = *original.GetSample(i);
        const CSampleData& after = *readBack.GetSample(i);
        EXPECT_EQ(after.GetNumber(), before.GetNumber());
        EXPECT_EQ(after.IsControl(), before.IsControl());
        EXPECT_EQ(after.GetCompoundCount(), before.GetCompoundCount());
        EXPECT_EQ(after.GetFunctionCount(), before.GetFunctionCount());
        EXPECT_EQ(after.GetParameters()->SigPeaks(), before.GetParameters()->SigPeaks());
        EXPECT_EQ(Values(*after.GetMDFMasses()), Values(*before.GetMDFMasses()));
        EXPECT_EQ(Values(*after.GetMDFParams()), Values(*before.GetMDFParams()));
        EXPECT_EQ(after.GetControlSample() != nullptr, before.GetControlSample() != nullptr);
    }
}
