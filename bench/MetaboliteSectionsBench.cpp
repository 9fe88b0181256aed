// Reading metabolite sections of n rows into a sample: the time per row should not grow with n.
// The first benchmark's sample has no acquisition; the second's has a function of n peaks and n
// spectra that every row looks its peak, spectrum and cluster up in, as a bulk report has.

#include <quillon/document/SampleData.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

// Writes a "[SAMPLE]" block holding one compound and n expected metabolite rows; returns its path.
std::string WriteMetabolites(int rows) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("quillon-metabolite-bench-" + std::to_string(::getpid()) + "-" + std::to_string(rows));
    FILE* out = std::fopen(path.c_str(), "w");
    std::fprintf(out, "{\nSample\t1\n[COMPOUND]\n{\n318.0957\tC17H19ClN2S\tDrug\n}\n"
                      "[EXPECTED METABOLITES]\n{\n");
    for (int r = 0; r < rows; ++r)
        std::fprintf(out,
                     "0\t%.4f\t%.4f\t%d\tC17H19ClN2OS\t2\t%d/1/2/%.4f/%d/%.4f\tM%d\t0.2\t0.6\t1\t0"
                     "\t\t\n",
                     300.0 + r * 0.001, r * 0.001, r % 2, r + 1, 301.0 + r * 0.001, r + 1,
                     300.0 + r * 0.001, r);
    std::fprintf(out, "}\n}\n");
    std::fclose(out);
    return path.string();
}

// Reads the sample written at path again and again, rows metabolite rows each time; with
// peaksFound, checks that the last row found its peak (a time above 0).
void ReadSampleRepeatedly(benchmark::State& state, const std::string& path, int rows,
                          bool peaksFound) {
    for (auto _ : state) {
        quillon::CDelimitFile file(path.c_str(), quillon::CFile::modeRead);
        quillon::CSampleData sample;
        sample.Read(&file);
        const quillon::CMetaboliteData* last = sample.GetMetabolite(rows - 1);
        if (last == nullptr || (peaksFound && last->GetPeakTime() <= 0.0))
            state.SkipWithError("the last row was not read with its peak");
        benchmark::DoNotOptimize(sample.GetMetaboliteCount());
    }
    state.SetItemsProcessed(state.iterations() * rows);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(std::filesystem::file_size(path)));
    state.SetComplexityN(rows);
    std::filesystem::remove(path);
}

void BM_ReadExpectedMetabolites(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    ReadSampleRepeatedly(state, WriteMetabolites(rows), rows, false);
}

// Writes a sample with one function holding a trace of n peaks and n spectra (peak k's spectrum
// with one mass), then n unexpected metabolite rows, row k naming peak k; returns its path.
std::string WriteMetabolitesWithPeaks(int rows) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("quillon-peak-bench-" + std::to_string(::getpid()) + "-" + std::to_string(rows));
    FILE* out = std::fopen(path.c_str(), "w");
    std::fprintf(out, "{\nSample\t1\n[COMPOUND]\n{\n318.0957\tC17H19ClN2S\tDrug\n}\n"
                      "[FUNCTION]\n{\nFunction\t1\nType\tMS\n[CHROMATOGRAM]\n{\nTraceNumber\t1\n");
    for (int k = 1; k <= rows; ++k)
        std::fprintf(out,
                     "[PEAK]\n{\nPeak ID\t%d\nPeak Cluster ID\t%d\nTime\t%.4f\nAreaAbs\t%d\n}\n", k,
                     k, k * 0.0001, 1000 + k);
    std::fprintf(out, "}\n");
    for (int k = 1; k <= rows; ++k)
        std::fprintf(
            out,
            "[SPECTRUM]\n{\nPeak ID\t%d\n[MASSES]\n{\n%.4f\t%.4f\t%.4f\t100\t100\t0.1\t0\n}\n"
            "}\n",
            k, 300.0 + k * 0.001, 300.0 + k * 0.001, 300.0 + k * 0.001);
    std::fprintf(out, "}\n[UNEXPECTED METABOLITES]\n{\n");
    for (int k = 1; k <= rows; ++k)
        std::fprintf(
            out, "0\t318.0957\t%.4f\t1\tC17H19ClN2OS\t1\t%d/1/1/%.4f/0/%.4f\tM%d\t0.2\t0.6\t0\t0\n",
            300.0 + k * 0.001, k, 300.0 + k * 0.001, 299.0 + k * 0.001, k);
    std::fprintf(out, "}\n}\n");
    std::fclose(out);
    return path.string();
}

void BM_ReadMetabolitesWithPeaks(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    ReadSampleRepeatedly(state, WriteMetabolitesWithPeaks(rows), rows, true);
}

// 12.5k to 100k metabolites: the time per metabolite (items per second) stays the same.
BENCHMARK(BM_ReadMetabolitesWithPeaks)
    ->Arg(12'500)
    ->Arg(25'000)
    ->Arg(50'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

BENCHMARK(BM_ReadExpectedMetabolites)
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
