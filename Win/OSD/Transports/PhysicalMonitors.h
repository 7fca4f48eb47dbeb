#pragma once
// The physical monitors behind one operating-system monitor handle.

#include <vector>

#include "MonitorConfigurationApi.h"

// Empty when there are none or the API failed (each case logged).
std::vector<Dxva2::PHYSICAL_MONITOR> GetPhysicalMonitors(HMONITOR monitor_I);
