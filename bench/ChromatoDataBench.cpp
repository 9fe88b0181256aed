// Reading one chromatogram section of n points: the time per point should not grow with n.

#include <quillon/acquisition/ChromatoData.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

// Writes a "CHROMATOGRAM" block of n points with percent intensities and one peak; returns its
// path.
std::string WriteChromatogram(int points) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("quillon-chromato-bench-" + std::to_string(::getpid()) + "-" + std::to_string(points));
    FILE* out = std::fopen(path.c_str(), "w");
    std::fprintf(out, "{\nDescription\tTIC\nMaxIntensity\t250000\nCustomChartParameters\t\n");
    std::fprintf(out, "TraceNumber\t1\n[TRACE]\n{\n");
    for (int i = 0; i < points; ++i)
        std::fprintf(out, "%.4f\t%.3f\n", i * 0.001, (i * 7919 % 10000) * 0.01);
    std::fprintf(out, "}\n[PEAK]\n{\nPeak ID\t1\nTime\t0.5\nPeak\t0.4\t0.6\n}\n}\n");
    std::fclose(out);
    return path.string();
}

void BM_ReadChromatogram(benchmark::State& state) {
    const int points = static_cast<int>(state.range(0));
    const std::string path = WriteChromatogram(points);
    for (auto _ : state) {
        quillon::CDelimitFile file(path.c_str(), quillon::CFile::modeRead);
        quillon::CChromatoData trace;
        trace.Read(&file);
        benchmark::DoNotOptimize(trace.GetNumPeaks());
    }
    state.SetItemsProcessed(state.iterations() * points);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(std::filesystem::file_size(path)));
    state.SetComplexityN(points);
    std::filesystem::remove(path);
}

BENCHMARK(BM_ReadChromatogram)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
