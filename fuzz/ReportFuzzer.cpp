// The report reader, the queries a browser makes over what was read, and the writer that saves it
// back: any bytes are read without harm, and after one save, saving again changes neither the file
// nor the model read from it.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include "support/ModelDump.h"

#include <algorithm>
#include <string>

using namespace quillon;

namespace {

void QueryChromatogram(const CChromatoData& trace) {
    float low = 0;
    float high = 0;
    trace.GetDataRange(low, high);
    trace.GetIntensityRange(low, high, low, high);
    float highest = 0;
    float lowest = 0;
    float timeOfHighest = 0;
    float timeOfLowest = 0;
    trace.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 0, 0);
    trace.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, low, high);
    for (int index = 0; index <= trace.GetNumPeaks(); index += 1 + trace.GetNumPeaks() / 4) {
        int at = index;
        trace.GetNearestPeak(&at, timeOfHighest);
    }
    trace.GetScaledMaxIntensity();
    for (int i = 0; i < trace.GetNumberOfListPeaks(); ++i) {
        CArray<float> times;
        CArray<float> intensities;
        trace.GetPeakData(times, intensities, *trace.GetChromatPeakData(i)->GetChromatPeakData());
    }
}

void QuerySpectrum(const CSpectrumData& spectrum) {
    int low = 0;
    int high = 0;
    spectrum.GetDataRange(low, high);
    float highest = 0;
    float lowest = 0;
    spectrum.GetMaxIntensity(highest, lowest, 0, 0);
    spectrum.GetMaxIntensity(highest, lowest, low, high);
    float masses[8];
    float intensities[8];
    spectrum.GetMassIntensity(masses, intensities, 0, 8, 0.0);
    spectrum.GetMassIntensity(masses, intensities, spectrum.GetNumPeaks() / 2, 8, high / 2.0);
    spectrum.IsPositive(-1);
    CString label;
    spectrum.GetPeakAnnotationLabel(label);
}

// The lookups a browser makes, asked with the numbers the sample itself carries and with a few
// that no report uses.
void QuerySample(CSampleData& sample) {
    float start = 0;
    float end = 0;
    sample.GetMaxChromatogramRange(start, end);
    sample.IsPositive(-1);
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        int first = 0;
        int last = 0;
        function.GetFunctionRange(first, last);
        function.GetFunctionText(1);
        sample.GetFunctionWithNumber(function.GetNumber());
        for (int c = 0; c < function.GetNumChromatogram(); ++c) {
            const CChromatoData& trace = *function.GetChromatogram(c);
            QueryChromatogram(trace);
            const int number = trace.GetTraceNumber();
            sample.GetTrace(number);
            sample.GetFunctionContainingTrace(number);
            sample.GetChromatogramIndex(f, number);
            sample.GetChromatogramIndex(f, trace.GetDescription());
            sample.GetTraceNum(function.GetNumber(), trace.GetDescription());
            sample.SameTrace(number, number ^ 1); // a neighbouring number, even at INT_MAX
            for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
                const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
                const int id = peak.GetPeakID();
                const int cluster = peak.GetPeakClusterID();
                sample.GetCorrespondingSpectrum(id);
                sample.GetCorispondingPeakInfo(id, 0);
                sample.GetCorispondingPeakInfo(id, function.GetNumber(), number);
                sample.GetCorispondingChroMatogram(id, 1);
                sample.GetCorispondingChromatNumber(id, 1);
                sample.GetNumberOfChroGraphs(id);
                sample.GetNumberOfChroGraphsInCluster(cluster);
                sample.GetNumberOfSameTracesInCluster(cluster, number);
                sample.GetTraceInCluster(cluster, 1);
                sample.GetSameTraceInCluster(cluster, 1, number);
                sample.GetSamePeakInCluster(cluster, 1, number);
                sample.RetrievePeakClusterNum(id, number);
                function.GetSpectrumWithPeakID(id, false);
                function.GetSpectrumWithPeakID(id, true);
            }
        }
        for (const bool filtered : {false, true}) {
            for (int s = 0; s < function.GetNumSpectra(filtered); ++s)
                QuerySpectrum(*function.GetSpectrum(s, filtered));
        }
    }
    for (int a = 0; a < sample.GetAnalogCount(); ++a)
        QueryChromatogram(*sample.GetAnalogChannel(a));
    for (const int odd : {-102, -101, -100, -7, 0, 1 << 30})
        sample.GetTrace(odd);
    sample.GetCorrespondingSpectrum(-1);
    sample.GetNumberOfChroGraphsInCluster(-5);
}

