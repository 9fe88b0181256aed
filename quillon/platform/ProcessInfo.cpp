#include <quillon/platform/ProcessInfo.h>

#include <clocale>
#include <langinfo.h>
#include <locale.h>
#include <string>
#include <unistd.h>

namespace quillon {

CString GetModuleFilePath() {
    char path[kMaxModulePath];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length <= 0)
        return CString();
    return CString(path, static_cast<int>(length));
}

namespace {

// The locale's date-and-time format with abbreviated weekday and month names written out, which
// is what distinguishes the long form from the locale's ordinary one.
std::string LongForm(const char* dateTimeFormat) {
    std::string format;
    for (const char* p = dateTimeFormat; *p != '\0'; ++p) {
        format += *p;
        if (*p != '%' || p[1] == '\0')
            continue;
        const char conversion = *++p;
        switch (conversion) {
        case 'a':
            format += 'A';
            break;
        case 'b':
        case 'h':
            format += 'B';
            break;
        default:
            format += conversion;
            break;
        }
    }
    return format;
}

} // namespace

CString FormatLongLocalTime(std::time_t moment) {
    std::tm local{};
    if (localtime_r(&moment, &local) == nullptr)
        return CString();

    // The user's locale comes from the environment; it is used for this call only, so the
    // process-wide locale stays as the host set it.
    locale_t userLocale = newlocale(LC_TIME_MASK, "", static_cast<locale_t>(0));
    if (userLocale == static_cast<locale_t>(0))
        userLocale = newlocale(LC_TIME_MASK, "C", static_cast<locale_t>(0));
    if (userLocale == static_cast<locale_t>(0))
        return CString();

    const std::string format = LongForm(nl_langinfo_l(D_T_FMT, userLocale));
    char text[256];
    const size_t length = strftime_l(text, sizeof(text), format.c_str(), &local, userLocale);
    freelocale(userLocale);
    return CString(text, static_cast<int>(length));
}

} // namespace quillon
