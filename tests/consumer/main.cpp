// Writes a small sectioned file and reads it back through the public header.
#include <quillon/quillon.h>

#include <cstdio>

using namespace quillon;

int main(int argc, char** argv) {
    if (argc < 2)
        return 2;
    {
        CDelimitFile out(argv[1], CFile::modeCreate | CFile::modeWrite);
        out.WriteSectionHeader("SAMPLE");
        out.WriteBlockStart();
        out.WriteRecord("%s%d", "Sample", 7);
        out.WriteBlockEnd();
    }
    CDelimitFile in(argv[1], CFile::modeRead);
    CFileRecord record;
    record.AddField("Sample", 1);
    CStringArray values;
    while (record.Read(&in)) {
        if (record.GetID() == 1)
            values.Add((*record.GetInput())[1]);
    }
    const bool ok = values.GetSize() == 1 && values[0] == CString("7");
    std::printf("%s\n", ok ? "consumer ok" : "consumer FAILED");
    return ok ? 0 : 1;
}
