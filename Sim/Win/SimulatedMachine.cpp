#include "SimulatedMachine.h"

#include <windows.h>
// windows.h first: dbt.h needs its types.
#include <dbt.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <set>

#include "CVirtualMpsseEngine.h"
#include "CVirtualSerialPort.h"
#include "DebugLog.h"
#include "Ftd2xxApi.h"
#include "SerialPort.h"
#include "SimulatedFtdiDriver.h"
#include "SimulatedMachineState.h"
#include "StringUtilities.h"

namespace {

using namespace SimulatedMachineState;

bool SameGuid(const GUID* left_I, const GUID& right_I) {
    return left_I != nullptr && std::memcmp(left_I, &right_I, sizeof(GUID)) == 0;
}

BOOL Fail(DWORD error_I) {
    SetLastError(error_I);
    return FALSE;
}

// ---- SetupAPI ----

HDEVINFO WINAPI SimGetClassDevs(const GUID* guid_I, PCSTR, HWND, DWORD flags_I) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const bool interfaces = (flags_I & DIGCF_DEVICEINTERFACE) != 0;
    ESetKind kind;
    if (!interfaces && SameGuid(guid_I, kMonitorSetupClassGuid)) {
        kind = ESetKind::Monitors;
    } else if (interfaces && SameGuid(guid_I, kHidInterfaceClassGuid)) {
        kind = ESetKind::HidInterfaces;
    } else if (interfaces && SameGuid(guid_I, kComPortInterfaceClassGuid)) {
        kind = ESetKind::ComPorts;
        ++gState->portListings;
    } else {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    return reinterpret_cast<HDEVINFO>(new SDeviceSet{kind});
}

BOOL WINAPI SimDestroyDeviceInfoList(HDEVINFO set_I) {
    delete reinterpret_cast<SDeviceSet*>(set_I);
    return TRUE;
}

size_t SetSize(const SDeviceSet& set_I) {
    switch (set_I.kind) {
        case ESetKind::Monitors: return gState->machine.monitors.size();
        case ESetKind::HidInterfaces: return gState->machine.hidInterfaces.size();
        case ESetKind::ComPorts: return gState->machine.comPorts.size();
    }
    return 0;
}

BOOL WINAPI SimEnumDeviceInfo(HDEVINFO set_I, DWORD index_I, PSP_DEVINFO_DATA device_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const auto& set = *reinterpret_cast<SDeviceSet*>(set_I);
    if (set.kind != ESetKind::Monitors || index_I >= SetSize(set)) {
        return Fail(ERROR_NO_MORE_ITEMS);
    }
    device_O->DevInst = index_I;
    return TRUE;
}

BOOL CopyText(const std::string& text_I, bool multiString_I, PBYTE buffer_O, DWORD size_I,
              PDWORD required_O) {
    std::string value = text_I;
    value.push_back('\0');
    if (multiString_I) {
        value.push_back('\0');
    }
    if (required_O != nullptr) {
        *required_O = static_cast<DWORD>(value.size());
    }
    if (buffer_O == nullptr || size_I < value.size()) {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(buffer_O, value.data(), value.size());
    return TRUE;
}

BOOL WINAPI SimGetDeviceRegistryProperty(HDEVINFO set_I, PSP_DEVINFO_DATA device_I, DWORD property_I,
                                         PDWORD type_O, PBYTE buffer_O, DWORD size_I, PDWORD required_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const auto& set = *reinterpret_cast<SDeviceSet*>(set_I);
    const size_t index = device_I->DevInst;
    if (index >= SetSize(set)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (type_O != nullptr) {
        *type_O = property_I == SPDRP_HARDWAREID ? REG_MULTI_SZ : REG_SZ;
    }
    if (set.kind == ESetKind::Monitors) {
        const SVirtualMonitor& monitor = gState->machine.monitors[index];
        if (property_I == SPDRP_HARDWAREID) {
            if (!monitor.hardwareIdReadable) {
                return Fail(ERROR_INVALID_DATA);
            }
            return CopyText(monitor.hardwareId, true, buffer_O, size_I, required_O);
        }
        if (property_I == SPDRP_DRIVER) {
            return CopyText(monitor.driverKey, false, buffer_O, size_I, required_O);
        }
    }
    if (set.kind == ESetKind::ComPorts && property_I == SPDRP_HARDWAREID) {
        return CopyText(gState->machine.comPorts[index].hardwareId, true, buffer_O, size_I, required_O);
    }
    return Fail(ERROR_INVALID_DATA);
}

HKEY NewKey(EKeyKind kind_I, size_t index_I) {
    const uintptr_t value = gState->nextKey;
    gState->nextKey += 0x10;
    gState->keys[value] = {kind_I, index_I};
    return reinterpret_cast<HKEY>(value);
}

HKEY WINAPI SimOpenDevRegKey(HDEVINFO set_I, PSP_DEVINFO_DATA device_I, DWORD, DWORD, DWORD, REGSAM) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const auto& set = *reinterpret_cast<SDeviceSet*>(set_I);
    if (device_I == nullptr || device_I->DevInst >= SetSize(set) || set.kind == ESetKind::HidInterfaces) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return reinterpret_cast<HKEY>(INVALID_HANDLE_VALUE);
    }
    return NewKey(set.kind == ESetKind::Monitors ? EKeyKind::Monitor : EKeyKind::ComPort, device_I->DevInst);
}

std::string InterfacePath(const SDeviceSet& set_I, size_t index_I) {
    if (set_I.kind == ESetKind::HidInterfaces) {
        return gState->machine.hidInterfaces[index_I].path;
    }
    return StringPrintf("\\\\?\\usb#vid_10c4&pid_ea60#%04zu#{86e0d1e0-8089-11d0-9ce4-08003e301f73}", index_I);
}

BOOL WINAPI SimEnumDeviceInterfaces(HDEVINFO set_I, PSP_DEVINFO_DATA, const GUID*, DWORD index_I,
                                    PSP_DEVICE_INTERFACE_DATA interface_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const auto& set = *reinterpret_cast<SDeviceSet*>(set_I);
    if (set.kind == ESetKind::Monitors || index_I >= SetSize(set)) {
        return Fail(ERROR_NO_MORE_ITEMS);
    }
    interface_O->Reserved = index_I + 1;
    return TRUE;
}

BOOL WINAPI SimGetDeviceInterfaceDetail(HDEVINFO set_I, PSP_DEVICE_INTERFACE_DATA interface_I,
                                        PSP_DEVICE_INTERFACE_DETAIL_DATA_A detail_O, DWORD size_I,
                                        PDWORD required_O, PSP_DEVINFO_DATA device_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    const auto& set = *reinterpret_cast<SDeviceSet*>(set_I);
    const size_t index = interface_I->Reserved - 1;
    if (interface_I->Reserved == 0 || index >= SetSize(set)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const std::string path = InterfacePath(set, index);
    const DWORD required =
        static_cast<DWORD>(offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath) + path.size() + 1);
    if (required_O != nullptr) {
        *required_O = required;
    }
    if (detail_O == nullptr || size_I < required) {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(detail_O->DevicePath, path.c_str(), path.size() + 1);
    if (device_O != nullptr) {
        device_O->DevInst = static_cast<DWORD>(index);
    }
    return TRUE;
}

// ---- Registry ----

LSTATUS WINAPI SimRegOpenKeyEx(HKEY parent_I, LPCSTR name_I, DWORD, REGSAM, PHKEY key_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (parent_I == HKEY_LOCAL_MACHINE && name_I != nullptr &&
        _stricmp(name_I, "HARDWARE\\DESCRIPTION\\System\\BIOS") == 0 &&
        !gState->machine.biosManufacturer.empty()) {
        *key_O = NewKey(EKeyKind::Bios, 0);
        return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS CopyValue(const ByteBuffer& value_I, DWORD type_I, LPDWORD type_O, LPBYTE data_O, LPDWORD size_IO) {
    if (type_O != nullptr) {
        *type_O = type_I;
    }
    if (size_IO == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const DWORD room = *size_IO;
    *size_IO = static_cast<DWORD>(value_I.size());
    if (data_O == nullptr) {
        return ERROR_SUCCESS;
    }
    if (room < value_I.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data_O, value_I.data(), value_I.size());
    return ERROR_SUCCESS;
}

ByteBuffer TextValue(const std::string& text_I) {
    ByteBuffer value(text_I.begin(), text_I.end());
    value.push_back(0x00);
    return value;
}

LSTATUS WINAPI SimRegQueryValueEx(HKEY key_I, LPCSTR name_I, LPDWORD, LPDWORD type_O, LPBYTE data_O,
                                  LPDWORD size_IO) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    auto it = gState->keys.find(reinterpret_cast<uintptr_t>(key_I));
    if (it == gState->keys.end() || name_I == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    const SKey& key = it->second;
    const std::string name = name_I;
    if (key.kind == EKeyKind::Monitor && name == "EDID") {
        const auto& edid = gState->machine.monitors[key.index].registryEdid;
        return edid ? CopyValue(*edid, REG_BINARY, type_O, data_O, size_IO) : ERROR_FILE_NOT_FOUND;
    }
    if (key.kind == EKeyKind::ComPort && name == "PortName") {
        return CopyValue(TextValue(gState->machine.comPorts[key.index].portName), REG_SZ, type_O, data_O,
                         size_IO);
    }
    if (key.kind == EKeyKind::Bios && name == "SystemManufacturer") {
        return CopyValue(TextValue(gState->machine.biosManufacturer), REG_SZ, type_O, data_O, size_IO);
    }
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS WINAPI SimRegCloseKey(HKEY key_I) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    return gState->keys.erase(reinterpret_cast<uintptr_t>(key_I)) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

// ---- The desktop ----

std::string GdiDeviceName(size_t index_I) {
    return StringPrintf("\\\\.\\DISPLAY%zu", index_I + 1);
}

BOOL WINAPI SimEnumDisplayMonitors(HDC, LPCRECT, MONITORENUMPROC proc_I, LPARAM data_I) {
    std::vector<HMONITOR> handles;
    {
        std::lock_guard<std::recursive_mutex> lock(gMutex);
        handles = gState->monitorHandles;
    }
    LONG left = 0;
    for (HMONITOR handle : handles) {
        if (handle == nullptr) {
            continue;
        }
        RECT rect{left, 0, left + 1920, 1080};
        left += 1920;
        if (!proc_I(handle, nullptr, &rect, data_I)) {
            break;
        }
    }
    return TRUE;
}

BOOL WINAPI SimGetMonitorInfo(HMONITOR monitor_I, LPMONITORINFO info_O) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    for (size_t i = 0; i < gState->monitorHandles.size(); ++i) {
        if (gState->monitorHandles[i] == monitor_I && monitor_I != nullptr) {
            info_O->rcMonitor = {static_cast<LONG>(1920 * i), 0, static_cast<LONG>(1920 * (i + 1)), 1080};
            info_O->rcWork = info_O->rcMonitor;
            info_O->dwFlags = i == 0 ? MONITORINFOF_PRIMARY : 0;
            if (info_O->cbSize >= sizeof(MONITORINFOEXA)) {
                const std::string device = GdiDeviceName(i);
                std::strncpy(reinterpret_cast<MONITORINFOEXA*>(info_O)->szDevice, device.c_str(),
                             CCHDEVICENAME - 1);
            }
            return TRUE;
        }
    }
    return Fail(ERROR_INVALID_MONITOR_HANDLE);
}

BOOL WINAPI SimEnumDisplayDevices(LPCSTR device_I, DWORD index_I, PDISPLAY_DEVICEA device_O, DWORD) {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (device_I == nullptr || index_I != 0 || device_O == nullptr) {
        return FALSE;
    }
    for (size_t i = 0; i < gState->machine.monitors.size(); ++i) {
        if (GdiDeviceName(i) != device_I) {
            continue;
        }
        const SVirtualMonitor& monitor = gState->machine.monitors[i];
        const std::string name = GdiDeviceName(i) + "\\Monitor0";
        const std::string id = monitor.hardwareId + "\\" + monitor.driverKey;
        std::strncpy(device_O->DeviceName, name.c_str(), sizeof(device_O->DeviceName) - 1);
        std::strncpy(device_O->DeviceString, "Generic PnP Monitor", sizeof(device_O->DeviceString) - 1);
        std::strncpy(device_O->DeviceID, id.c_str(), sizeof(device_O->DeviceID) - 1);
        device_O->StateFlags = DISPLAY_DEVICE_ACTIVE | DISPLAY_DEVICE_ATTACHED;
        return TRUE;
    }
    return FALSE;
}

HANDLE WINAPI SimCreateFile(LPCSTR path_I, DWORD access_I, DWORD share_I, LPSECURITY_ATTRIBUTES security_I,
                            DWORD disposition_I, DWORD flags_I, HANDLE template_I) {
    return CSimulatedHidApi::Table().CreateFileA(path_I, access_I, share_I, security_I, disposition_I,
                                                 flags_I, template_I);
}

BOOL WINAPI SimCloseHandle(HANDLE handle_I) {
    return CSimulatedHidApi::Table().CloseHandle(handle_I);
}

// ---- COM ports ----

// A COM port of the machine, found by name when it is opened.
class CSimulatedComPort : public ISerialPort {
public:
    ~CSimulatedComPort() override { Forget(); }
    bool Open(const std::string& name_I) override {
        std::lock_guard<std::recursive_mutex> lock(gMutex);
        Forget();
        for (const SVirtualComPort& port : gState->machine.comPorts) {
            if (port.portName == name_I && gState->unplugged.count(port.display.get()) == 0) {
                ++gState->portOpens;
                mLine = std::make_unique<CVirtualSerialPort>(port.display ? port.display : SilentDisplay());
                gState->openLines.emplace_back(mLine.get(), port.display.get());
                return mLine->Open(name_I);
            }
        }
        mLastError = ERROR_FILE_NOT_FOUND;
        return false;
    }
    void Close() override {
        if (mLine) {
            mLine->Close();
        }
    }
    bool IsOpen() const override { return mLine && mLine->IsOpen(); }
    void ClearErrors() override {}
    bool Purge() override { return mLine && mLine->Purge(); }
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override {
        written_O = 0;
        return mLine && mLine->Write(bytes_I, written_O);
    }
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override {
        data_O.clear();
        return mLine && mLine->Read(maxBytes_I, data_O);
    }
    uint32_t LastError() const override { return mLine ? mLine->LastError() : mLastError; }
    bool DeviceGone() const override { return mLine && mLine->DeviceGone(); }

private:
    void Forget() {
        std::lock_guard<std::recursive_mutex> lock(gMutex);
        if (gState != nullptr && mLine) {
            auto& lines = gState->openLines;
            lines.erase(std::remove_if(lines.begin(), lines.end(),
                                       [&](const auto& line) { return line.first == mLine.get(); }),
                        lines.end());
        }
    }

    // Something on the line that never answers.
    static std::shared_ptr<CVirtualDisplay> SilentDisplay() {
        auto display = VirtualMachine::MakeDisplay("canvas-12");
        display->Faults().SetRate(1.0, 1, {EFault::NoReply});
        return display;
    }

    std::unique_ptr<CVirtualSerialPort> mLine;
    uint32_t mLastError = 0;
};

std::unique_ptr<ISerialPort> SimCreateSerialPort() {
    return std::make_unique<CSimulatedComPort>();
}

const SDiscoverySystemApi kTable = {
    &SimGetClassDevs,
    &SimDestroyDeviceInfoList,
    &SimEnumDeviceInfo,
    &SimGetDeviceRegistryProperty,
    &SimOpenDevRegKey,
    &SimEnumDeviceInterfaces,
    &SimGetDeviceInterfaceDetail,
    &SimRegOpenKeyEx,
    &SimRegQueryValueEx,
    &SimRegCloseKey,
    &SimEnumDisplayMonitors,
    &SimGetMonitorInfo,
    &SimEnumDisplayDevices,
    &SimCreateFile,
    &SimCloseHandle,
    &SimCreateSerialPort,
};

}  // namespace

CSimulatedMachine::CSimulatedMachine(SVirtualMachine machine_I)
    : mMonitorConfiguration(std::make_shared<CVirtualMonitorConfiguration>()),
      mHid(std::make_unique<CSimulatedHidApi>()),
      mMca(std::make_unique<CSimulatedMonitorConfigurationApi>(mMonitorConfiguration)) {
    auto state = std::make_unique<SMachineState>();
    state->machine = std::move(machine_I);
    for (const SVirtualMonitor& monitor : state->machine.monitors) {
        HMONITOR handle = nullptr;
        if (monitor.onDesktop) {
            std::vector<std::shared_ptr<CVirtualDisplay>> physical;
            if (monitor.display) {
                physical.push_back(monitor.display);
            }
            handle =
                CSimulatedMonitorConfigurationApi::ToHMonitor(mMonitorConfiguration->AddMonitor(physical));
        }
        state->monitorHandles.push_back(handle);
    }
    for (const SVirtualHidInterface& hid : state->machine.hidInterfaces) {
        mHid->AddDevice(hid.path, hid.display ? std::make_shared<CVirtualHidDevice>(hid.display) : nullptr,
                        hid.exclusive, hid.vendorId, hid.productId);
        mHid->SetDeviceTraits(hid.path, hid.readWriteError, hid.featureReportLength);
    }
    for (const SVirtualFtdiBridge& bridge : state->machine.ftdiBridges) {
        state->bridges.push_back(std::make_unique<CVirtualMpsseEngine>(bridge.display));
        state->bridgeUse.emplace_back();
    }
    for (const SVirtualMonitor& monitor : state->machine.monitors) {
        if (monitor.ddcCiFails && monitor.display) {
            mMonitorConfiguration->SetUnreachable(monitor.display);
        }
    }
    {
        std::lock_guard<std::recursive_mutex> lock(gMutex);
        gState = state.release();
    }
    SetDiscoverySystemApi(&kTable);
    SetFtd2xxApi(&SimulatedFtdiDriver());
}

CSimulatedMachine::~CSimulatedMachine() {
    SetFtd2xxApi(nullptr);
    SetDiscoverySystemApi(nullptr);
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    delete gState;
    gState = nullptr;
}

const SVirtualMachine& CSimulatedMachine::Machine() const {
    return gState->machine;
}

HMONITOR CSimulatedMachine::MonitorHandle(size_t index_I) const {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    return index_I < gState->monitorHandles.size() ? gState->monitorHandles[index_I] : nullptr;
}

unsigned CSimulatedMachine::PortListings() const {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    return gState->portListings;
}

unsigned CSimulatedMachine::PortOpens() const {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    return gState->portOpens;
}

CSimulatedMachine::SFtdiUse CSimulatedMachine::FtdiUse(size_t index_I) const {
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    return index_I < gState->bridgeUse.size() ? gState->bridgeUse[index_I] : SFtdiUse{};
}

const SDiscoverySystemApi& CSimulatedMachine::Table() {
    return kTable;
}

void CSimulatedMachine::Play(const SDeskEvent& event_I) {
    using EKind = SDeskEvent::EKind;
    if (event_I.kind == EKind::MenuChange) {
        if (event_I.display) {
            event_I.display->SetValueFromMenu(event_I.code, event_I.value);
        }
        DLog("Simulated desk: a value is changed on the display's own menu\n");
        return;
    }
    const bool everyDisplay = event_I.kind == EKind::Sleep || event_I.kind == EKind::Wake;
    for (const auto& display : Machine().Displays()) {
        if (!everyDisplay && display != event_I.display) {
            continue;
        }
        if (event_I.kind == EKind::PowerCycle) {
            // Off: the cable might as well be out; on again, with what the firmware kept, and
            // deaf while it starts up.
            SetUnplugged(display, true);
            display->PowerCycle();
            display->AnswerNothingFor(kStartingUpAfterPowerOn);
            SetUnplugged(display, false);
        } else {
            SetUnplugged(display, event_I.kind == EKind::Unplug || event_I.kind == EKind::Sleep);
        }
    }
    DLog("Simulated desk: %s\n", event_I.kind == EKind::Unplug   ? "a display is unplugged"
                                 : event_I.kind == EKind::PlugIn ? "a display is plugged in"
                                 : event_I.kind == EKind::Sleep  ? "the computer sleeps"
                                 : event_I.kind == EKind::Wake   ? "the computer wakes"
                                                                 : "a display is switched off and on");
    switch (event_I.kind) {
        case EKind::Unplug:
        case EKind::PlugIn:
        case EKind::PowerCycle: PostMessageW(HWND_BROADCAST, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0); break;
        case EKind::Sleep: PostMessageW(HWND_BROADCAST, WM_POWERBROADCAST, PBT_APMSUSPEND, 0); break;
        case EKind::Wake: PostMessageW(HWND_BROADCAST, WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC, 0); break;
        case EKind::MenuChange: break;
    }
}

void CSimulatedMachine::SetUnplugged(const std::shared_ptr<CVirtualDisplay>& display_I, bool unplugged_I) {
    // Back in, a display whose DDC/CI the graphics driver never reached stays unreached.
    bool driverReaches = false;
    for (const SVirtualMonitor& monitor : Machine().monitors) {
        driverReaches = driverReaches || (monitor.display == display_I && !monitor.ddcCiFails);
    }
    if (unplugged_I || !driverReaches) {
        mMonitorConfiguration->SetUnreachable(display_I);
    } else {
        mMonitorConfiguration->SetReachable(display_I);
    }
    mMonitorConfiguration->Replug(display_I);  // the handles given out for it die either way
    for (const SVirtualHidInterface& hid : Machine().hidInterfaces) {
        if (hid.display == display_I) {
            mHid->SetUnplugged(hid.path, unplugged_I);
        }
    }
    std::lock_guard<std::recursive_mutex> lock(gMutex);
    if (!unplugged_I) {
        gState->unplugged.erase(display_I.get());
        return;
    }
    gState->unplugged.insert(display_I.get());
    for (const auto& line : gState->openLines) {
        if (line.second == display_I.get()) {
            line.first->SetUnplugged(true);
        }
    }
    for (auto it = gState->openBridges.begin(); it != gState->openBridges.end();) {
        if (gState->machine.ftdiBridges[it->second].display == display_I) {
            gState->deadBridgeHandles.insert(it->first);
            it = gState->openBridges.erase(it);
        } else {
            ++it;
        }
    }
}
