// No number in a report makes the reader allocate more than a small multiple of the file's size:
// hostile reports are read in a child process whose address space is limited with setrlimit.

#include "ReportGenerator.h"

#include <quillon/quillon.h>

#include "support/ChildProcess.h"
#include "support/HostRecorder.h"
#include "support/Sanitizer.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>

#include <sys/resource.h>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

// The address space the process uses now, in bytes; 0 when it cannot be told.
size_t AddressSpaceInUse() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmSize:"))
            return std::stoull(line.substr(7)) * 1024;
    }
    return 0;
}

// Reads the report in a child process allowed the address space it uses already, plus a fixed
// allowance and a small multiple of the file's size. True when the report was read without a
// message and without an exception (a failed allocation inside the reader shows a message).
bool ReadsUnderMemoryLimit(const std::string& path, size_t fileSize) {
    constexpr size_t kAllowance = 16u << 20;
    constexpr size_t kPerByteOfFile = 8;
    const int failed = quillon::testing::RunInChild(false, [&] {
        const quillon::testing::HostRecorder host;
        const size_t inUse = AddressSpaceInUse();
        const rlim_t limit = inUse + kAllowance + kPerByteOfFile * fileSize;
        const rlimit memory{limit, limit};
        if (inUse == 0 || ::setrlimit(RLIMIT_AS, &memory) != 0)
            return true;
        try {
            CSamples samples;
            samples.Read(path.c_str());
        } catch (...) {
            return true;
        }
        return !host.messages.empty();
    });
    return failed == 0;
}

std::string SmallReport(const TempFile& folder) {
    generate::GeneratorOptions options;
    options.reportPath = (folder.Folder() / "generated.txt").string();
    options.iniPath = (folder.Folder() / "Tarnwick.ini").string();
    options.samples = 2;
    options.pointsPerTrace = 50;
    generate::GenerateBatch(options);
    return quillon::testing::ReadBytes(options.reportPath);
}

} // namespace

// A sample whose MS/MS rows name entries ever further out (90,000 apart), and whose correlation
// rows give each of 200 metabolites an entry of 99,999: a few kilobytes that would ask for millions
// of default records and texts if every row could open a gap of its own size.
std::string FarOutMSMSEntries() {
    std::string text = "[SAMPLE]\n{\nSample\t3\n[MSMS CORRELATION]\n{\n[METABOLITES]\n{\n";
    for (int row = 0; row < 200; ++row)
        text += std::to_string(row) + "\t1\t1\t1\t1\t0\t0\t0\t1\n";
    for (int row = 1; row <= 50; ++row)
        text += std::to_string(row * 90000) + "\t1\t1\t1\t1\t0\t0\t0\t1\n";
    text += "}\n[CORRELATION TABLE]\n{\n";
    for (int row = 0; row < 200; ++row)
        text += std::to_string(row) + "\t99999\t1\t1\t1\n";
    return text + "}\n}\n}\n";
}

TEST(BoundedMemoryTest, NoNumberInAReportMakesTheReaderAllocateWithoutBound) {
    if (quillon::testing::kSanitized)
        GTEST_SKIP() << "a sanitizer reserves more address space than any limit allows";
    TempFile folder;
    const std::string report = SmallReport(folder);
    const std::string huge = "2000000000";
    struct Case {
        const char* what;
        std::string text;
    };
    const Case cases[] = {
        {"the report itself", report},
        {"sample numbers of two billion",
         std::regex_replace(report, std::regex("\nSample\t[0-9]+"), "\nSample\t" + huge)},
        {"function, trace and peak numbers of two billion",
         std::regex_replace(report, std::regex("\n(Function|TraceNumber|Peak ID|PeakID)\t[0-9]+"),
                            "\n$1\t" + huge)},
        {"MS/MS entries of two billion",
         std::regex_replace(
             std::regex_replace(report, std::regex("\n0\t0\t"), "\n" + huge + "\t" + huge + "\t"),
             std::regex("\nParentEntry\t[0-9]+"), "\nParentEntry\t" + huge)},
        {"MS/MS and correlation entries that each row moves further out",
         report + FarOutMSMSEntries()},
        {"a line of four million empty fields",
         report + "[SAMPLE]\n{\nSample\t3\n" + std::string(4 << 20, '\t') + "\n}\n"},
    };
    for (const Case& hostile : cases) {
        SCOPED_TRACE(hostile.what);
        if (&hostile != &cases[0]) {
            ASSERT_NE(hostile.text, report) << "the case changes nothing";
        }
        const std::string path = (folder.Folder() / "hostile.txt").string();
        std::ofstream(path, std::ios::binary | std::ios::trunc) << hostile.text;
        EXPECT_TRUE(ReadsUnderMemoryLimit(path, hostile.text.size()));
    }
}
