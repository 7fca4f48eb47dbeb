#include "DiscoverySystemApi.h"

#include <atomic>

#include "Win32SerialPort.h"

const GUID kMonitorSetupClassGuid = {
    0x4D36E96E, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
const GUID kHidInterfaceClassGuid = {
    0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};
const GUID kComPortInterfaceClassGuid = {
    0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};

namespace {

std::unique_ptr<ISerialPort> CreateWin32SerialPort() {
    return std::make_unique<CWin32SerialPort>();
}

const SDiscoverySystemApi kReal = {
    &::SetupDiGetClassDevsA,
    &::SetupDiDestroyDeviceInfoList,
    &::SetupDiEnumDeviceInfo,
    &::SetupDiGetDeviceRegistryPropertyA,
    &::SetupDiOpenDevRegKey,
    &::SetupDiEnumDeviceInterfaces,
    &::SetupDiGetDeviceInterfaceDetailA,
    &::RegOpenKeyExA,
    &::RegQueryValueExA,
    &::RegCloseKey,
    &::EnumDisplayMonitors,
    &::GetMonitorInfoA,
    &::EnumDisplayDevicesA,
    &::CreateFileA,
    &::CloseHandle,
    &CreateWin32SerialPort,
};

std::atomic<const SDiscoverySystemApi*> gApi{nullptr};

}  // namespace

const SDiscoverySystemApi& RealDiscoverySystemApi() {
    return kReal;
}

const SDiscoverySystemApi& DiscoverySystemApi() {
    const SDiscoverySystemApi* api = gApi.load();
    return api != nullptr ? *api : kReal;
}

void SetDiscoverySystemApi(const SDiscoverySystemApi* api_I) {
    gApi.store(api_I);
}
