#pragma once

#include "TempFile.h"

#include <quillon/file/DelimitFile.h>

#include <gtest/gtest.h>

#include <string>

namespace quillon::testing {

// Reads a section's block (the lines after its header, which the parent reader has consumed) into
// the record, from a file that holds the block and a line "AFTER"; returns the first line the
// record left unread ("AFTER" when it read its block exactly).
template <class Record>
CString ReadBlock(Record& record, const std::string& block) {
    TempFile file;
    file.Write(block + "AFTER\n");
    CDelimitFile input(file.c_str(), CFile::modeRead);
    EXPECT_EQ(record.Read(&input), 1);
    CString next;
    input.ReadString(next);
    return next;
}

} // namespace quillon::testing
