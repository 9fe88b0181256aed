#pragma once

#include <quillon/document/Samples.h>
#include <quillon/metabolites/DivBroParams.h>

#include <memory>
#include <string>

namespace quillon::tool {

// A report read into memory, with the parameter record its samples point to.
struct LoadedReport {
    std::string path;
    std::unique_ptr<CDivBroParams> params = std::make_unique<CDivBroParams>();
    std::unique_ptr<CSamples> samples = std::make_unique<CSamples>();
};

// Why a path cannot be read as a report, in the words of the error line ("No such file or
// directory", "is a directory", "not a regular file", "Permission denied"); empty when it can
// be opened.
std::string UnreadableReason(const std::string& path);

// Reads the report; throws ToolError naming the file and the reason when it cannot be opened or
// holds no sample at all ("quillon: 'x.txt' is not a report: no [SAMPLE] section found").
LoadedReport LoadReport(const std::string& path, const CDivBroParams& params = CDivBroParams());

// The sample with that number; throws ToolError listing the numbers there are when none has it.
CSampleData& SampleByNumber(LoadedReport& report, int number);

} // namespace quillon::tool
