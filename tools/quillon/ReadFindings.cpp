#include "ReadFindings.h"

#include <algorithm>

namespace quillon::tool {

namespace {

std::string Finding(const CReadReport::Entry& entry) {
    const std::string name = entry.name.str();
    const std::string detail = entry.detail.str();
    switch (entry.kind) {
    case CReadReport::UnknownSection:
        return "unknown section [" + name + "] skipped with its block";
    case CReadReport::StrayBlock:
        return "a block outside any section skipped";
    case CReadReport::StrayBlockEnd:
        return "a \"}\" closes no block";
    case CReadReport::StrayLine:
        return "a line outside any section (\"" + name + "\") passed over";
    case CReadReport::SampleError:
        return "a sample could not be read and was left out: " + detail;
    case CReadReport::OpenBlock:
        return "the block of [" + name + "] is left open at the end of the file";
    case CReadReport::BadNumber:
        return "\"" + name + "\" holds \"" + detail + "\", not a number: read as 0";
    case CReadReport::StrayRecord:
        return "a line that is no record of " +
               (name.empty() ? std::string("its data block") : "[" + name + "]") + " (\"" + detail +
               "\") passed over";
    case CReadReport::DuplicateSample:
        return "sample " + name + " appears again (the report holds it twice)";
    }
    return {};
}

} // namespace

std::vector<std::string> ReadFindings(const CReadReport& report) {
    // In the order of the file (a sample's open block is only known at its end).
    std::vector<const CReadReport::Entry*> entries;
    for (const CReadReport::Entry& entry : report.entries)
        entries.push_back(&entry);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto* a, const auto* b) { return a->line < b->line; });
    std::vector<std::string> findings;
    for (const CReadReport::Entry* entry : entries)
        findings.push_back("line " + std::to_string(entry->line) + ": " + Finding(*entry));
    if (report.omitted > 0)
        findings.push_back(std::to_string(report.omitted) + " more problems not listed");
    return findings;
}

} // namespace quillon::tool
