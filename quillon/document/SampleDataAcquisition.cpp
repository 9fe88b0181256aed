// The sample's acquisition sections ("FUNCTION", "FUNCTION_APPEND", "ANALOG") and element access
// to its functions, analog channels and combined traces.

#include <quillon/document/SampleData.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>
#include <utility>

namespace quillon {

CFunctionData* CSampleData::GetFunction(int index) {
    if (index < 0 || index >= m_Functions.GetSize())
        return nullptr;
    return &m_Functions[index];
}

CFunctionData* CSampleData::GetFunction() {
    return GetFunction(m_Functions.GetUpperBound());
}

CChromatoData* CSampleData::GetAnalogChannel(int index) {
    if (index < 0 || index >= m_AnalogChannels.GetSize())
        return nullptr;
    return &m_AnalogChannels[index];
}

CChromatoData* CSampleData::GetAnalogChannel() {
    return GetAnalogChannel(m_AnalogChannels.GetUpperBound());
}

CChromatoData* CSampleData::GetCombinedTrace(int traceNumber) {
    switch (traceNumber) {
    case -101:
        return &m_CombinedTraces[1];
    case -102:
        return &m_CombinedTraces[2];
    default:
        return &m_CombinedTraces[0];
    }
}

int CSampleData::ReadFunction(CDelimitFile* file) {
    CFunctionData function;
    function.Read(file);
    return AppendFunction(std::move(function));
}

int CSampleData::ReadFunctionAppend(CDelimitFile* file) {
    // The first line of the block carries the function number as its last element. The look-up
    // record has taken that line and the block's "{", so the function continues reading from
    // outside the block, with a record of its own.
    CFileRecord lookup;
    int number = 0;
    if (lookup.Read(file) == 1) {
        const CStringArray& input = *lookup.GetInput();
        if (!input.IsEmpty())
            number = ParseInt(input[input.GetUpperBound()]);
    }
    const int index = GetFunctionEntryWithNumber(number);
    if (index < 0)
        return ReadFunction(file);
    m_Functions[index].Read(file);
    return index;
}

int CSampleData::ReadAnalog(CDelimitFile* file) {
    CChromatoData channel;
    channel.Read(file);
    return AddChannel(std::move(channel));
}

} // namespace quillon
