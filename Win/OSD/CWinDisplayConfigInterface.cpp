#include "CWinDisplayConfigInterface.h"

#include <algorithm>
#include <cstring>

#include "Assert.h"
#include "CEdidBuilder.h"
#include "CI2CConnectorFTDI.h"
#include "CI2CConnectorTI.h"
#include "CWinI2CConnectorDP.h"
#include "CWinVcpHIDConnector.h"
#include "Clock.h"
#include "DebugLog.h"
#include "DiscoverySystemApi.h"
#include "EdidText.h"
#include "LanguageProvider.h"
#include "ParallelWork.h"
#include "ProductFamilies.h"
#include "ResourceUtils.h"
#include "ScopedTimer.h"
#include "SerialPort.h"
#include "UiDisplayDelegate.h"
#include "WinStrings.h"
#include "WinUSBConnector.h"
#include "codes.h"

namespace {

constexpr size_t kPropertyBufferSize = 1024;
constexpr size_t kRegistryEdidSize = 512;
constexpr int kInitializeAttempts = 3;
constexpr uint32_t kRetryPauseMs = 1000;
constexpr char kNotSupported[] = "Not Supported";
constexpr char kInvalidSerialNumber[] = "Invalid SN";
constexpr char kMakersManufacturerKey[] = "HARDWARE\\DESCRIPTION\\System\\BIOS";

const SDiscoverySystemApi& Api() {
    return DiscoverySystemApi();
}

// A SetupAPI text property into a zeroed 1024-byte buffer; false on failure.
bool ReadTextProperty(HDEVINFO devices_I, SP_DEVINFO_DATA& device_I, DWORD property_I, std::string& text_O) {
    char buffer[kPropertyBufferSize] = {};
    if (!Api().SetupDiGetDeviceRegistryPropertyA(devices_I, &device_I, property_I, nullptr,
                                                 reinterpret_cast<PBYTE>(buffer), sizeof(buffer) - 1,
                                                 nullptr)) {
        return false;
    }
    // A multi-string hardware id: the first string is the most specific one.
    text_O.assign(buffer, strnlen(buffer, sizeof(buffer)));
    return true;
}

// A registry value of at most size_I bytes; false when the value is missing or too large.
bool ReadRegistryValue(HKEY key_I, const char* name_I, ByteBuffer& value_O, size_t size_I) {
    value_O.assign(size_I, 0x00);
    DWORD length = static_cast<DWORD>(size_I);
    DWORD type = 0;
    if (Api().RegQueryValueExA(key_I, name_I, nullptr, &type, value_O.data(), &length) != ERROR_SUCCESS) {
        return false;
    }
    return true;
}

std::string RegistryText(const ByteBuffer& value_I) {
    const auto end = std::find(value_I.begin(), value_I.end(), 0x00);
    return std::string(value_I.begin(), end);
}

enum class EDetail { Read, NoData, Failed };

// The device path of an interface (and its device, when asked for): the size first, then the
// detail record.
EDetail ReadInterfacePath(HDEVINFO devices_I, SP_DEVICE_INTERFACE_DATA& interface_I,
                          SP_DEVINFO_DATA* device_O, std::string& path_O) {
    DWORD required = 0;
    Api().SetupDiGetDeviceInterfaceDetailA(devices_I, &interface_I, nullptr, 0, &required, nullptr);
    if (required == 0) {
        return EDetail::NoData;
    }
    std::vector<uint8_t> storage(std::max<size_t>(required, sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A)), 0);
    auto* detail = reinterpret_cast<PSP_DEVICE_INTERFACE_DETAIL_DATA_A>(storage.data());
    detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
    if (!Api().SetupDiGetDeviceInterfaceDetailA(devices_I, &interface_I, detail,
                                                static_cast<DWORD>(storage.size()), nullptr, device_O)) {
        return EDetail::Failed;
    }
    const size_t pathSpace = storage.size() - offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
    path_O.assign(detail->DevicePath, strnlen(detail->DevicePath, pathSpace));
    return EDetail::Read;
}

}  // namespace

const std::shared_ptr<CWinDisplayConfigInterface>& CWinDisplayConfigInterface::Instance() {
    static const std::shared_ptr<CWinDisplayConfigInterface> instance = Create();
    return instance;
}

std::shared_ptr<CWinDisplayConfigInterface> CWinDisplayConfigInterface::Create() {
    std::shared_ptr<CWinDisplayConfigInterface> discovery(new CWinDisplayConfigInterface());
    discovery->SetInterfaceLanguage(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US));
    return discovery;
}

void CWinDisplayConfigInterface::SetInterfaceLanguage(LANGID languageId_I) {
    mLanguageId = languageId_I;
    mInterfaceLanguage = static_cast<int>(CLanguageProvider().LanguageFromId(languageId_I));
}

void CWinDisplayConfigInterface::Configure(const SSearchOptions& options_I) {
    SetConnectionMode(options_I.connectionMode);
    SetMatchByModel(options_I.matchByModel);
    SetStopOnDisplayPortError(options_I.stopOnGraphicsDriverError);
    SetInitializeAtOnce(options_I.atOnce);
    SetCapabilitiesCache(options_I.cache);
    if (options_I.interfaceLanguage != 0) {
        SetInterfaceLanguage(options_I.interfaceLanguage);
    }
}

std::vector<SFoundDisplay> CWinDisplayConfigInterface::Found() const {
    std::vector<SFoundDisplay> found;
    for (const SDisplayInfo& info : mDisplayInfos) {
        if (auto display = std::dynamic_pointer_cast<UiDisplayDelegate>(info.display)) {
            found.push_back({DisplayModelName(Narrow(info.ModelName())), Narrow(info.serialNumber),
                             ConnectorTypeName(display->GetConnector()->GetType()), display, true,
                             display->Identity()});
        }
    }
    return found;
}

