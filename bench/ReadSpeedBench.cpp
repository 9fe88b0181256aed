// Reading and writing a whole report against yardsticks on the same file, in one run:
//   StrictFloor    the floor: read 4 MiB blocks, find the lines with memchr, track the sections'
//                  nesting, and parse only the point lines of traces and spectra ("TRACE" and "MS"
//                  blocks) with std::from_chars into 8-byte pairs; nothing else is kept
//   MinimalParser  a looser yardstick: split every line into fields and parse every field that
//                  is a number, keeping the number pairs
//   LibraryRead    CSamples::Read of the same file, as the browser opens a report
//   PlainCopy      the file copied in large blocks (what cat does)
//   WritePass      CSamples::Write of the report read once before the timing
//   PeakMemory     the peak resident memory of a child process that reads the report
// After the run a summary gives the ratios of the medians. The report is a generated one of about
// 100 MB, or the file named by QUILLON_BENCH_REPORT (for example a 1 GB report made with
// `quillon-generate --samples 260 --points 20000`).
#include "GeneratorOptions.h"
#include "ReportGenerator.h"

#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/HostHooks.h>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr size_t kBlockSize = size_t{1} << 20;

// The report every benchmark of this run reads, made once.
struct BenchReport {
    std::string path;
    std::string scratch; // where the copies are written
    int64_t bytes = 0;
    bool generated = false;

    BenchReport() {
        const std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                             ("quillon-read-speed-" + std::to_string(::getpid()));
        std::filesystem::create_directories(folder);
        scratch = (folder / "copy.txt").string();
        if (const char* given = std::getenv("QUILLON_BENCH_REPORT")) {
            path = given;
        } else {
            quillon::generate::GeneratorOptions options;
            options.samples = 26;
            options.pointsPerTrace = 20000;
            options.reportPath = (folder / "report.txt").string();
            options.iniPath = (folder / "Tarnwick.ini").string();
            quillon::generate::GenerateBatch(options);
            path = options.reportPath;
            generated = true;
        }
        bytes = static_cast<int64_t>(std::filesystem::file_size(path));
        // Messages of the reader would only disturb the timing.
        quillon::HostHooks hooks = quillon::GetHostHooks();
        hooks.showMessage = [](const quillon::CString&, const quillon::CString&,
                               quillon::MessageIcon) { return 0; };
        quillon::SetHostHooks(hooks);
    }
    ~BenchReport() { std::filesystem::remove_all(std::filesystem::path(scratch).parent_path()); }
};

BenchReport& Report() {
    static BenchReport report;
    return report;
}

void SetThroughput(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * Report().bytes);
    state.counters["report_MB"] = static_cast<double>(Report().bytes) / 1e6;
}

// The minimal parser's number pairs.
struct Pairs {
    std::vector<double> first;
    std::vector<double> second;
};

// Parses the fields of one line; a line of two numbers becomes a pair.
void ParseLine(std::string_view line, Pairs& pairs) {
    double numbers[2] = {0.0, 0.0};
    int count = 0;
    int fields = 0;
    while (!line.empty()) {
        const size_t tab = line.find('\t');
        const std::string_view field = line.substr(0, tab);
        double value = 0.0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
        if (error == std::errc() && count < 2 && count == fields)
            numbers[count++] = value;
        ++fields;
        if (tab == std::string_view::npos)
            break;
        line.remove_prefix(tab + 1);
    }
    if (count == 2 && fields == 2) {
        pairs.first.push_back(numbers[0]);
        pairs.second.push_back(numbers[1]);
    }
}

