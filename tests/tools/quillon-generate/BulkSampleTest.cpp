#include "GeneratorOptions.h"
#include "ReportGenerator.h"
#include "support/TempFile.h"

#include <quillon/document/Samples.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/platform/HostHooks.h>

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using namespace quillon::generate;

namespace {

// A bulk report holds one sample whose every metabolite pairs with its high-energy partner.
TEST(BulkSampleTest, EveryMetaboliteHasItsPartnerAndProductIonSpectrum) {
    const char* argv[] = {"quillon-generate", "--bulk-metabolites", "40"};
    GeneratorOptions options;
    std::string message;
    bool help = false;
    ASSERT_TRUE(ParseCommandLine(3, argv, options, message, help));
    EXPECT_EQ(options.bulkMetabolites, 40);
    const quillon::testing::TempFile report("bulk.txt");
    options.reportPath = report.Path();
    GenerateBatch(options);

    const HostHooks saved = GetHostHooks();
    HostHooks hooks = saved;
    hooks.workingDirectory = [&report] { return CString(report.Folder().string()); };
    SetHostHooks(hooks);
    CSamples samples;
    ASSERT_EQ(samples.Read(options.reportPath.c_str()), 1);
    ASSERT_EQ(samples.GetSamplesCount(), 1);
    CSampleData& sample = *samples.GetSample(0);
    ASSERT_EQ(sample.GetFunctionCount(), 2);
    CFunctionData* high = sample.GetFunction(1);
    ASSERT_EQ(high->GetNumSpectra(false), 40);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(high->GetSpectrum(i, false)->GetPeakID(), i + 1);
        EXPECT_EQ(high->GetSpectrum(i, false)->GetPeakClusterID(), i + 1);
    }
    EXPECT_EQ(sample.GetMetaboliteCount(), 80);

    CFragmentAnalysis* analysis = sample.GetFragmentAnalysis();
    EXPECT_TRUE(analysis->DoFragmentAnalysis(&sample));
    EXPECT_EQ(analysis->GetParents().GetSize(), 40);
    EXPECT_GT(analysis->GetFragmentEntries().GetSize(), 40);
    EXPECT_GT(analysis->GetNeutralLossOccurrences().GetSize(), 0);
    EXPECT_GT(high->GetNumSpectra(true), 0);

    // Cancelled in the middle of the parents, after a whole run: the first run's filtered
    // spectra go too, and nothing new is built.
    int polls = 0;
    hooks.cancelRequested = [&polls] { return ++polls == 25; };
    SetHostHooks(hooks);
    EXPECT_FALSE(analysis->DoFragmentAnalysis(&sample));
    EXPECT_FALSE(analysis->HasResults());
    EXPECT_EQ(high->GetNumSpectra(true), 0);
    SetHostHooks(saved);
}

} // namespace