std::vector<std::shared_ptr<CDisplay>> CWinDisplayConfigInterface::Displays() const {
    std::vector<std::shared_ptr<CDisplay>> displays;
    for (const SDisplayInfo& info : mDisplayInfos) {
        if (info.display) {
            displays.push_back(info.display);
        }
    }
    return displays;
}

void CWinDisplayConfigInterface::Clear() {
    mCurrentDisplayInfo = nullptr;
    mDisplayInfos.clear();
    mConnectorList.clear();
    mErrorText.clear();
    ForgetAhead();
}

void CWinDisplayConfigInterface::ForgetAhead() {
    // A display port opened ahead for a record the search served otherwise is let go.
    for (auto& entry : mAheadDisplayPort) {
        if (entry.second.connector) {
            entry.second.connector->Close();
        }
    }
    mAheadDisplayPort.clear();
    mAhead.clear();
    mAheadClaimed.clear();
    mAheadSerialLines.clear();
    mAheadPortSearchLines.clear();
    mAheadPorts.clear();
    mAheadPortSerials.clear();
    mPortsSearchedAhead = false;
    mReady = 0;
}

bool CWinDisplayConfigInterface::Init() {
    CScopedTimer timer("CWinDisplayConfigInterface::Init");
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    VLR_ASSERT(pEdidBldr);
    // A fresh search: what an earlier one found is let go (displays still in use keep their
    // own connectors alive).
    Clear();

    FindDisplays();
    DLog("CWinDisplayConfigInterface::Init - mDisplayInfos has %d items %s\n",
         static_cast<int>(mDisplayInfos.size()),
         mDisplayInfos.empty() ? "[No displays found!]" : "[Display(s) found!]");
    DLog("CWinDisplayConfigInterface::Init - mDisplayInfos size: %d\n",
         static_cast<int>(mDisplayInfos.size()));

    if (!mDisplayInfos.empty()) {
        mEnumerating = true;
        Api().EnumDisplayMonitors(nullptr, nullptr, &MonitorEnumProc, reinterpret_cast<LPARAM>(this));
        mEnumerating = false;
    }

    DLog("CWinDisplayConfigInterface::Init - looking for Vcp HID devices...\n");
    FindVcpHIDDevices();
    if (mInitializeAtOnce && mDisplayInfos.size() > 1) {
        InitializeAhead();
    }

    bool portsSearched = false;
    for (size_t index = 0; index < mDisplayInfos.size();) {
        SDisplayInfo& info = mDisplayInfos[index];
        DLog("CWinDisplayConfigInterface::Init: - displayInfo %s\n", Narrow(info.monitorName).c_str());

        const SRoutePlan plan = PlanFor(info);
        const ERouteResult result = Discovery::RunRoutePlan(plan, [&](ERoute route_I) {
            switch (route_I) {
                case ERoute::Hid: ServeByHid(info, plan); break;
                case ERoute::GraphicsDriver: {
                    bool failed = false;
                    std::string error;
                    if (!ServeByDisplayPort(info, failed, error)) {
                        mErrorText = Discovery::DisplayPortErrorText(info.productCode,
                                                                     Narrow(info.supportedName), error);
                        return ERouteResult::EndSearch;
                    }
                    break;
                }
                case ERoute::Legacy: ServeByLegacyPairing(info, plan, portsSearched); break;
            }
            return info.display ? ERouteResult::Served : ERouteResult::NotServed;
        });
        if (result == ERouteResult::EndSearch) {
            ReleaseUnusedConnectors();
            ForgetAhead();
            return false;
        }
        if (!info.display) {
            DLog("Erasing display %s\n", Narrow(info.monitorName).c_str());
            mDisplayInfos.erase(mDisplayInfos.begin() + static_cast<std::ptrdiff_t>(index));
            continue;  // the next record moved into this place
        }
        if (!mInitializeAtOnce || mAhead.empty()) {
            NoteReady();
        }
        ++index;
    }
    ReleaseUnusedConnectors();
    ForgetAhead();
    mErrorText.clear();
    return !mDisplayInfos.empty();
}

void CWinDisplayConfigInterface::ReleaseUnusedConnectors() {
    // What no display took is let go at once: an FTDI bridge would stay in MPSSE mode, a COM
    // port or HID handle held from other programs, until the next search.
    std::vector<std::shared_ptr<Connector>> used;
    for (const std::shared_ptr<Connector>& connector : mConnectorList) {
        if (IsTaken(connector)) {
            used.push_back(connector);
        } else {
            connector->Close();
        }
    }
    mConnectorList = std::move(used);
}

bool CWinDisplayConfigInterface::IsTaken(const std::shared_ptr<Connector>& connector_I) const {
    // A connector serves one display; with matching by model a second display of the same
    // family would otherwise be given the first one's channel.
    return std::any_of(mDisplayInfos.begin(), mDisplayInfos.end(), [&](const SDisplayInfo& info) {
        return info.display && info.display->GetConnector() == connector_I;
    });
}

SRoutePlan CWinDisplayConfigInterface::PlanFor(const SDisplayInfo& info_I) const {
    return Discovery::PlanRoutes(mConnectionMode, mMatchByModel, info_I.productCode, true);
}

