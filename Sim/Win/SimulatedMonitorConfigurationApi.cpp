#include "SimulatedMonitorConfigurationApi.h"

#include <cwchar>

namespace {

std::shared_ptr<CVirtualMonitorConfiguration> gModel;

using Handle = CVirtualMonitorConfiguration::Handle;

Handle ToHandle(const void* handle_I) {
    return reinterpret_cast<Handle>(handle_I);
}

BOOL Result(bool ok_I, uint32_t error_I) {
    if (!ok_I) {
        SetLastError(error_I);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI GetNumberOfPhysicalMonitorsFromHMONITOR(HMONITOR monitor_I, LPDWORD count_O) {
    uint32_t count = 0;
    uint32_t error = 0;
    const bool ok = gModel && gModel->GetNumberOfPhysicalMonitors(ToHandle(monitor_I), count, error);
    if (ok && count_O != nullptr) {
        *count_O = count;
    }
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

BOOL WINAPI GetPhysicalMonitorsFromHMONITOR(HMONITOR monitor_I, DWORD size_I,
                                            Dxva2::PHYSICAL_MONITOR* monitors_O) {
    std::vector<CVirtualMonitorConfiguration::SPhysicalMonitor> monitors;
    uint32_t error = 0;
    const bool ok = gModel && gModel->GetPhysicalMonitors(ToHandle(monitor_I), size_I, monitors, error);
    if (ok) {
        for (size_t i = 0; i < monitors.size(); ++i) {
            monitors_O[i].hPhysicalMonitor = reinterpret_cast<HANDLE>(monitors[i].handle);
            std::wcsncpy(monitors_O[i].szPhysicalMonitorDescription, monitors[i].description.c_str(),
                         Dxva2::kPhysicalMonitorDescriptionSize - 1);
            monitors_O[i].szPhysicalMonitorDescription[Dxva2::kPhysicalMonitorDescriptionSize - 1] = L'\0';
        }
    }
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

BOOL WINAPI DestroyPhysicalMonitors(DWORD, Dxva2::PHYSICAL_MONITOR*) {
    return TRUE;
}

BOOL WINAPI GetVCPFeatureAndVCPFeatureReply(HANDLE monitor_I, BYTE code_I, Dxva2::MC_VCP_CODE_TYPE* type_O,
                                            LPDWORD current_O, LPDWORD maximum_O) {
    uint32_t type = 0;
    uint32_t current = 0;
    uint32_t maximum = 0;
    uint32_t error = 0;
    const bool ok =
        gModel && gModel->GetVCPFeature(ToHandle(monitor_I), code_I, type, current, maximum, error);
    if (ok) {
        if (type_O != nullptr) {
            *type_O = type == 0 ? Dxva2::MC_SET_PARAMETER : Dxva2::MC_MOMENTARY;
        }
        if (current_O != nullptr) {
            *current_O = current;
        }
        if (maximum_O != nullptr) {
            *maximum_O = maximum;
        }
    }
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

BOOL WINAPI SetVCPFeature(HANDLE monitor_I, BYTE code_I, DWORD value_I) {
    uint32_t error = 0;
    const bool ok = gModel && gModel->SetVCPFeature(ToHandle(monitor_I), code_I, value_I, error);
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

BOOL WINAPI GetCapabilitiesStringLength(HANDLE monitor_I, LPDWORD length_O) {
    uint32_t length = 0;
    uint32_t error = 0;
    const bool ok = gModel && gModel->GetCapabilitiesStringLength(ToHandle(monitor_I), length, error);
    if (ok && length_O != nullptr) {
        *length_O = length;
    }
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

BOOL WINAPI CapabilitiesRequestAndCapabilitiesReply(HANDLE monitor_I, LPSTR buffer_O, DWORD length_I) {
    uint32_t error = 0;
    const bool ok = gModel && gModel->CapabilitiesRequest(ToHandle(monitor_I), buffer_O, length_I, error);
    return Result(ok, gModel ? error : ERROR_INVALID_FUNCTION);
}

const SMonitorConfigurationApi kTable = {
    &GetNumberOfPhysicalMonitorsFromHMONITOR,
    &GetPhysicalMonitorsFromHMONITOR,
    &DestroyPhysicalMonitors,
    &GetVCPFeatureAndVCPFeatureReply,
    &SetVCPFeature,
    &GetCapabilitiesStringLength,
    &CapabilitiesRequestAndCapabilitiesReply,
};

}  // namespace

CSimulatedMonitorConfigurationApi::CSimulatedMonitorConfigurationApi(
    std::shared_ptr<CVirtualMonitorConfiguration> model_I)
    : mModel(std::move(model_I)) {
    gModel = mModel;
    SetMonitorConfigurationApi(&kTable);
}

CSimulatedMonitorConfigurationApi::~CSimulatedMonitorConfigurationApi() {
    SetMonitorConfigurationApi(nullptr);
    gModel.reset();
}

const SMonitorConfigurationApi& CSimulatedMonitorConfigurationApi::Table() {
    return kTable;
}
