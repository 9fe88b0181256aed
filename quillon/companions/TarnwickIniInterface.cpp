#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/platform/HostHooks.h>

#include <quillon/platform/Numbers.h>
#include <quillon/platform/ProfileFile.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quillon {

namespace {

constexpr const char* kIniFileName = "Tarnwick.ini";
constexpr const char* kSection = "Hollbeck Neutral Losses";
// Values are read into a 260-byte buffer by the host's own programs; longer ones are cut the same
// way here, so every program of the suite sees the same list.
constexpr int kMaxValueLength = 259;

CString LossKey(int number) {
    CString key;
    key.Format("Loss %d", number);
    return key;
}

// One stored value back into a compound; lengths that do not fit the text give clipped or empty
// texts, never an error.
CCompoundData ParseLoss(const CString& value) {
    double mass = 0.0;
    int selectedFlag = 0;
    int nameLength = 0;
    int formulaLength = 0;
    // "mass,selected,name length,formula length,...": each number read in turn until one is
    // missing or not followed by its comma.
    std::string_view rest = value.view();
    size_t used = 0;
    mass = ParseDouble(rest, used);
    int* const counts[] = {&selectedFlag, &nameLength, &formulaLength};
    for (int* count : counts) {
        if (used == 0 || used >= rest.size() || rest[used] != ',')
            break;
        rest.remove_prefix(used + 1);
        *count = ParseInt(rest, used);
    }

    const long long nameStart =
        static_cast<long long>(value.GetLength()) - nameLength - formulaLength - 1;
    const int start = static_cast<int>(std::clamp<long long>(nameStart, 0, value.GetLength()));
    CCompoundData loss(mass, value.Right(formulaLength), value.Mid(start, nameLength));
    loss.SetSelected(selectedFlag == 1);
    return loss;
}

} // namespace

bool CTarnwickIniInterface::GetNeutralLosses(CCompounds& losses, bool selectedOnly) const {
    const CString path = IniPath();
    // The list is offered only from a file the user could also save it back to.
    std::FILE* probe = std::fopen(path.c_str(), "r+");
    if (!probe)
        return false;
    std::fclose(probe);

    CProfileFile ini(path.str());
    if (!ini.Load())
        return false;

    // The section is read once; keys are looked up as the file would be searched: without regard
    // to case, the first of equal keys winning.
    std::unordered_map<std::string, std::string> values;
    for (auto& [key, value] : ini.GetSectionValues(kSection)) {
        std::transform(key.begin(), key.end(), key.begin(),
                       [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
        values.emplace(std::move(key), std::move(value));
    }
    int number = 1;
    for (;; ++number) {
        CString key = LossKey(number);
        key.MakeLower();
        const auto found = values.find(key.str());
        if (found == values.end() || found->second.empty())
            break;
        const CString value(found->second);
        const CCompoundData loss = ParseLoss(value.Left(kMaxValueLength));
        if (!selectedOnly || loss.IsSelected())
            losses.Add(loss);
    }
    return number > 1;
}

void CTarnwickIniInterface::SetNeutralLosses(const CCompounds& losses) const {
    CProfileFile ini(IniPath().str());
    // A file that exists but cannot be read is not overwritten with a file holding only this list.
    if (!ini.Load())
        return;

    std::vector<std::string> lines;
    lines.reserve(static_cast<size_t>(losses.GetSize()));
    for (int i = 0; i < losses.GetSize(); ++i) {
        const CCompoundData loss = losses.GetAt(i);
        CString name;
        CString formula;
        loss.GetName(name);
        loss.GetFormula(formula);
        CString value;
        value.Format("%.4f,%d,%d,%d,%s,%s", loss.GetMass(), loss.IsSelected() ? 1 : 0,
                     name.GetLength(), formula.GetLength(), name.c_str(), formula.c_str());
        lines.push_back(LossKey(i + 1).str() + "=" + value.str());
    }
    ini.ReplaceSection(kSection, lines);
    // One save for the whole list: the file holds the old list or the new one, never a part.
    ini.Save();
}

CString CTarnwickIniInterface::IniPath() {
    return CString((std::filesystem::path(GetWorkingDirectory().str()) / kIniFileName).string());
}

} // namespace quillon