void CWinDisplayConfigInterface::ServeByHid(SDisplayInfo& info_I, const SRoutePlan& plan_I) {
    DLog("CWinDisplayConfigInterface::Init: - trying to create a Vcp HID supported tablet...\n");
    const std::string serial = Narrow(info_I.serialNumber);
    const bool byModel = plan_I.hidByModel;
    // The interface that reports the display's own serial number first, so that two displays
    // of one family each get their own; only then any interface by model.
    const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
        mConnectorList.size(),
        [&](size_t i_I) {
            return mConnectorList[i_I]->GetType() == eConnectorHID && !IsTaken(mConnectorList[i_I]);
        },
        [&](size_t i_I) {
            EmitAheadSerialLines(*mConnectorList[i_I]);
            return mConnectorList[i_I]->SerialNumber(-1);
        },
        serial, byModel);
    if (chosen) {
        info_I.display = CreateDisplay(info_I, mConnectorList[*chosen]);
    }
}

bool CWinDisplayConfigInterface::ServeByDisplayPort(SDisplayInfo& info_I, bool& failed_O,
                                                    std::string& error_O) {
    DLog("CWinDisplayConfigInterface::Init: - trying to create a DP supported tablet...\n");
    info_I.owner = mRecordOwner;
    if (info_I.monitor == nullptr) {
        // The monitor may have been attached after the enumeration; look once more.
        const auto index = static_cast<int>(&info_I - mDisplayInfos.data());
        MatchMonitorHandle(index);
    }
    std::shared_ptr<CWinI2CConnectorDP> connector;
    bool opened = false;
    if (auto ahead = mAheadDisplayPort.find(info_I.deviceID);
        ahead != mAheadDisplayPort.end() && ahead->second.monitor == info_I.monitor) {
        connector = ahead->second.connector;
        opened = ahead->second.opened;
        DebugLog::CHeldLines::Emit(ahead->second.lines);
        mAheadDisplayPort.erase(ahead);
    } else {
        connector = std::make_shared<CWinI2CConnectorDP>();
        opened = connector->Open(info_I);
    }
    std::shared_ptr<CDisplay> display;
    if (opened) {
        display = CreateDisplay(info_I, connector);
    }
    if (display) {
        info_I.display = display;
        return true;
    }
    DLog(
        "CWinDisplayConfigInterface::Init: - Failed to init with CWinI2CConnectorDP; reverting to legacy "
        "connect...\n");
    failed_O = true;
    error_O = connector->LastCapabilitiesError();
    return !(mStopOnDisplayPortError && !error_O.empty());
}

void CWinDisplayConfigInterface::ServeByLegacyPairing(SDisplayInfo& info_I, const SRoutePlan& plan_I,
                                                      bool& portsSearched_IO) {
    DLog("CWinDisplayConfigInterface::Init: - Process non-DP supported tablets...\n");
    if (!portsSearched_IO) {
        portsSearched_IO = true;
        if (mPortsSearchedAhead) {
            DebugLog::CHeldLines::Emit(mAheadPortSearchLines);
        } else {
            FindSerialPorts();
        }
        DLog("CWinDisplayConfigInterface::Init - mConnectorList has %d items\n",
             static_cast<int>(mConnectorList.size()));
    }
    VLR_ASSERT(!mConnectorList.empty());
    const std::string serial = Narrow(info_I.serialNumber);
    DLog("CWinDisplayConfigInterface::Init iter->S/N %s\n", serial.c_str());
    DLog("CWinDisplayConfigInterface::Init: - mConnectorList.size: %u\n",
         static_cast<unsigned>(mConnectorList.size()));
    DLog("CWinDisplayConfigInterface::Init: - trolling for serial numbers...\n");
    const unsigned expectedType = plan_I.expectedLegacyType;
    const std::string monitorName = Narrow(info_I.monitorName);
    for (const std::shared_ptr<Connector>& connector : mConnectorList) {
        if (IsTaken(connector)) {
            continue;
        }
        EmitAheadSerialLines(*connector);
        const std::string connectorSerial = connector->SerialNumber(-1);
        DLog("CWinDisplayConfigInterface::Init conn->S/N %s\n",
             connectorSerial.empty() ? "WARNING: SERIAL NUMBER NOT FOUND!" : connectorSerial.c_str());
        bool chosen = Discovery::SameSerialNumber(connectorSerial, serial);
        if (!chosen && expectedType != Discovery::kNoConnectorType) {
            chosen = connector->GetType() == expectedType && connector->MonitorName() == monitorName;
        }
        if (chosen) {
            DLog("CWinDisplayConfigInterface::Init S/N match - creating Display for ser# %s, [%s]\n",
                 serial.c_str(), monitorName.c_str());
            info_I.display = CreateDisplay(info_I, connector);
            return;
        }
    }
}

void CWinDisplayConfigInterface::FindDisplays() {
    CScopedTimer timer("CWinDisplayConfigInterface::FindDisplays");
    DLog("CWinDisplayConfigInterface::FindDisplays\n");
    HDEVINFO devices = Api().SetupDiGetClassDevsA(&kMonitorSetupClassGuid, nullptr, nullptr, DIGCF_PRESENT);
    if (devices == INVALID_HANDLE_VALUE) {
        DLog("CWinDisplayConfigInterface::FindDisplays: SetupDiGetClassDevsA failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return;
    }
    const size_t before = mDisplayInfos.size();
    GetMonitorIDs(devices);
    DLog("CWinDisplayConfigInterface::FindDisplays: found %d displays\n",
         static_cast<int>(mDisplayInfos.size() - before));
    Api().SetupDiDestroyDeviceInfoList(devices);
}

void CWinDisplayConfigInterface::GetMonitorIDs(HDEVINFO devices_I) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetMonitorIDs");
    for (DWORD index = 0; GetNextMonitorID(devices_I, index); ++index) {
    }
}

