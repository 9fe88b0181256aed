#include <quillon/platform/ProcessInfo.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>

using namespace quillon;

namespace {

// Sets an environment variable for the life of the object, then puts the old value back.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old;
        setenv(name, value, 1);
        tzset();
    }
    ~ScopedEnvironment() {
        if (m_old)
            setenv(m_name.c_str(), m_old->c_str(), 1);
        else
            unsetenv(m_name.c_str());
        tzset();
    }

private:
    std::string m_name;
    std::optional<std::string> m_old;
};

} // namespace

TEST(ProcessInfoTest, ModulePathIsTheRunningExecutable) {
    const CString path = GetModuleFilePath();
    ASSERT_FALSE(path.IsEmpty());
    EXPECT_EQ(path[0], '/');
    EXPECT_LT(path.GetLength(), kMaxModulePath);
    EXPECT_TRUE(std::filesystem::equivalent(path.c_str(), "/proc/self/exe"));
}

TEST(ProcessInfoTest, LongLocalTimeWritesOutWeekdayMonthYearAndTime) {
    const ScopedEnvironment locale("LC_ALL", "C");
    const ScopedEnvironment zone("TZ", "UTC");
    const CString text = FormatLongLocalTime(1795262400); // 2026-11-21 12:00:00 UTC
    EXPECT_NE(text.Find("Saturday"), -1) << text.c_str();
    EXPECT_NE(text.Find("November"), -1) << text.c_str();
    EXPECT_NE(text.Find("2026"), -1) << text.c_str();
    EXPECT_NE(text.Find("12:00:00"), -1) << text.c_str();
}
