#include <quillon/document/ReportSave.h>

#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/platform/AtomicFile.h>
#include <quillon/platform/FileException.h>

#include <cerrno>

namespace quillon {

void SaveReportAtomically(CSamples& samples, const std::string& readFrom,
                          const std::string& target) {
    CAtomicFile pending(target);
    {
        CDelimitFile in(readFrom.c_str(), CFile::modeRead);
        CDelimitFile out(pending.GetPath().c_str(), CFile::modeWrite | CFile::modeCreate);
        if (!samples.Write(&in, &out))
            throw CFileException(CFileException::genericException, EIO, target.c_str(), "save");
        out.Flush();
        out.Close();
    }
    pending.Commit();
}

} // namespace quillon