void QueryAll(CSamples& samples) {
    samples.GetLockSprayEnabled();
    samples.GetMUXEnabled();
    for (int i = 0; i < samples.GetSamplesCount(); ++i)
        QuerySample(*samples.GetSample(i));
}

bool IsRewrittenSection(std::string_view name) {
    return name == "EXPECTED METABOLITES" || name == "UNEXPECTED METABOLITES" ||
           name == "ELEMENTAL" || name == "MSMS CORRELATION";
}

// The place of a metabolite section among a sample's metabolite sections, in the order the
// metabolites stand in memory (expected, unexpected with their elemental results, MS/MS); 0 for
// any other section.
int MetaboliteSectionRank(std::string_view name) {
    if (name == "EXPECTED METABOLITES")
        return 1;
    if (name == "UNEXPECTED METABOLITES" || name == "ELEMENTAL")
        return 2;
    return name == "MSMS CORRELATION" ? 3 : 0;
}

// True when the text nests its sections as the writer expects, so that every section the writer
// rewrites is read where the writer writes it: each section header is followed, past empty and
// comment lines, by the block it opens, and every block by its header; samples stand at the top
// level and nothing else does; the rewritten sections stand right inside a sample's block; every
// block closes; and each sample's metabolite sections come in the order of its metabolites in
// memory (see MetaboliteSectionRank). Otherwise the reader may read a rewritten section elsewhere
// than the writer writes it (a section without a block takes the lines after it, up to the next
// block, as its own; the top level and unknown blocks pass sections over), or, for rows read
// before those of an earlier group, store them at other places than it writes them from. Saving
// such a text changes the model once or more.
bool WellNested(std::string_view text) {
    fuzz::MemoryFile file(text);
    CDelimitFile lines(file.Stream());
    CString line;
    std::string_view name;
    int depth = 0;
    bool afterHeader = false;
    int highestRank = 0;
    while (lines.ReadString(line)) {
        const int type = lines.ClassifyLine(line.view(), &name);
        if (type == RECORD_EMPTY || type == RECORD_COMMENT)
            continue;
        if (afterHeader != (type == RECORD_BLOCK_START))
            return false;
        afterHeader = type == RECORD_PARAGRAPH;
        if (type == RECORD_BLOCK_START) {
            ++depth;
        } else if (type == RECORD_BLOCK_END) {
            if (--depth < 0)
                return false;
        } else if (type == RECORD_PARAGRAPH) {
            const bool sample = name == "SAMPLE" || name == "SAMPLE_APPEND";
            if (sample != (depth == 0) || (IsRewrittenSection(name) && depth != 1))
                return false;
            if (name == "SAMPLE")
                highestRank = 0;
            const int rank = MetaboliteSectionRank(name);
            if (rank > 0 && rank < highestRank)
                return false;
            highestRank = std::max(highestRank, rank);
        } else if (depth == 0) {
            return false;
        }
    }
    return depth == 0 && !afterHeader;
}

