// Reading throughput of a whole report: a generated report file read by path into a sample
// collection, as the browser opens one.
#include <quillon/document/Samples.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

// One sample: the header fields, compounds, processing parameters, the mass defect filter and an
// acquisition function with a chromatogram trace and spectra, which make up most of a real report.
void WriteSample(std::FILE* out, int number, int points) {
    std::fprintf(out, "[SAMPLE]\n{\n");
    std::fprintf(out, "Sample\t%d\nFileName\tRUN%04d\nWell\t%d\nPlate\tANSI-96\n", number, number,
                 number % 96 + 1);
    std::fprintf(out, "SampleType\t%s\nSampleID\tID-%d\n", number % 10 == 0 ? "QC" : "Analyte",
                 number);
    std::fprintf(out, "SampleDescription\tmicrosomal incubation %d\n", number);
    std::fprintf(out, "ProcessParameters\tmethod-1\nInletFileName\tinlet\nMSMethodFileName\tms\n");
    std::fprintf(out, "MSTuneFileName\ttune\nInjectionVolume\t5.0\nSubjectTime\t%d\n", number % 60);
    std::fprintf(out, "SubjectText\trat\nSubjectParent\tparent\nConcentration\t1.5\n");
    std::fprintf(out, "Date\t21-Nov-2026\nTime\t10:11:12\nLockSprayEnabled\t1\nMUXEnabled\t0\n");
    std::fprintf(out, "ProcessingTime\t12.5\nInfo\tprocessed\nWarning\tnone\nJobCode\tJ\n");
    std::fprintf(out, "TaskCode\tT\nUserName\tuser\nLabName\tlab\nInstrument\tTOF\n");
    std::fprintf(out, "Conditions\tstandard\nSubmitter\tsubmitter\n");
    std::fprintf(out, "[COMPOUND]\n{\n;Mass\tFormula\tName\n151.0633\tC8H9NO2\tParent\n}\n");
    std::fprintf(out, "[PARAMETERS]\n{\nPeakFindMode\tApex\nPeakFindWindow\t0.2\n");
    std::fprintf(out, "PositiveAdducts\t1.0073\t22.9892\t38.9632\nSigPeaks\t5\n}\n");
    std::fprintf(out, "[MASS DEFECT FILTER]\n{\n151.0633\nLower\t-0.05\nUpper\t0.04\n}\n");
    std::fprintf(out, "[FUNCTION]\n{\nFunction\t1\nType\tTOF MS\nDescription\tScan (100:900)\n");
    std::fprintf(out, "[CHROMATOGRAM]\n{\nTrace\t1\nDescription\tTIC\n[TRACE]\n{\n");
    for (int i = 0; i < points; ++i)
        std::fprintf(out, "%.4f\t%.1f\n", i * 0.01, 1000.0 + (i * 37) % 5000);
    std::fprintf(out, "}\n}\n");
    for (int spectrum = 0; spectrum < 4; ++spectrum) {
        std::fprintf(out, "[SPECTRUM]\n{\nPeakID\t%d\n[MS]\n{\n", spectrum + 1);
        for (int i = 0; i < points / 8; ++i)
            std::fprintf(out, "%.4f\t%.1f\n", 100.0 + i * 0.731, 50.0 + (i * 13) % 900);
        std::fprintf(out, "}\n}\n");
    }
    std::fprintf(out, "}\n}\n");
}

std::string WriteReport(int samples, int points) {
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("quillon-read-report-bench-" + std::to_string(::getpid()) + ".txt"))
                                 .string();
    std::FILE* out = std::fopen(path.c_str(), "w");
    std::fprintf(out, ";Generated report\n");
    for (int number = 1; number <= samples; ++number)
        WriteSample(out, number, points);
    std::fclose(out);
    return path;
}

void ReadReport(benchmark::State& state) {
    const int sampleCount = static_cast<int>(state.range(0));
    const std::string path = WriteReport(sampleCount, static_cast<int>(state.range(1)));
    const auto bytes = static_cast<int64_t>(std::filesystem::file_size(path));
    for (auto _ : state) {
        quillon::CSamples samples;
        if (samples.Read(path.c_str()) != 1 || samples.GetSamplesCount() != sampleCount) {
            state.SkipWithError("the generated report was not read whole");
            break;
        }
        benchmark::DoNotOptimize(samples.GetSample());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["report_MB"] = static_cast<double>(bytes) / 1e6;
    state.counters["samples_per_second"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * sampleCount, benchmark::Counter::kIsRate);
    std::filesystem::remove(path);
}

} // namespace

// 400 samples of 4000 trace points each: a report of about 60 MB.
BENCHMARK(ReadReport)->Args({400, 4000})->Unit(benchmark::kMillisecond);
