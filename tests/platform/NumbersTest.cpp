#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/Numbers.h>

#include "support/Sanitizer.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

using namespace quillon;
using quillon::testing::ReadBytes;
using quillon::testing::TempFile;

namespace {

bool SameDouble(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

// The example batch read and written back; the closing comment (with its time) left out.
std::string RewrittenExample(const TempFile& out) {
    const std::string example =
        std::string(QUILLON_SOURCE_DIR) + "/examples/Chlorpromazine_HLM_batch.txt";
    CSamples samples;
    EXPECT_EQ(samples.Read(example.c_str()), 1);
    {
        CDelimitFile in(example.c_str(), CFile::modeRead);
        CDelimitFile written(out.c_str(), CFile::modeWrite | CFile::modeCreate);
        samples.Write(&in, &written);
    }
    std::string text = ReadBytes(out.Path());
    text.erase(text.rfind(";Metabolite sections updated by"));
    std::ostringstream values;
    values.precision(17);
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        CSampleData& sample = *samples.GetSample(i);
        values << sample.GetSubjectTime() << ' ' << sample.GetConcentration() << '\n';
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
            values << sample.GetMetabolite(m)->GetMzFound() << ' '
                   << sample.GetMetabolite(m)->GetPeakArea() << '\n';
    }
    return text + values.str();
}

} // namespace

// The C conversions' rules, checked against the C library itself (in the "C" locale) on many
// random and mutated texts.
TEST(Numbers, AgreeWithTheCConversions) {
    std::mt19937 random(20261122);
    const std::string alphabet = " \t+-0123456789..eExXpPabcfinINFtyAN,/()";
    const char* seeds[] = {
        "318.0957", "-14.0157", "1e-5",    "0x1p4",      "  +42",       "inf",
        "nan",      "1e400",    "-1e-400", "2147483648", "-2147483649", "99999999999999",
        "12,5",     ".5",       "5.",      "-.e1",       "0x",          "0x.8p1"};
    auto check = [](const std::string& text) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(SameDouble(ParseDouble(text.c_str()), std::atof(text.c_str())));
        errno = 0;
        const long wide = std::strtol(text.c_str(), nullptr, 10);
        if (errno == 0 && wide >= INT_MIN && wide <= INT_MAX)
            EXPECT_EQ(ParseInt(text.c_str()), std::atoi(text.c_str()));
        else
            EXPECT_EQ(ParseInt(text.c_str()), wide < 0 ? INT_MIN : INT_MAX);
    };
    for (const char* seed : seeds)
        check(seed);
    for (int n = 0; n < 20000; ++n) {
        std::string text;
        if (n % 3 == 2) {
            // A plain decimal of up to 20 digits, as reports write them.
            char plain[64];
            std::snprintf(plain, sizeof plain, "%.*f", static_cast<int>(random() % 12),
                          static_cast<double>(random()) * std::pow(10.0, random() % 18 - 9.0));
            text = plain;
        } else if (n % 2 == 0) {
            const int length = static_cast<int>(random() % 12);
            for (int i = 0; i < length; ++i)
                text += alphabet[random() % alphabet.size()];
        } else {
            text = seeds[random() % std::size(seeds)];
            const size_t at = random() % (text.size() + 1);
            text.insert(at, 1, alphabet[random() % alphabet.size()]);
        }
        check(text);
    }
    size_t used = 0;
    EXPECT_EQ(ParseDouble(std::string_view("12.5/7"), used), 12.5);
    EXPECT_EQ(used, 4u);
    EXPECT_EQ(ParseInt(std::string_view("  x"), used), 0);
    EXPECT_EQ(used, 0u);

    // A stored list keeps only its items that are whole finite numbers.
    std::vector<double> numbers{1.0};
    ParseNumberList(" 301.1, 317.2,x,12 mg,inf,, -1e2 ,", numbers);
    EXPECT_EQ(numbers, (std::vector<double>{301.1, 317.2, -100.0}));
    ParseNumberList("", numbers);
    EXPECT_TRUE(numbers.empty());
}

// A host that sets a locale with a decimal comma reads and writes reports exactly as in the "C"
// locale. (The locale is built for the test when the machine can; otherwise the test is skipped.)
TEST(Numbers, ReportsReadAndWriteTheSameUnderADecimalCommaLocale) {
    // The C library keeps a block of every locale it loads, which LeakSanitizer reports as a
    // leak at exit; the ordinary build runs this test.
    if (quillon::testing::kSanitized)
        GTEST_SKIP() << "loading a locale looks like a leak to LeakSanitizer";
    TempFile plain("copy.txt");
    const std::string expected = RewrittenExample(plain);

    const TempFile locales("unused");
    const std::string folder = locales.Folder().string();
    const std::string build =
        "localedef -i de_DE -f UTF-8 '" + folder + "/de_DE.UTF-8' 2>/dev/null";
    if (std::system(build.c_str()) == 0)
        ::setenv("LOCPATH", folder.c_str(), 1);
    const std::string previous = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        ::unsetenv("LOCPATH");
        GTEST_SKIP() << "no decimal-comma locale on this machine";
    }
    ASSERT_EQ(std::atof("1.5"), 1.0); // the locale is in force: the C function stops at "."
    TempFile comma("copy.txt");       // the same name: it is written into the report
    const std::string underComma = RewrittenExample(comma);
    std::setlocale(LC_ALL, previous.c_str());
    ::unsetenv("LOCPATH");
    EXPECT_TRUE(underComma == expected);
}
