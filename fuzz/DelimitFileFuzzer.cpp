// The file layer on its own: splitting and classifying lines with any delimiters, the record
// reader over nested sections and blocks, the skipping moves, and the format splitting of the
// writer. The first byte chooses the delimiters and the mode, the rest is the file.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

using namespace quillon;

namespace {

constexpr int kMaxNesting = 64;

// Reads a section the way every section reader does, descending into each nested section.
void ReadSection(CDelimitFile* file, int depth) {
    CFileRecord record;
    record.AddField("Sample", 0);
    record.AddField("Name", 1);
    record.AddParagraph("SAMPLE", 0);
    record.AddParagraph("FUNCTION", 1);
    record.AddParagraph("PEAK", 2);
    record.ReadEach(
        file, [](const CStringArray& input, int) { CFileRecord::FieldValue(input); },
        [depth](CDelimitFile* nested, int) {
            if (depth < kMaxNesting)
                ReadSection(nested, depth + 1);
            else
                nested->MoveToNextSection();
        });
}

void ReadLines(CDelimitFile& file) {
    CStringArray fields;
    CStringArray pieces;
    int type = -1;
    while (file.ReadDelimitedString(fields, &type)) {
        fuzz::Require(type >= RECORD_FIELD && type <= RECORD_BLOCK_END);
        fuzz::Require((type == RECORD_EMPTY) == fields.IsEmpty());
        if (!fields.IsEmpty()) {
            CString rebuilt;
            file.SplitFieldTypes(pieces, fields[0]);
            file.RebuildFieldTypes(pieces, rebuilt);
            CStringArray again;
            file.ParseDelimitedString(rebuilt, again, &type);
        }
    }
}

// Moves through the file by the skipping operations, in the order the bytes of the file give.
void Skip(CDelimitFile& file, std::string_view moves) {
    CString line;
    for (size_t i = 0; i < moves.size() && file.ReadString(line); ++i) {
        switch (static_cast<unsigned char>(moves[i]) % 3) {
        case 0:
            file.SkipToNextSection();
            break;
        case 1:
            file.SkipToEndOfBlock();
            break;
        default:
            file.MoveToNextSection();
            break;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const unsigned options = data[0];
    const std::string_view text = fuzz::AsText(data + 1, size - 1);
    fuzz::MemoryFile memory(text);
    CDelimitFile file(memory.Stream());
    static const char* const kDelimiters[] = {"\t", ",", " \t", "\t;[", ""};
    file.SetDelimiters(kDelimiters[options % 5]);
    file.SetSkipMultipleDelimiters(static_cast<int>((options >> 3) & 1));
    switch ((options >> 4) % 3) {
    case 0:
        ReadLines(file);
        break;
    case 1:
        ReadSection(&file, 0);
        break;
    default:
        Skip(file, text);
        break;
    }
    return 0;
}
