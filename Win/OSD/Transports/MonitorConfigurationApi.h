#pragma once
// The few functions of the Monitor Configuration API (dxva2) that the program uses, declared
// here (mingw-w64 ships no lowlevelmonitorconfigurationapi.h) and reached through one table of
// functions: the real dxva2 exports by default, a simulation in tests and in the demo.

#include <windows.h>

namespace Dxva2 {

constexpr size_t kPhysicalMonitorDescriptionSize = 128;

struct PHYSICAL_MONITOR {
    HANDLE hPhysicalMonitor;
    WCHAR szPhysicalMonitorDescription[kPhysicalMonitorDescriptionSize];
};

enum MC_VCP_CODE_TYPE { MC_MOMENTARY = 0, MC_SET_PARAMETER = 1 };

}  // namespace Dxva2

struct SMonitorConfigurationApi {
    BOOL(WINAPI* GetNumberOfPhysicalMonitorsFromHMONITOR)(HMONITOR, LPDWORD);
    BOOL(WINAPI* GetPhysicalMonitorsFromHMONITOR)(HMONITOR, DWORD, Dxva2::PHYSICAL_MONITOR*);
    BOOL(WINAPI* DestroyPhysicalMonitors)(DWORD, Dxva2::PHYSICAL_MONITOR*);
    BOOL(WINAPI* GetVCPFeatureAndVCPFeatureReply)(HANDLE, BYTE, Dxva2::MC_VCP_CODE_TYPE*, LPDWORD, LPDWORD);
    BOOL(WINAPI* SetVCPFeature)(HANDLE, BYTE, DWORD);
    BOOL(WINAPI* GetCapabilitiesStringLength)(HANDLE, LPDWORD);
    BOOL(WINAPI* CapabilitiesRequestAndCapabilitiesReply)(HANDLE, LPSTR, DWORD);
};

// The table in use.
const SMonitorConfigurationApi& MonitorConfigurationApi();
// Replaces the table; nullptr puts the real dxva2 back.
void SetMonitorConfigurationApi(const SMonitorConfigurationApi* api_I);
// The real dxva2 exports (each fails with ERROR_PROC_NOT_FOUND where dxva2 lacks it).
const SMonitorConfigurationApi& RealMonitorConfigurationApi();