// True when MS/MS entries left gaps: the reader fills them with default records, which the writer
// saves among the unexpected metabolites, so that every save adds as many again.
bool MSMSEntriesLeaveGaps(CSamples& samples) {
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        const CSampleData& sample = *samples.GetSample(i);
        for (int m = sample.GetMSMetaboliteCount(); m < sample.GetMetaboliteCount(); ++m) {
            if (!sample.GetMetabolite(m)->IsMSMSCorrelation())
                return true;
        }
    }
    return false;
}

// True when a metabolite holds elemental candidates and none of them has a mass: its section is
// written with the column-header comment but without rows, so that, read back without candidates,
// the metabolite's next save leaves the comment out.
bool CandidatesWithoutMass(CSamples& samples) {
    CElementalResultsData candidate;
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        const CSampleData& sample = *samples.GetSample(i);
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
            bool anyMass = false;
            for (int c = 0; c < metabolite.GetNumElementalResults() && !anyMass; ++c)
                anyMass = metabolite.GetElementalResults(c, candidate) && candidate.GetMass() > 0.0;
            if (metabolite.GetNumElementalResults() > 0 && !anyMass)
                return true;
        }
    }
    return false;
}

// True when every line of the text is a comment.
bool OnlyWriterComments(std::string_view text) {
    while (!text.empty()) {
        if (text.front() != ';')
            return false;
        const size_t end = text.find('\n');
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return true;
}

// Reads the text into the model and returns the file the model saves it to.
std::string ReadAndSave(std::string_view text, CSamples& model) {
    fuzz::MemoryFile inputFile(text);
    CDelimitFile input(inputFile.Stream());
    model.Read(&input);
    input.SeekToBegin();
    fuzz::MemoryFile savedFile;
    CDelimitFile saved(savedFile.Stream());
    model.Write(&input, &saved);
    saved.Flush();
    return fuzz::Contents(savedFile);
}

// Requires the second save to copy the first, only adding the writer's comment lines at the end.
void RequireCopyPlusComments(const std::string& first, const std::string& second) {
    fuzz::Require(second.starts_with(first));
    fuzz::Require(OnlyWriterComments(std::string_view(second).substr(first.size())));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::SilenceHost();
    const std::string_view text = fuzz::AsText(data, size);
    fuzz::MemoryFile inputFile(text);
    CDelimitFile input(inputFile.Stream());
    CSamples samples;
    samples.Read(&input);
    QueryAll(samples);
    CSamples copy(samples);
    QueryAll(copy);

    input.SeekToBegin();
    fuzz::MemoryFile savedFile;
    CDelimitFile saved(savedFile.Stream());
    samples.Write(&input, &saved);
    QueryAll(samples);

    // When the text nests its sections as the writer expects (see WellNested), the saved file
    // reads into as many samples as memory holds (the model itself may differ by the writer's
    // rounding of what it writes from memory); saving it again copies it unchanged, only adding the
    // writer's comment lines at the end, and that copy reads into the same model. Exceptions: MS/MS
    // entries with gaps (see MSMSEntriesLeaveGaps), elemental candidates that all lack a mass (see
    // CandidatesWithoutMass), and a line that ends in a carriage return of its own ("\r\r\n", or
    // "\r" at the end of the file), which, written with a line feed after it, has its carriage
    // return become part of that line end. Any other text: the saved file is read and saved again
    // without harm.
    saved.Flush();
    const std::string once = fuzz::Contents(savedFile);
    CSamples reread;
    const std::string twice = ReadAndSave(once, reread);
    if (!WellNested(text) || MSMSEntriesLeaveGaps(samples) || CandidatesWithoutMass(samples) ||
        text.ends_with('\r') || text.find("\r\r\n") != std::string_view::npos)
        return 0;
    fuzz::Require(reread.GetSamplesCount() == samples.GetSamplesCount());
    RequireCopyPlusComments(once, twice);
    CSamples rereadAgain;
    ReadAndSave(twice, rereadAgain);
    fuzz::Require(testing::ModelDump::Of(rereadAgain) == testing::ModelDump::Of(reread));
    return 0;
}
