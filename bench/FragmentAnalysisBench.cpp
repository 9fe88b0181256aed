// The whole fragment analysis of one sample (parents, filtered spectra, fragment list, neutral
// losses) on generated samples of 1,000, 10,000 and 100,000 metabolites, each with its
// high-energy partner and product-ion spectrum, with the complexity fit over the sizes.
#include "GeneratorOptions.h"
#include "ReportGenerator.h"

#include <quillon/document/Samples.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/platform/HostHooks.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

// One generated sample per size, read once and kept for every run of that size.
quillon::CSamples& SampleOfSize(int metabolites) {
    static std::map<int, std::unique_ptr<quillon::CSamples>> samples;
    auto& slot = samples[metabolites];
    if (!slot) {
        const std::filesystem::path folder =
            std::filesystem::temp_directory_path() /
            ("quillon-fragment-bench-" + std::to_string(::getpid()) + "-" +
             std::to_string(metabolites));
        std::filesystem::create_directories(folder);
        quillon::generate::GeneratorOptions options;
        options.bulkMetabolites = metabolites;
        options.reportPath = (folder / "bulk.txt").string();
        quillon::generate::GenerateBatch(options);
        quillon::HostHooks hooks = quillon::GetHostHooks();
        const std::string directory = folder.string();
        hooks.workingDirectory = [directory] { return quillon::CString(directory); };
        quillon::SetHostHooks(hooks);
        slot = std::make_unique<quillon::CSamples>();
        slot->Read(options.reportPath.c_str());
        std::filesystem::remove(options.reportPath);
    }
    return *slot;
}

void BM_DoFragmentAnalysis(benchmark::State& state) {
    const int metabolites = static_cast<int>(state.range(0));
    quillon::CSampleData& sample = *SampleOfSize(metabolites).GetSample(0);
    quillon::CFragmentAnalysis* analysis = sample.GetFragmentAnalysis();
    for (auto _ : state) {
        benchmark::DoNotOptimize(analysis->DoFragmentAnalysis(&sample));
    }
    if (analysis->GetParents().GetSize() != metabolites)
        state.SkipWithError("the generated sample did not pair every metabolite");
    state.counters["fragments"] = analysis->GetFragmentEntries().GetSize();
    state.counters["occurrences"] = analysis->GetNeutralLossOccurrences().GetSize();
    state.SetComplexityN(metabolites);
}

BENCHMARK(BM_DoFragmentAnalysis)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

} // namespace