bool CWinDisplayConfigInterface::GetNextMonitorID(HDEVINFO devices_I, DWORD index_I) {
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    if (!Api().SetupDiEnumDeviceInfo(devices_I, index_I, &device)) {
        return false;
    }
    DLog("GetNextMonitorID looking at index: %d\n", static_cast<int>(index_I));
    std::string hardwareId;
    if (!ReadTextProperty(devices_I, device, SPDRP_HARDWAREID, hardwareId)) {
        DLog("GetNextMonitorID SetupDiGetDeviceRegistryPropertyA failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return true;
    }
    DLog("GetNextMonitorID deviceName: %s\n", hardwareId.c_str());
    if (hardwareId.size() < 4) {
        return true;
    }
    const std::string shortName = Discovery::ShortNameFromHardwareId(hardwareId);
    if (shortName.empty()) {
        DLog("GetNextMonitorID couldn't find \\\\VLR\n");
        return true;
    }
    const int32_t tabletId = CEdidBuilder::Instance()->LookupByEDID(shortName);
    std::wstring supportedName;
    if (tabletId != -1) {
        const uint16_t productId = TabletProductId(static_cast<TabletId>(tabletId));
        supportedName = GroupString("2000", productId);
        if (!supportedName.empty()) {
            const std::wstring modelNumber = GroupString("2101", productId);
            DLog("GetNextMonitorID model number: %s\n", Narrow(modelNumber).c_str());
        }
    }
    if (supportedName.empty()) {
        DLog("GetNextMonitorID couldn't supportedName for shortName: %s\n", shortName.c_str());
        return true;
    }
    SDisplayInfo info;
    info.supportedName = supportedName;
    GetSerialNumAndName(devices_I, device, hardwareId, info);
    mDisplayInfos.push_back(std::move(info));
    return true;
}

std::wstring CWinDisplayConfigInterface::GroupString(const char* group_I, uint16_t productId_I) const {
    return LoadGroupString(group_I, productId_I, mLanguageId);
}

void CWinDisplayConfigInterface::GetSerialNumAndName(HDEVINFO devices_I, SP_DEVINFO_DATA& device_I,
                                                     const std::string& hardwareId_I, SDisplayInfo& info_O) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetSerialNumAndName");
    info_O.edid.assign(kRegistryEdidSize, 0x00);
    HKEY key = Api().SetupDiOpenDevRegKey(devices_I, &device_I, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE || key == nullptr) {
        DLog("SetupDiOpenDevRegKey failed 0x%X\n", static_cast<unsigned>(GetLastError()));
    } else {
        ByteBuffer edid;
        if (ReadRegistryValue(key, "EDID", edid, kRegistryEdidSize)) {
            info_O.edid = std::move(edid);
        } else {
            DLog("CWinDisplayConfigInterface::GetSerialNumAndName: no readable EDID value\n");
        }
        Api().RegCloseKey(key);
    }

    std::string serial = Edid::DescriptorText(info_O.edid, Edid::kTagSerialNumber);
    if (serial.empty()) {
        DLog("CWinDisplayConfigInterface::GetSerialNumAndName find serialNumber error\n");
        serial = kInvalidSerialNumber;
    } else {
        DLog("CWinDisplayConfigInterface::GetSerialNumAndName serialNumber %s\n", serial.c_str());
    }
    const std::string name = Edid::DescriptorText(info_O.edid, Edid::kTagMonitorName);
    if (name.empty()) {
        DLog("CWinDisplayConfigInterface::GetSerialNumAndName find monitor name error\n");
    } else {
        DLog("CWinDisplayConfigInterface::GetSerialNumAndName monitor name %s\n", name.c_str());
    }
    info_O.serialNumber = Widen(serial);
    info_O.monitorName = Widen(name);

    std::string driverKey;
    if (!ReadTextProperty(devices_I, device_I, SPDRP_DRIVER, driverKey)) {
        DLog(
            "CWinDisplayConfigInterface::GetSerialNumAndName SetupDiGetDeviceRegistryPropertyA failed 0x%X\n",
            static_cast<unsigned>(GetLastError()));
    }
    const std::string deviceId = hardwareId_I + "\\" + driverKey;
    info_O.deviceID = Widen(deviceId);
    info_O.productCode = Discovery::ProductCodeFromDeviceId(deviceId);
}

bool CWinDisplayConfigInterface::MatchMonitorHandle(int index_I) {
    // The index counts from 0 and the check from 1: any index of a record passes.
    const bool inRange = index_I + 1 >= 0 && index_I + 1 <= static_cast<int>(mDisplayInfos.size());
    VLR_ASSERT_AS(inRange, "SRange(0, (int) mDisplayInfos.size()).Contains(index_I + 1)");
    if (index_I < 0 || static_cast<size_t>(index_I) >= mDisplayInfos.size()) {
        return false;
    }
    mCurrentDisplayInfo = &mDisplayInfos[static_cast<size_t>(index_I)];
    Api().EnumDisplayMonitors(nullptr, nullptr, &MonitorEnumProc, reinterpret_cast<LPARAM>(this));
    const bool matched = mCurrentDisplayInfo != nullptr && mCurrentDisplayInfo->monitor != nullptr;
    mCurrentDisplayInfo = nullptr;
    return matched;
}

