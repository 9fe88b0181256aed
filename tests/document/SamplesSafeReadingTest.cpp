// Reports that once lost samples silently or stalled the reader.
#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/FileException.h>

#include "support/Collect.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

using namespace quillon;
using quillon::testing::SampleNumbers;
using quillon::testing::TempFile;

namespace {

std::string Sample(int number, const std::string& header = "[SAMPLE]") {
    return header + "\n{\nSample\t" + std::to_string(number) + "\n}\n";
}

} // namespace

// A header the reader takes as a sample ("[SAMPLE] " with a trailing blank) is a sample for the
// writer too: the duplicate is dropped and every good sample kept, in the file as in memory.
TEST(SamplesSafeReading, ReaderAndWriterAgreeOnSampleHeaders) {
    TempFile input("in.txt");
    input.Write(Sample(1) + Sample(2, "[SAMPLE] ") + Sample(3, "[SAMPLE]\tnote"));
    CSamples samples;
    ASSERT_EQ(samples.Read(input.c_str()), 1);
    ASSERT_EQ(SampleNumbers(samples), (std::vector<int>{1, 2, 3}));
    samples.GetSample(1)->IsDuplicate(true);
    TempFile output("out.txt");
    {
        CDelimitFile in(input.c_str(), CFile::modeRead);
        CDelimitFile out(output.c_str(), CFile::modeWrite | CFile::modeCreate);
        ASSERT_EQ(samples.Write(&in, &out), 1);
    }
    EXPECT_EQ(SampleNumbers(samples), (std::vector<int>{1, 3}));
    CSamples written;
    ASSERT_EQ(written.Read(output.c_str()), 1);
    EXPECT_EQ(SampleNumbers(written), (std::vector<int>{1, 3}));
}

// Only regular files are read: a pipe without a writer, a device or a folder fail at once with
// a clear reason instead of blocking or growing one endless line.
TEST(SamplesSafeReading, OnlyRegularFilesAreOpened) {
    TempFile file("pipe");
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    CSamples samples;
    EXPECT_EQ(samples.Read(file.c_str()), 0);
    EXPECT_EQ(samples.Read("/dev/zero"), 0);
    EXPECT_EQ(samples.Read(file.Folder().c_str()), 0);
    try {
        CDelimitFile device("/dev/zero", CFile::modeRead);
        FAIL() << "a device was opened";
    } catch (const CFileException& error) {
        EXPECT_NE(std::string(error.what()).find("not a regular file"), std::string::npos);
    }
}
