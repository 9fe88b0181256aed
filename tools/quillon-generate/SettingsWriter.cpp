#include "SettingsWriter.h"

#include <quillon/platform/StdioFile.h>

#include <cstdio>

namespace quillon::generate {

int WriteNeutralLossSettings(const std::string& path, const CDrugModel& drug,
                             bool windowsLineEnds) {
    CStdioFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    const char* end = windowsLineEnds ? "\r\n" : "\n";
    auto line = [&](const std::string& text) {
        file.WriteString(text.c_str());
        file.WriteString(end);
    };
    line("; Neutral losses searched by the fragment analysis of the metabolite browser");
    line("[Hollbeck Neutral Losses]");
    int key = 0;
    for (const NeutralLossDefinition& loss : drug.NeutralLosses()) {
        const std::string& formula = loss.formulaText;
        char value[256];
        std::snprintf(value, sizeof value, "Loss %d=%.4f,%d,%d,%d,%s,%s", ++key,
                      loss.formula.MonoisotopicMass(), loss.selected ? 1 : 0,
                      static_cast<int>(loss.name.size()), static_cast<int>(formula.size()),
                      loss.name.c_str(), formula.c_str());
        line(value);
    }
    file.Close();
    return key;
}

} // namespace quillon::generate
