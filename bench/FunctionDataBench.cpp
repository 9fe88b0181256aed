// Reading one function section of n spectra (50 points, a mass line and a result each) into a
// sample: the time per spectrum should not grow with n.

#include <quillon/document/SampleData.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

// Writes a "[SAMPLE]" block holding one "FUNCTION" of n spectra; returns its path.
std::string WriteFunction(int spectra) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("quillon-function-bench-" + std::to_string(::getpid()) + "-" + std::to_string(spectra));
    FILE* out = std::fopen(path.c_str(), "w");
    std::fprintf(out, "{\nSample\t1\n[FUNCTION]\n{\nFunction\t1\nType\tMS\n");
    for (int s = 0; s < spectra; ++s) {
        std::fprintf(out, "[SPECTRUM]\n{\nPeak ID\t%d\nBPI\t1000\nDesc\tspectrum %d\n[MS]\n{\n", s,
                     s);
        for (int p = 0; p < 50; ++p)
            std::fprintf(out, "%.4f\t%d\n", 100 + p * 7.1, p * 13 % 997);
        std::fprintf(out, "}\n[MASSES]\n{\n455.2\t455.2\t455.21\t80\t0\t0\t1\n}\n"
                          "[RESULTS]\n{\n455.2\t1\t50\t0.9\t1\tok\n}\n}\n");
    }
    std::fprintf(out, "}\n}\n");
    std::fclose(out);
    return path.string();
}

void BM_ReadFunction(benchmark::State& state) {
    const int spectra = static_cast<int>(state.range(0));
    const std::string path = WriteFunction(spectra);
    for (auto _ : state) {
        quillon::CDelimitFile file(path.c_str(), quillon::CFile::modeRead);
        quillon::CSampleData sample;
        sample.Read(&file);
        benchmark::DoNotOptimize(sample.GetFunction(0)->GetNumSpectra(false));
    }
    state.SetItemsProcessed(state.iterations() * spectra);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(std::filesystem::file_size(path)));
    state.SetComplexityN(spectra);
    std::filesystem::remove(path);
}

BENCHMARK(BM_ReadFunction)
    ->RangeMultiplier(4)
    ->Range(2'500, 40'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
