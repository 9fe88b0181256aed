#include <quillon/platform/ChartSettings.h>

namespace quillon {

namespace {

const CNeutralChartSettings kNeutralChartSettings;

// The one hook through which a host supplies its chart settings.
const CChartSettings* g_installedChartSettings = nullptr;

} // namespace

const CChartSettings& GetChartSettings() {
    return g_installedChartSettings ? *g_installedChartSettings : kNeutralChartSettings;
}

void SetChartSettings(const CChartSettings* settings) {
    g_installedChartSettings = settings;
}

} // namespace quillon