void MinimalParser(benchmark::State& state) {
    std::vector<char> buffer(kBlockSize * 2);
    for (auto _ : state) {
        Pairs pairs;
        const int descriptor = ::open(Report().path.c_str(), O_RDONLY);
        size_t held = 0;
        for (;;) {
            const ssize_t got = ::read(descriptor, buffer.data() + held, buffer.size() - held);
            if (got <= 0)
                break;
            held += static_cast<size_t>(got);
            size_t start = 0;
            while (const void* found = std::memchr(buffer.data() + start, '\n', held - start)) {
                const size_t end =
                    static_cast<size_t>(static_cast<const char*>(found) - buffer.data());
                ParseLine(std::string_view(buffer.data() + start, end - start), pairs);
                start = end + 1;
            }
            std::memmove(buffer.data(), buffer.data() + start, held - start);
            held -= start;
            if (held == buffer.size())
                buffer.resize(buffer.size() * 2);
        }
        ParseLine(std::string_view(buffer.data(), held), pairs);
        ::close(descriptor);
        benchmark::DoNotOptimize(pairs.first.data());
        state.counters["pairs"] = static_cast<double>(pairs.first.size());
    }
    SetThroughput(state);
}

// The strict floor's state: the sections open around the current line and the points kept.
struct FloorState {
    std::vector<std::string_view> open; // names of the sections whose blocks are open
    std::string_view pending;           // the header just read, whose block may follow
    std::vector<std::pair<float, float>> points;
    bool inPoints = false;
};

// One line of the strict floor: headers and block lines move the nesting; inside a "TRACE" or
// "MS" block a line of two numbers is a point.
void FloorLine(std::string_view line, FloorState& floor) {
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.empty())
        return;
    if (line.front() == '[') {
        const std::string_view name = line.substr(1, line.find(']') - 1);
        floor.pending = name == "TRACE" ? std::string_view("TRACE")
                        : name == "MS"  ? std::string_view("MS")
                                        : std::string_view("other");
        return;
    }
    if (line == "{") {
        floor.open.push_back(floor.pending);
        floor.inPoints = floor.pending != "other";
        floor.pending = "other";
        return;
    }
    if (line == "}") {
        if (!floor.open.empty())
            floor.open.pop_back();
        floor.inPoints = !floor.open.empty() && floor.open.back() != "other";
        return;
    }
    if (!floor.inPoints || line.front() == ';')
        return;
    float time = 0.0f;
    float intensity = 0.0f;
    const char* end = line.data() + line.size();
    const auto first = std::from_chars(line.data(), end, time);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != '\t')
        return;
    if (std::from_chars(first.ptr + 1, end, intensity).ec == std::errc())
        floor.points.emplace_back(time, intensity);
}

void StrictFloor(benchmark::State& state) {
    constexpr size_t kFloorBlock = size_t{4} << 20;
    std::vector<char> buffer(kFloorBlock);
    for (auto _ : state) {
        FloorState floor;
        const int descriptor = ::open(Report().path.c_str(), O_RDONLY);
        size_t held = 0;
        for (;;) {
            const ssize_t got = ::read(descriptor, buffer.data() + held, buffer.size() - held);
            if (got <= 0)
                break;
            held += static_cast<size_t>(got);
            size_t start = 0;
            while (const void* found = std::memchr(buffer.data() + start, '\n', held - start)) {
                const size_t end =
                    static_cast<size_t>(static_cast<const char*>(found) - buffer.data());
                FloorLine(std::string_view(buffer.data() + start, end - start), floor);
                start = end + 1;
            }
            std::memmove(buffer.data(), buffer.data() + start, held - start);
            held -= start;
            if (held == buffer.size())
                buffer.resize(buffer.size() * 2);
        }
        FloorLine(std::string_view(buffer.data(), held), floor);
        ::close(descriptor);
        benchmark::DoNotOptimize(floor.points.data());
        state.counters["points"] = static_cast<double>(floor.points.size());
    }
    SetThroughput(state);
}

void LibraryRead(benchmark::State& state) {
    for (auto _ : state) {
        quillon::CSamples samples;
        if (samples.Read(Report().path.c_str()) != 1 || samples.GetSamplesCount() == 0) {
            state.SkipWithError("the report was not read");
            break;
        }
        benchmark::DoNotOptimize(samples.GetSample());
    }
    SetThroughput(state);
}

