#include "MonitorConfigurationApi.h"

#include <atomic>

#include "SystemLibrary.h"

namespace {

// Stand-ins for exports that cannot be found: fail as the API fails.
BOOL WINAPI Missing2(HMONITOR, LPDWORD) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI Missing3(HMONITOR, DWORD, Dxva2::PHYSICAL_MONITOR*) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI MissingDestroy(DWORD, Dxva2::PHYSICAL_MONITOR*) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI MissingGet(HANDLE, BYTE, Dxva2::MC_VCP_CODE_TYPE*, LPDWORD, LPDWORD) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI MissingSet(HANDLE, BYTE, DWORD) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI MissingLength(HANDLE, LPDWORD) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}
BOOL WINAPI MissingCaps(HANDLE, LPSTR, DWORD) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return FALSE;
}

template <typename Function>
void Bind(HMODULE module_I, const char* name_I, Function& slot_O, Function missing_I) {
    FARPROC address = module_I != nullptr ? GetProcAddress(module_I, name_I) : nullptr;
    slot_O = address != nullptr ? reinterpret_cast<Function>(reinterpret_cast<void*>(address)) : missing_I;
}

SMonitorConfigurationApi LoadReal() {
    HMODULE dxva2 = LoadTrustedLibrary(L"dxva2.dll", ELibraryLocation::SystemOnly);
    SMonitorConfigurationApi api{};
    Bind(dxva2, "GetNumberOfPhysicalMonitorsFromHMONITOR", api.GetNumberOfPhysicalMonitorsFromHMONITOR,
         &Missing2);
    Bind(dxva2, "GetPhysicalMonitorsFromHMONITOR", api.GetPhysicalMonitorsFromHMONITOR, &Missing3);
    Bind(dxva2, "DestroyPhysicalMonitors", api.DestroyPhysicalMonitors, &MissingDestroy);
    Bind(dxva2, "GetVCPFeatureAndVCPFeatureReply", api.GetVCPFeatureAndVCPFeatureReply, &MissingGet);
    Bind(dxva2, "SetVCPFeature", api.SetVCPFeature, &MissingSet);
    Bind(dxva2, "GetCapabilitiesStringLength", api.GetCapabilitiesStringLength, &MissingLength);
    Bind(dxva2, "CapabilitiesRequestAndCapabilitiesReply", api.CapabilitiesRequestAndCapabilitiesReply,
         &MissingCaps);
    return api;
}

std::atomic<const SMonitorConfigurationApi*> gApi{nullptr};

}  // namespace

const SMonitorConfigurationApi& RealMonitorConfigurationApi() {
    static const SMonitorConfigurationApi real = LoadReal();
    return real;
}

const SMonitorConfigurationApi& MonitorConfigurationApi() {
    const SMonitorConfigurationApi* api = gApi.load();
    return api != nullptr ? *api : RealMonitorConfigurationApi();
}

void SetMonitorConfigurationApi(const SMonitorConfigurationApi* api_I) {
    gApi.store(api_I);
}
