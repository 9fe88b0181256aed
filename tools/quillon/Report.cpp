#include "Report.h"

#include "Command.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tool {

std::string UnreadableReason(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::strerror(errno);
    if (S_ISDIR(status.st_mode))
        return "Is a directory";
    if (!S_ISREG(status.st_mode))
        return "not a regular file";
    const int descriptor = ::open(path.c_str(), O_RDONLY);
    if (descriptor < 0)
        return std::strerror(errno);
    ::close(descriptor);
    return {};
}

LoadedReport LoadReport(const std::string& path, const CDivBroParams& params) {
    LoadedReport report;
    report.path = path;
    *report.params = params;
    report.samples->SetParams(report.params.get());
    if (const std::string reason = UnreadableReason(path); !reason.empty())
        throw ToolError{"cannot open '" + path + "': " + reason};
    if (report.samples->Read(path.c_str()) == 0)
        throw ToolError{"cannot open '" + path + "'"};
    if (report.samples->GetSamplesCount() == 0)
        throw ToolError{"'" + path + "' is not a report: no [SAMPLE] section found"};
    return report;
}

CSampleData& SampleByNumber(LoadedReport& report, int number) {
    std::string numbers;
    for (int i = 0; i < report.samples->GetSamplesCount(); ++i) {
        CSampleData* sample = report.samples->GetSample(i);
        if (sample->GetNumber() == number)
            return *sample;
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(sample->GetNumber());
    }
    throw ToolError{"'" + report.path + "' has no sample " + std::to_string(number) +
                        " (samples: " + numbers + ")",
                    kExitUsage};
}

} // namespace quillon::tool
