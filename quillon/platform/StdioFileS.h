#pragma once

#include <quillon/platform/StdioFile.h>

namespace quillon {

// The checked stdio file on which the report file is built. It behaves as CStdioFile; it exists
// so that the report file's class hierarchy reads as the host suite has it.
class CStdioFileS : public CStdioFile {
    QUILLON_DECLARE_DYNAMIC(CStdioFileS)

public:
    CStdioFileS() = default;
    explicit CStdioFileS(FILE* stream) : CStdioFile(stream) {}
    CStdioFileS(const char* fileName, UINT openFlags) : CStdioFile(fileName, openFlags) {}
};

} // namespace quillon
