#pragma once

#include <quillon/file/DelimitFile.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace quillon::generate::testing {

// A report file as a tree of sections, read with the library's file layer: the test's own,
// deliberately simple view of what the generator wrote.
struct Section {
    std::string name;
    std::vector<std::vector<std::string>> rows; // data lines, split at tabs
    std::vector<Section> children;

    // The first value of the field line with this name, or "" when absent.
    std::string Field(const std::string& field) const {
        for (const auto& row : rows) {
            if (row.size() > 1 && row[0] == field) {
                return row[1];
            }
        }
        return "";
    }
    double Number(const std::string& field) const { return std::atof(Field(field).c_str()); }
    std::vector<const Section*> Children(const std::string& childName) const {
        std::vector<const Section*> found;
        for (const Section& child : children) {
            if (child.name == childName) {
                found.push_back(&child);
            }
        }
        return found;
    }
    const Section* Child(const std::string& childName) const {
        const auto found = Children(childName);
        return found.empty() ? nullptr : found.front();
    }
};

inline Section ReadReportTree(const std::string& path) {
    CDelimitFile file(path.c_str(), CFile::modeRead);
    Section root;
    std::vector<Section*> open{&root};
    std::string pending;
    CStringArray fields;
    int type = 0;
    while (file.ReadDelimitedString(fields, &type)) {
        switch (type) {
        case RECORD_PARAGRAPH:
            pending = fields[0].str();
            break;
        case RECORD_BLOCK_START:
            open.back()->children.push_back({pending, {}, {}});
            open.push_back(&open.back()->children.back());
            pending.clear();
            break;
        case RECORD_BLOCK_END:
            if (open.size() > 1) {
                open.pop_back();
            }
            break;
        case RECORD_FIELD: {
            std::vector<std::string> row;
            for (int i = 0; i < fields.GetSize(); ++i) {
                row.push_back(fields[i].str());
            }
            open.back()->rows.push_back(std::move(row));
            break;
        }
        default:
            break;
        }
    }
    return root;
}

} // namespace quillon::generate::testing
