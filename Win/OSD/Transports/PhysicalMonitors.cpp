#include "PhysicalMonitors.h"

#include "Assert.h"
#include "DebugLog.h"

std::vector<Dxva2::PHYSICAL_MONITOR> GetPhysicalMonitors(HMONITOR monitor_I) {
    const SMonitorConfigurationApi& api = MonitorConfigurationApi();
    DWORD count = 0;
    if (!api.GetNumberOfPhysicalMonitorsFromHMONITOR(monitor_I, &count)) {
        DLog("Could not get number of physical monitors; error: %i\n", static_cast<int>(GetLastError()));
        VLR_ASSERT_FAIL("Oops - Could not get number of physical monitors");
        return {};
    }
    if (count == 0) {
        DLog("Number of physical monitors is zero\n");
        VLR_ASSERT_FAIL("Oops - Number of physical monitors is zero");
        return {};
    }
    DLog("Number of physical monitors is: %i\n", static_cast<int>(count));
    std::vector<Dxva2::PHYSICAL_MONITOR> monitors(count);
    if (!api.GetPhysicalMonitorsFromHMONITOR(monitor_I, count, monitors.data())) {
        DLog("Could not get array of physical monitors\n");
        return {};
    }
    return monitors;
}
