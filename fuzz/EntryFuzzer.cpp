// Browser entry files: any file is read to its end without harm, without a collection to no
// effect, and with one into a sample per "[SAMPLE]" header; the collection copies whole. A second
// pass reaches the function fields too (which a file alone never does): a "[FUNCTION]" header
// opens a function with a spectrum for the "Process", "MASSES" and "MS" lines that follow.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include "support/ModelDump.h"

using namespace quillon;

namespace {

constexpr int kSampleParagraph = 0;
constexpr int kFunctionParagraph = 1;

// Reads the file line by line through the entry's public steps; returns the number of sample
// headers met.
int ReadWithFunctions(CDelimitFile& file, CBroEntry& entry, CSamples& samples) {
    int sampleHeaders = 0;
    int paragraph = -1;
    CStringArray fields;
    int type = 0;
    while (file.ReadDelimitedString(fields, &type)) {
        if (type == RECORD_FIELD && !fields.IsEmpty()) {
            entry.ParagraphEntry(paragraph, fields);
        } else if (type == RECORD_PARAGRAPH && !fields.IsEmpty()) {
            if (fields[0] == "FUNCTION") {
                paragraph = kFunctionParagraph;
                entry.NewParagraph(paragraph);
                CSampleData* sample = samples.GetSample();
                if (sample && sample->GetFunction())
                    sample->GetFunction()->AddSpectrum();
            } else if (entry.ParseParagraph(fields[0], paragraph)) {
                entry.NewParagraph(paragraph);
                sampleHeaders += paragraph == kSampleParagraph;
            }
        }
    }
    return sampleHeaders;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::SilenceHost();
    fuzz::MemoryFile memory(fuzz::AsText(data, size));
    CDelimitFile file(memory.Stream());

    CBroEntry unattached;
    fuzz::Require(unattached.Read(file) == 1);
    CString line;
    fuzz::Require(!file.ReadString(line));

    file.SeekToBegin();
    CSamples samples;
    CBroEntry entry;
    entry.SetSamples(&samples);
    fuzz::Require(entry.Read(file) == 1);
    const std::string dump = testing::ModelDump::Of(samples);
    CSamples copy(samples);
    fuzz::Require(testing::ModelDump::Of(copy) == dump);

    file.SeekToBegin();
    CSamples withFunctions;
    CBroEntry functionEntry;
    functionEntry.SetSamples(&withFunctions);
    const int sampleHeaders = ReadWithFunctions(file, functionEntry, withFunctions);
    fuzz::Require(samples.GetSamplesCount() == sampleHeaders);
    fuzz::Require(withFunctions.GetSamplesCount() == sampleHeaders);
    testing::ModelDump::Of(withFunctions);
    return 0;
}