void PlainCopy(benchmark::State& state) {
    std::vector<char> buffer(kBlockSize);
    for (auto _ : state) {
        const int in = ::open(Report().path.c_str(), O_RDONLY);
        const int out = ::open(Report().scratch.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ssize_t got = 0;
        while ((got = ::read(in, buffer.data(), buffer.size())) > 0) {
            if (::write(out, buffer.data(), static_cast<size_t>(got)) != got) {
                state.SkipWithError("the copy could not be written");
                break;
            }
        }
        ::close(in);
        ::close(out);
    }
    SetThroughput(state);
}

void WritePass(benchmark::State& state) {
    quillon::CSamples samples;
    samples.Read(Report().path.c_str());
    for (auto _ : state) {
        quillon::CDelimitFile in(Report().path.c_str(), quillon::CFile::modeRead);
        quillon::CDelimitFile out(Report().scratch.c_str(),
                                  quillon::CFile::modeWrite | quillon::CFile::modeCreate);
        if (!samples.Write(&in, &out)) {
            state.SkipWithError("the report was not written");
            break;
        }
        out.Close();
    }
    SetThroughput(state);
}

// The peak resident memory of reading the report, in a child process of its own so that nothing
// else of this run counts.
void PeakMemory(benchmark::State& state) {
    double peakBytes = 0.0;
    for (auto _ : state) {
        const pid_t child = ::fork();
        if (child == 0) {
            quillon::CSamples samples;
            ::_exit(samples.Read(Report().path.c_str()) == 1 ? 0 : 1);
        }
        int status = 0;
        struct rusage usage {};
        ::wait4(child, &status, 0, &usage);
        peakBytes = static_cast<double>(usage.ru_maxrss) * 1024.0;
    }
    state.counters["peak_MB"] = peakBytes / 1e6;
    state.counters["peak_per_file_byte"] = peakBytes / static_cast<double>(Report().bytes);
}

// Keeps the median real time of each benchmark and the last peak memory for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                medians[run.run_name.function_name] = run.GetAdjustedRealTime();
            const auto peak = run.counters.find("peak_per_file_byte");
            if (peak != run.counters.end())
                peakPerByte = peak->second.value;
        }
    }

    std::map<std::string, double> medians;
    double peakPerByte = 0.0;
};

void PrintSummary(const SummaryReporter& reporter) {
    const auto median = [&](const char* name) {
        const auto found = reporter.medians.find(name);
        return found != reporter.medians.end() ? found->second : 0.0;
    };
    const double megabytes = static_cast<double>(Report().bytes) / 1e6;
    const auto rate = [&](double milliseconds) {
        return milliseconds > 0.0 ? megabytes / (milliseconds / 1e3) : 0.0;
    };
    const double library = median("LibraryRead");
    const double minimal = median("MinimalParser");
    const double floor = median("StrictFloor");
    const double write = median("WritePass");
    const double copy = median("PlainCopy");
    std::printf("\nReport %s: %.1f MB\n", Report().path.c_str(), megabytes);
    std::printf("  read:   library %.0f MB/s, strict floor %.0f MB/s, ratio %.2f (goal <= 1.2)\n",
                rate(library), rate(floor), floor > 0.0 ? library / floor : 0.0);
    std::printf("          minimal parser %.0f MB/s, library / minimal parser %.2f\n",
                rate(minimal), minimal > 0.0 ? library / minimal : 0.0);
    std::printf("  write:  write pass %.0f MB/s, plain copy %.0f MB/s, ratio %.2f (goal <= 3)\n",
                rate(write), rate(copy), copy > 0.0 ? write / copy : 0.0);
    std::printf("  memory: peak resident %.2f times the file size (goal <= 1.5)\n",
                reporter.peakPerByte);
}

} // namespace

BENCHMARK(StrictFloor)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(MinimalParser)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(LibraryRead)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(PlainCopy)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(WritePass)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(PeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintSummary(reporter);
    benchmark::Shutdown();
    return 0;
}