BOOL CALLBACK CWinDisplayConfigInterface::MonitorEnumProc(HMONITOR monitor_I, HDC, LPRECT, LPARAM self_I) {
    CScopedTimer timer("CWinDisplayConfigInterface::MonitorEnumProc");
    auto* self = reinterpret_cast<CWinDisplayConfigInterface*>(self_I);
    MONITORINFOEXA monitorInfo{};
    monitorInfo.cbSize = sizeof(monitorInfo);
    if (!Api().GetMonitorInfoA(monitor_I, reinterpret_cast<LPMONITORINFO>(&monitorInfo))) {
        DLog("CWinDisplayConfigInterface::MonitorEnumProc Couldn't get monitor info\n");
        self->mCurrentDisplayInfo = nullptr;
        return FALSE;
    }
    DISPLAY_DEVICEA device{};
    device.cb = sizeof(device);
    std::string deviceId;
    if (Api().EnumDisplayDevicesA(monitorInfo.szDevice, 0, &device, 0)) {
        deviceId.assign(device.DeviceID, strnlen(device.DeviceID, sizeof(device.DeviceID)));
    }
    DLog("CWinDisplayConfigInterface::MonitorEnumProc looking at deviceid %s\n", deviceId.c_str());

    if (!self->mEnumerating) {
        SDisplayInfo& current = self->CurrentDisplayInfo();
        DLog("CWinDisplayConfigInterface::MonitorEnumProc trying to match with %s\n",
             Narrow(current.deviceID).c_str());
        VLR_ASSERT(!self->CurrentDisplayInfo().deviceID.empty());
        if (deviceId.empty()) {
            DLog("CWinDisplayConfigInterface::MonitorEnumProc No monitor source\n");
            return FALSE;
        }
        if (Discovery::SameDeviceId(deviceId, Narrow(current.deviceID))) {
            current.monitor = monitor_I;
            DLog("CWinDisplayConfigInterface::MonitorEnumProc Match!\n");
            return FALSE;
        }
        return TRUE;
    }
    for (SDisplayInfo& info : self->mDisplayInfos) {
        DLog("CWinDisplayConfigInterface::MonitorEnumProc trying to match with %s\n",
             Narrow(info.deviceID).c_str());
        if (!deviceId.empty() && Discovery::SameDeviceId(deviceId, Narrow(info.deviceID))) {
            info.monitor = monitor_I;
            break;
        }
    }
    return TRUE;  // visit every monitor
}

