#include "CWinDisplayConfigInterface.h"

#include <algorithm>
#include <cstring>

#include "Assert.h"
#include "CEdidBuilder.h"
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
#include "SetupApiReads.h"
#include "UiDisplayDelegate.h"
#include "WinLegacyPorts.h"
#include "WinStrings.h"
#include "codes.h"

namespace {

constexpr size_t kRegistryEdidSize = 512;
constexpr int kInitializeAttempts = 3;
constexpr uint32_t kRetryPauseMs = 1000;
constexpr char kInvalidSerialNumber[] = "Invalid SN";
constexpr char kMakersManufacturerKey[] = "HARDWARE\\DESCRIPTION\\System\\BIOS";

const SDiscoverySystemApi& Api() {
    return DiscoverySystemApi();
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
    mAhead.Forget();
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
        mAhead.Run();
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
        if (!mInitializeAtOnce || !mAhead.Tried()) {
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
            mAhead.EmitSerialLines(*mConnectorList[i_I]);
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
    if (!mAhead.TakeDisplayPort(info_I, connector, opened)) {
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
        if (!mAhead.EmitPortSearch()) {
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
        mAhead.EmitSerialLines(*connector);
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
    WinLegacyPorts::Find(mConnectorList);
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
    if (std::optional<std::shared_ptr<CDisplay>> ahead = mAhead.TakeDisplay(info_I, *connector_I)) {
        return *ahead;
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

void CWinDisplayConfigInterface::NoteReady() {
    std::function<void(size_t, size_t)> progress;
    size_t ready = 0;
    {
        std::lock_guard<std::mutex> lock(mReadyMutex);
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
