#include <quillon/file/ReadReport.h>

namespace quillon {

void CReadReport::Add(Kind kind, std::string_view name, int64_t offset, int64_t line,
                      std::string_view detail) {
    if (entries.size() >= kMaxEntries) {
        ++omitted;
        return;
    }
    entries.push_back(Entry{kind, CString(name), offset, line, CString(detail)});
}

} // namespace quillon