void CWinDisplayConfigInterface::FindVcpHIDDevices() {
    HDEVINFO devices = Api().SetupDiGetClassDevsA(&kHidInterfaceClassGuid, nullptr, nullptr,
                                                  DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (devices == INVALID_HANDLE_VALUE) {
        DLog("FindVcpHIDDevices: SetupDiGetClassDevsA error: %i\n", static_cast<int>(GetLastError()));
        return;
    }
    SP_DEVICE_INTERFACE_DATA interfaceData{};
    interfaceData.cbSize = sizeof(interfaceData);
    for (DWORD index = 0;
         Api().SetupDiEnumDeviceInterfaces(devices, nullptr, &kHidInterfaceClassGuid, index, &interfaceData);
         ++index) {
        std::string path;
        if (ReadInterfacePath(devices, interfaceData, nullptr, path) != EDetail::Read) {
            DLog("FindVcpHIDDevices: SetupDiGetDeviceInterfaceDetailA error: %i\n",
                 static_cast<int>(GetLastError()));
            continue;
        }
        if (!OpenDevice(path)) {
            DLog("FindVcpHIDDevices: OpenDevice error: [%i] on device: %s\n",
                 static_cast<int>(GetLastError()), path.c_str());
        }
    }
    Api().SetupDiDestroyDeviceInfoList(devices);
}

bool CWinDisplayConfigInterface::OpenDevice(const std::string& devicePath_I) {
    VLR_ASSERT_AS(!devicePath_I.empty(), "Zero-length instance path!");
    if (devicePath_I.empty()) {
        return false;
    }
    HANDLE device = CWinVcpHIDConnector::OpenFeatureHandle(Api().CreateFileA, devicePath_I);
    if (device == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        DLog("OpenDevice: CreateFile error: [%i]; Device: %s appears to be opened exclusively.\n\n",
             static_cast<int>(error), devicePath_I.c_str());
        SetLastError(error);
        return false;
    }
    auto connector = std::make_shared<CWinVcpHIDConnector>();
    connector->AdoptDevice(device);
    if (!connector->AnswersAsVcpDevice()) {
        // Not an error: most HID devices are not display controls.
        DLog("FindVcpHIDDevices: not a VCP control interface: %s\n", devicePath_I.c_str());
        return true;
    }
    DLog("FindVcpHIDDevices: adding VCP HID device: %s\n", devicePath_I.c_str());
    mConnectorList.push_back(std::move(connector));
    return true;
}

void CWinDisplayConfigInterface::FindSerialPorts() {
    CScopedTimer timer("CWinDisplayConfigInterface::FindSerialPorts");
    DLog("CWinDisplayConfigInterface::FindSerialPorts\n");
    DLog("CWinDisplayConfigInterface::FindSerialPorts - looking for COMPORT devices...\n");
    HDEVINFO ports = Api().SetupDiGetClassDevsA(&kComPortInterfaceClassGuid, nullptr, nullptr,
                                                DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (ports != INVALID_HANDLE_VALUE) {
        for (DWORD index = 0;; ++index) {
            DLog("CWinDisplayConfigInterface::FindSerialPorts - looking for device %i ...\n",
                 static_cast<int>(index));
            SP_DEVINFO_DATA device{};
            device.cbSize = sizeof(device);
            const std::string deviceId = GetNextDeviceID(ports, index, device);
            if (deviceId.empty()) {
                DLog("CWinDisplayConfigInterface::FindSerialPorts: no device found\n");
                break;
            }
            if (deviceId == kNotSupported) {
                continue;
            }
            DLog("CWinDisplayConfigInterface::FindSerialPorts: deviceid: %s\n", deviceId.c_str());
            GetPortNum(ports, device);
        }
        Api().SetupDiDestroyDeviceInfoList(ports);
    }

    AddBridges<CI2CConnectorFTDI>(
        "FTDI", "CWinDisplayConfigInterface::FindSerialPorts - looking for I2C-FTDI devices...\n");
    AddBridges<CI2CConnectorTI>(
        "TI", "CWinDisplayConfigInterface::FindSerialPorts - looking for  I2C-TI devices...\n");
    DLog("CWinDisplayConfigInterface::FindSerialPorts: ports found: %d\n",
         static_cast<int>(mConnectorList.size()));
}

template <typename Bridge>
void CWinDisplayConfigInterface::AddBridges(const char* kind_I, const char* lookingFor_I) {
    DLog("%s", lookingFor_I);
    const int count = Bridge::DeviceCount();
    DLog("CWinDisplayConfigInterface::FindSerialPorts: %i %s devices found...\n", count, kind_I);
    for (int index = 0; index < count; ++index) {
        auto connector = std::make_shared<Bridge>();
        if (connector->Open(static_cast<int32_t>(index))) {
            DLog("CWinDisplayConfigInterface::FindSerialPorts: opened connection (%s) for deviceIdx: %i\n",
                 kind_I, index);
            mConnectorList.push_back(std::move(connector));
        } else {
            DLog(
                "CWinDisplayConfigInterface::FindSerialPorts: connection failed for deviceIdx: %i, not "
                "adding (%s)\n",
                index, kind_I);
        }
    }
}

std::string CWinDisplayConfigInterface::GetNextDeviceID(HDEVINFO ports_I, DWORD index_I,
                                                        SP_DEVINFO_DATA& device_O) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetNextDeviceID");
    SP_DEVICE_INTERFACE_DATA interfaceData{};
    interfaceData.cbSize = sizeof(interfaceData);
    if (!Api().SetupDiEnumDeviceInterfaces(ports_I, nullptr, &kComPortInterfaceClassGuid, index_I,
                                           &interfaceData)) {
        DLog("GetNextDeviceID SetupDiEnumDeviceInterfaces failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return {};
    }
    std::string path;
    switch (ReadInterfacePath(ports_I, interfaceData, &device_O, path)) {
        case EDetail::NoData: DLog("GetNextDeviceID no functionClassDeviceData\n"); return kNotSupported;
        case EDetail::Failed:
            DLog("GetNextDeviceID SetupDiGetDeviceInterfaceDetailA failed 0x%X\n",
                 static_cast<unsigned>(GetLastError()));
            return kNotSupported;
        case EDetail::Read: break;
    }
    std::string hardwareId;
    if (!ReadTextProperty(ports_I, device_O, SPDRP_HARDWAREID, hardwareId)) {
        DLog("GetNextDeviceID SetupDiGetDeviceRegistryPropertyA failed 0x%X\n",
             static_cast<unsigned>(GetLastError()));
        return kNotSupported;
    }
    DLog("GetNextDeviceID deviceName: %s\n", hardwareId.c_str());
    switch (Discovery::ClassifyPortHardwareId(hardwareId)) {
        case Discovery::EPortKind::FtdiVirtualComPort:
            DLog("GetNextDeviceID found FTDI\\\\COMPORT&VID_0403&PID_6014 (case-insensitive)\n");
            return hardwareId;
        case Discovery::EPortKind::SiliconLabsBridge: return hardwareId;
        case Discovery::EPortKind::NotSupported: break;
    }
    DLog("GetNextDeviceID couldn't find USB\\\\\\\\VID_10C4&PID_EA60 (case-insensitive)\n");
    return kNotSupported;
}

void CWinDisplayConfigInterface::GetPortNum(HDEVINFO ports_I, SP_DEVINFO_DATA& device_I) {
    CScopedTimer timer("CWinDisplayConfigInterface::GetPortNum");
    HKEY key = Api().SetupDiOpenDevRegKey(ports_I, &device_I, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (key == INVALID_HANDLE_VALUE || key == nullptr) {
        DLog("SetupDiOpenDevRegKey failed 0x%X\n", static_cast<unsigned>(GetLastError()));
        return;
    }
    ByteBuffer value;
    const bool read = ReadRegistryValue(key, "PortName", value, 256);
    Api().RegCloseKey(key);
    const std::string portName = read ? RegistryText(value) : std::string();
    if (portName.empty()) {
        DLog("CWinDisplayConfigInterface::GetPortNum: no PortName value\n");
        return;
    }
    DLog("CWinDisplayConfigInterface::GetPortNum: adding comport: %s\n", portName.c_str());
    auto connector = std::make_shared<CWinUSBConnector>(Api().CreateSerialPort());
    if (connector->Open(portName)) {
        DLog("CWinDisplayConfigInterface::GetPortNum: adding connection\n");
        mConnectorList.push_back(std::move(connector));
    } else {
        DLog("CWinDisplayConfigInterface::GetPortNum: connection failed, not adding\n");
    }
}

bool CWinDisplayConfigInterface::IsMakersOwnComputer() const {
    HKEY key = nullptr;
    if (Api().RegOpenKeyExA(HKEY_LOCAL_MACHINE, kMakersManufacturerKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        DLog("CWinDisplayConfigInterface::CreateDisplay: no BIOS description\n");
        return false;
    }
    ByteBuffer value;
    const bool read = ReadRegistryValue(key, "SystemManufacturer", value, 256);
    Api().RegCloseKey(key);
    return read && Discovery::IsMakersOwnComputer(RegistryText(value));
}

std::shared_ptr<CDisplay> CWinDisplayConfigInterface::CreateDisplay(const SDisplayInfo& info_I,
                                                                    std::shared_ptr<Connector> connector_I) {
    const auto ahead = mAhead.find(connector_I.get());
    if (ahead != mAhead.end() && !ahead->second.used && ahead->second.deviceID == info_I.deviceID) {
        ahead->second.used = true;
        DebugLog::CHeldLines::Emit(ahead->second.lines);
        return ahead->second.display;
    }
    return CreateDisplayNow(info_I, std::move(connector_I));
}

std::shared_ptr<CDisplay> CWinDisplayConfigInterface::CreateDisplayNow(
    const SDisplayInfo& info_I, std::shared_ptr<Connector> connector_I) {
    CScopedTimer timer("CWinDisplayConfigInterface::CreateDisplay");
    const uint16_t productCode = info_I.productCode;
    DLog("Matched display %s\n", Narrow(info_I.monitorName).c_str());
    const bool makersComputer = FamilyRowOf(productCode).penComputerScreen && IsMakersOwnComputer();
    const bool overGraphicsDriver = connector_I->GetType() == eConnectorDisplayPort;
    const std::string serial = Narrow(info_I.serialNumber);
    SDisplayIdentity identity{Edid::ManufacturerId(info_I.edid), productCode,
                              serial == kInvalidSerialNumber ? std::string() : serial,
                              ConnectorTypeName(connector_I->GetType())};

    auto display = std::make_shared<UiDisplayDelegate>(std::move(connector_I), productCode);
    // Inside the maker's own computer the built-in screen takes raw colour values.
    display->SetAllowRawColorValues(makersComputer);
    display->UseCapabilitiesCache(mCapabilitiesCache, std::move(identity));
    bool initialized = false;
    for (int attempt = 1; attempt <= kInitializeAttempts && !initialized; ++attempt) {
        initialized = display->Initialize();
        if (!initialized) {
            DLog("CWinDisplayConfigInterface::CreateDisplay: attempt %d failed\n", attempt);
            if (overGraphicsDriver) {
                break;  // the driver has already retried on its own
            }
            if (attempt < kInitializeAttempts) {
                Clock::PauseMs(kRetryPauseMs);
            }
        }
    }
    if (!initialized) {
        return nullptr;
    }
    display->SetSupportedName(Narrow(info_I.supportedName));
    SetLanguage(*display);
    return display;
}

// ---- Initialising ahead ----

void CWinDisplayConfigInterface::InitializeAhead() {
    // The channel the search would choose for each record by HID, claimed so that no two
    // records try one interface. The first read of an interface's serial number is the search's
    // own: its lines are written where the search reads it.
    std::vector<std::shared_ptr<Connector>> hidOf(mDisplayInfos.size());
    for (size_t record = 0; record < mDisplayInfos.size(); ++record) {
        const SDisplayInfo& info = mDisplayInfos[record];
        const SRoutePlan plan = PlanFor(info);
        if (std::find(plan.order.begin(), plan.order.end(), ERoute::Hid) == plan.order.end()) {
            continue;
        }
        const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
            mConnectorList.size(),
            [&](size_t i_I) {
                return mConnectorList[i_I]->GetType() == eConnectorHID &&
                       mAheadClaimed.count(mConnectorList[i_I].get()) == 0;
            },
            [&](size_t i_I) { return SerialAhead(*mConnectorList[i_I], false); }, Narrow(info.serialNumber),
            plan.hidByModel);
        if (chosen) {
            hidOf[record] = mConnectorList[*chosen];
            mAheadClaimed.insert(hidOf[record].get());
        }
    }
    RunForEach(mDisplayInfos.size(), true,
               [&](size_t record_I) { InitializeRecordAhead(mDisplayInfos[record_I], hidOf[record_I]); });
}

void CWinDisplayConfigInterface::InitializeRecordAhead(const SDisplayInfo& info_I,
                                                       const std::shared_ptr<Connector>& hid_I) {
    // What is written here outside the steps kept below is not the search's.
    DebugLog::CHeldLines stray;
    // The search's own plan, run the way the search runs it: each route the search would try,
    // on the channel it would choose.
    Discovery::RunRoutePlan(PlanFor(info_I), [&](ERoute route_I) {
        switch (route_I) {
            case ERoute::Hid:
                return hid_I && CreateAhead(info_I, hid_I) ? ERouteResult::Served : ERouteResult::NotServed;
            case ERoute::GraphicsDriver: return DisplayPortAhead(info_I);
            case ERoute::Legacy: return LegacyAhead(info_I);
        }
        return ERouteResult::NotServed;
    });
}

ERouteResult CWinDisplayConfigInterface::DisplayPortAhead(const SDisplayInfo& info_I) {
    if (info_I.monitor == nullptr) {
        // Nothing more is tried ahead for this record: the search looks for its monitor once
        // more, and whether the driver then serves it is not known here.
        return ERouteResult::EndSearch;
    }
    SDisplayInfo record = info_I;
    record.owner = mRecordOwner;
    SAheadDisplayPort ahead;
    ahead.connector = std::make_shared<CWinI2CConnectorDP>();
    ahead.monitor = info_I.monitor;
    {
        DebugLog::CHeldLines held;
        ahead.opened = ahead.connector->Open(record);
        ahead.lines = held.Take();
    }
    const std::shared_ptr<CWinI2CConnectorDP> connector = ahead.connector;
    const bool opened = ahead.opened;
    {
        std::lock_guard<std::mutex> lock(mAheadMutex);
        mAheadDisplayPort[info_I.deviceID] = std::move(ahead);
    }
    if (opened && CreateAhead(info_I, connector)) {
        return ERouteResult::Served;
    }
    if (mStopOnDisplayPortError && !connector->LastCapabilitiesError().empty()) {
        return ERouteResult::EndSearch;  // the search ends at this record
    }
    return ERouteResult::NotServed;
}

ERouteResult CWinDisplayConfigInterface::LegacyAhead(const SDisplayInfo& info_I) {
    SearchPortsAhead();
    std::shared_ptr<Connector> port;
    {
        std::lock_guard<std::mutex> lock(mAheadMutex);
        for (const std::shared_ptr<Connector>& candidate : mAheadPorts) {
            if (mAheadClaimed.count(candidate.get()) == 0 &&
                Discovery::SameSerialNumber(mAheadPortSerials[candidate.get()],
                                            Narrow(info_I.serialNumber))) {
                port = candidate;
                mAheadClaimed.insert(candidate.get());
                break;
            }
        }
    }
    return port && CreateAhead(info_I, port) ? ERouteResult::Served : ERouteResult::NotServed;
}

bool CWinDisplayConfigInterface::CreateAhead(const SDisplayInfo& info_I,
                                             const std::shared_ptr<Connector>& connector_I) {
    SAhead ahead;
    ahead.deviceID = info_I.deviceID;
    {
        DebugLog::CHeldLines held;
        ahead.display = CreateDisplayNow(info_I, connector_I);
        ahead.lines = held.Take();
    }
    const bool answered = ahead.display != nullptr;
    {
        std::lock_guard<std::mutex> lock(mAheadMutex);
        mAhead[connector_I.get()] = std::move(ahead);
    }
    if (answered) {
        NoteReady();
    }
    return answered;
}

void CWinDisplayConfigInterface::SearchPortsAhead() {
    std::lock_guard<std::mutex> lock(mPortsMutex);
    if (mPortsSearchedAhead) {
        return;
    }
    {
        DebugLog::CHeldLines held;
        const size_t before = mConnectorList.size();
        FindSerialPorts();
        mAheadPortSearchLines = held.Take();
        mAheadPorts.assign(mConnectorList.begin() + static_cast<std::ptrdiff_t>(before),
                           mConnectorList.end());
    }
    // Each one's serial number from its display's EDID, all at the same time. A port with no
    // display of ours is asked too, where the search might have found its display first.
    std::vector<std::string> serials(mAheadPorts.size());
    RunForEach(mAheadPorts.size(), true,
               [&](size_t i_I) { serials[i_I] = SerialAhead(*mAheadPorts[i_I], true); });
    std::lock_guard<std::mutex> aheadLock(mAheadMutex);
    for (size_t i = 0; i < mAheadPorts.size(); ++i) {
        mAheadPortSerials[mAheadPorts[i].get()] = serials[i];
    }
    mPortsSearchedAhead = true;
}

std::string CWinDisplayConfigInterface::SerialAhead(Connector& connector_I, bool fromEdid_I) {
    DebugLog::CHeldLines held;
    if (fromEdid_I) {
        // SerialNumber writes its lines at every call: only the read itself is held for the search.
        connector_I.LoadEDID();
    }
    HeldLines firstRead = held.Take();
    std::string serial = connector_I.SerialNumber(-1);
    if (!fromEdid_I) {
        firstRead = held.Take();  // the interface writes its lines at the first read only
    }
    std::lock_guard<std::mutex> lock(mAheadMutex);
    if (!firstRead.empty()) {
        mAheadSerialLines[&connector_I] = std::move(firstRead);
    }
    return serial;
}

void CWinDisplayConfigInterface::EmitAheadSerialLines(const Connector& connector_I) {
    const auto held = mAheadSerialLines.find(&connector_I);
    if (held != mAheadSerialLines.end()) {
        DebugLog::CHeldLines::Emit(held->second);
        mAheadSerialLines.erase(held);
    }
}

void CWinDisplayConfigInterface::NoteReady() {
    std::function<void(size_t, size_t)> progress;
    size_t ready = 0;
    {
        std::lock_guard<std::mutex> lock(mAheadMutex);
        ready = ++mReady;
        progress = mProgress;
    }
    if (progress) {
        progress(ready, mDisplayInfos.size());
    }
}

void CWinDisplayConfigInterface::SetLanguage(CDisplay& display_I) {
    if (!display_I.Traits().osdLanguageSetByHost) {
        return;
    }
    SVCPValue res = display_I.GetVCPValue(vcpC_OSDLanguage, true);
    VLR_ASSERT(res.valid);
    const int value = Discovery::OsdLanguageValue(mInterfaceLanguage);
    if (value < 0) {
        VLR_ASSERT_FAIL("\"CWinDisplayConfigInterface::SetLanguage - Unknown language\\n\"");
        return;
    }
    if (!display_I.SetVCPValue(vcpC_OSDLanguage, value)) {
        DLog("CWinDisplayConfigInterface::SetLanguage error: set language on monitor\n");
        return;
    }
    // The menu language follows the program: no change of the user's to save or revert.
    display_I.ResetOptionData(vcpC_OSDLanguage);
}
