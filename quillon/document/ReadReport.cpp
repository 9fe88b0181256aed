#include <quillon/document/ReadReport.h>

#include <utility>

namespace quillon {

void CReadReport::Add(Kind kind, CString name, int64_t offset, CString detail) {
    if (entries.size() >= kMaxEntries) {
        ++omitted;
        return;
    }
    entries.push_back(Entry{kind, std::move(name), offset, std::move(detail)});
}

} // namespace quillon
