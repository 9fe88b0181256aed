// Reading an "EXPECTED METABOLITES" section of n rows into a sample (each row with one peak
// identifier that the sample's lookups walk for): the time per row should not grow with n.

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

void BM_ReadExpectedMetabolites(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    const std::string path = WriteMetabolites(rows);
    for (auto _ : state) {
        quillon::CDelimitFile file(path.c_str(), quillon::CFile::modeRead);
        quillon::CSampleData sample;
        sample.Read(&file);
        benchmark::DoNotOptimize(sample.GetExpectedMetaboliteCount());
    }
    state.SetItemsProcessed(state.iterations() * rows);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(std::filesystem::file_size(path)));
    state.SetComplexityN(rows);
    std::filesystem::remove(path);
}

BENCHMARK(BM_ReadExpectedMetabolites)
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace
