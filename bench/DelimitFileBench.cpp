// Reading throughput of the report file layer, and the heap allocations it costs per line.
#include <quillon/file/FileRecord.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

namespace {

std::atomic<long> g_allocations{0};

// A report-shaped file: sections of a hundred number rows, each in a block.
std::string WriteSampleFile(int lines) {
    const std::string path =
        (std::filesystem::temp_directory_path() / "quillon-delimit-bench.txt").string();
    std::FILE* out = std::fopen(path.c_str(), "w");
    for (int i = 0; i < lines; ++i) {
        if (i % 100 == 0)
            std::fprintf(out, "%s[TRACE]\n{\n", i > 0 ? "}\n" : "");
        std::fprintf(out, "%.4f\t%.2f\t%d\t%s\n", i * 0.0123, i * 17.5, i, "a-longer-text-field");
    }
    std::fprintf(out, "}\n");
    std::fclose(out);
    return path;
}

void ReadWithRecords(benchmark::State& state) {
    const std::string path = WriteSampleFile(static_cast<int>(state.range(0)));
    const auto bytes = static_cast<int64_t>(std::filesystem::file_size(path));
    long allocations = 0;
    for (auto _ : state) {
        quillon::CDelimitFile file(path.c_str(), quillon::CFile::modeRead);
        quillon::CFileRecord record;
        record.AddParagraph("TRACE", 1);
        const long before = g_allocations.load();
        long fields = 0;
        while (record.Read(&file)) {
            quillon::CFileRecord section; // each section is read by a record of its own
            while (section.Read(&file))
                fields += section.GetInput()->GetSize();
        }
        allocations = g_allocations.load() - before;
        benchmark::DoNotOptimize(fields);
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["allocations_per_line"] =
        static_cast<double>(allocations) / static_cast<double>(state.range(0));
    std::filesystem::remove(path);
}

} // namespace

// Global replacements that count every allocation of the process. (GCC cannot see that these
// replace the standard pair, hence the pragma.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#pragma GCC diagnostic pop

BENCHMARK(ReadWithRecords)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
