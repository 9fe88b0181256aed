// The report reader, the queries a browser makes over what was read, and the writer that saves it
// back: any bytes are read without harm, and after one save, saving again changes neither the file
// nor the model read from it.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include "support/ModelDump.h"

#include <string>
#include <vector>

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
            sample.SameTrace(number, number + 1);
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

bool IsSampleSection(std::string_view name) {
    return name == "SAMPLE" || name == "SAMPLE_APPEND";
}

// True when a section that the writer rewrites is not read where the writer writes it, so that
// the first save does not read back into the same model. The writer replaces such a section at
// its header, with its block; the reader, following the nesting of blocks, may read it otherwise:
// - a rewritten header, or the header of a section nested in a rewritten block, followed past
//   empty and comment lines by a line that does not open a block: its reader takes the lines up
//   to the next block as its own (a sample's header among them), and the rewritten section's
//   reader ends elsewhere than its block;
// - a rewritten header right after the header of another section that has no block of its own:
//   that section's reader takes the rewritten section's block as its own;
// - a rewritten header that stands neither right inside a sample's block nor right after a
//   sample's header: the top level passes it over, and a block that no reader knows is skipped
//   whole.
bool RewrittenSectionReadElsewhere(std::string_view text) {
    enum class Section { None, Sample, Rewritten, Other };
    fuzz::MemoryFile file(text);
    CDelimitFile lines(file.Stream());
    CString line;
    std::string_view name;
    // The section whose header opened each open block, and how many of them are rewritten.
    std::vector<Section> blocks;
    int rewrittenBlocks = 0;
    // The section of the previous line when it was a header; whether that header needs a block.
    Section previous = Section::None;
    bool needsBlock = false;
    while (lines.ReadString(line)) {
        const int type = lines.ClassifyLine(line.view(), &name);
        if (type == RECORD_EMPTY || type == RECORD_COMMENT)
            continue;
        if (needsBlock && type != RECORD_BLOCK_START)
            return true;
        Section section = Section::None;
        if (type == RECORD_PARAGRAPH) {
            section = IsSampleSection(name)      ? Section::Sample
                      : IsRewrittenSection(name) ? Section::Rewritten
                                                 : Section::Other;
        }
        const bool inSampleBlock = !blocks.empty() && blocks.back() == Section::Sample;
        if (section == Section::Rewritten &&
            (previous == Section::Other || !(inSampleBlock || previous == Section::Sample)))
            return true;
        if (type == RECORD_BLOCK_START) {
            blocks.push_back(previous);
            rewrittenBlocks += previous == Section::Rewritten ? 1 : 0;
        } else if (type == RECORD_BLOCK_END && !blocks.empty()) {
            rewrittenBlocks -= blocks.back() == Section::Rewritten ? 1 : 0;
            blocks.pop_back();
        }
        needsBlock =
            section == Section::Rewritten || (section != Section::None && rewrittenBlocks > 0);
        previous = section;
    }
    return false;
}

// True when a sample's MS/MS correlation section comes before one of its MS metabolite sections.
// An MS/MS row's entry is its place after the MS metabolites in memory: read before them, it is
// stored where they go next, and the entries written back differ from those read.
bool MSMSSectionBeforeMSSection(std::string_view text) {
    fuzz::MemoryFile file(text);
    CDelimitFile lines(file.Stream());
    CString line;
    std::string_view name;
    bool msmsSeen = false;
    while (lines.ReadString(line)) {
        if (lines.ClassifyLine(line.view(), &name) != RECORD_PARAGRAPH)
            continue;
        if (name == "SAMPLE")
            msmsSeen = false;
        else if (name == "MSMS CORRELATION")
            msmsSeen = true;
        else if (msmsSeen && (name == "EXPECTED METABOLITES" || name == "UNEXPECTED METABOLITES"))
            return true;
    }
    return false;
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

    // The saved file reads into as many samples as memory holds (the model itself may differ by
    // the writer's rounding of what it writes from memory); saving it again copies it unchanged,
    // only adding the writer's comment lines at the end, and that copy reads into the same model.
    // Exceptions: rewritten sections that the reader reads elsewhere than the writer writes them
    // (see RewrittenSectionReadElsewhere), for which only the second save must be a fixed point;
    // MS/MS entries with gaps or read before MS metabolites (see MSMSEntriesLeaveGaps and
    // MSMSSectionBeforeMSSection); and a line that ends in a carriage return of its own ("\r\r\n",
    // or "\r" at the end of the file), which, written with a line feed after it, has its carriage
    // return become part of that line end.
    const bool readElsewhere = RewrittenSectionReadElsewhere(text);
    saved.Flush();
    const std::string once = fuzz::Contents(savedFile);
    CSamples reread;
    const std::string twice = ReadAndSave(once, reread);
    fuzz::Require(readElsewhere || reread.GetSamplesCount() == samples.GetSamplesCount());
    if (MSMSEntriesLeaveGaps(samples) || MSMSSectionBeforeMSSection(text) || text.ends_with('\r') ||
        text.find("\r\r\n") != std::string_view::npos)
        return 0;
    if (readElsewhere) {
        // The first save wrote each rewritten section where the reader reads it: from there on,
        // saving is a fixed point.
        CSamples rereadAgain;
        RequireCopyPlusComments(twice, ReadAndSave(twice, rereadAgain));
        return 0;
    }
    RequireCopyPlusComments(once, twice);
    CSamples rereadAgain;
    ReadAndSave(twice, rereadAgain);
    fuzz::Require(testing::ModelDump::Of(rereadAgain) == testing::ModelDump::Of(reread));
    return 0;
}
