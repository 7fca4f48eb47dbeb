#pragma once
// Makes a CVirtualMonitorConfiguration the process's Monitor Configuration API for the
// lifetime of the object, so the real graphics-driver connector reaches virtual displays.

#include <memory>

#include "CVirtualMonitorConfiguration.h"
#include "MonitorConfigurationApi.h"

class CSimulatedMonitorConfigurationApi {
public:
    explicit CSimulatedMonitorConfigurationApi(std::shared_ptr<CVirtualMonitorConfiguration> model_I);
    ~CSimulatedMonitorConfigurationApi();
    CSimulatedMonitorConfigurationApi(const CSimulatedMonitorConfigurationApi&) = delete;
    CSimulatedMonitorConfigurationApi& operator=(const CSimulatedMonitorConfigurationApi&) = delete;

    // The table of simulated functions (to mix with real ones).
    static const SMonitorConfigurationApi& Table();
    static HMONITOR ToHMonitor(CVirtualMonitorConfiguration::Handle handle_I) {
        return reinterpret_cast<HMONITOR>(handle_I);
    }

private:
    std::shared_ptr<CVirtualMonitorConfiguration> mModel;
};
