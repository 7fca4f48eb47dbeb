#include "CWinI2CConnectorDP.h"

#include "Assert.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "PhysicalMonitors.h"
#include "WinStrings.h"
#include "codes.h"

namespace {
// Not in every SDK's headers.
constexpr DWORD kInvalidPhysicalMonitorHandle = 0xC026258C;  // ERROR_GRAPHICS_INVALID_PHYSICAL_MONITOR_HANDLE
constexpr DWORD kMonitorNoLongerExists = 0xC026258D;         // ERROR_GRAPHICS_MONITOR_NO_LONGER_EXISTS

// A monitor that slept or was re-plugged takes its handles with it; no call on them works again.
bool IsStaleHandleError(DWORD error_I) {
    return error_I == ERROR_INVALID_HANDLE || error_I == kInvalidPhysicalMonitorHandle ||
           error_I == kMonitorNoLongerExists;
}
}  // namespace

CWinI2CConnectorDP::~CWinI2CConnectorDP() {
    ReleasePhysicalMonitors();
}

bool CWinI2CConnectorDP::Open(const SDisplayInfo& displayInfo_I) {
    if (!displayInfo_I.HasRequiredFields()) {
        VLR_ASSERT_FAIL("Oops - displayInfo couldn't be initialized!");
        return false;
    }
    Close();
    mDisplayInfo = displayInfo_I;
    mPhysicalMonitors = GetPhysicalMonitors(mDisplayInfo.monitor);
    if (mPhysicalMonitors.empty()) {
        VLR_ASSERT_FAIL("Oops - no physical handles found!");
        Close();
        return false;
    }
    return true;
}

void CWinI2CConnectorDP::ReleasePhysicalMonitors() {
    if (!mPhysicalMonitors.empty()) {
        MonitorConfigurationApi().DestroyPhysicalMonitors(static_cast<DWORD>(mPhysicalMonitors.size()),
                                                          mPhysicalMonitors.data());
        mPhysicalMonitors.clear();
    }
}

bool CWinI2CConnectorDP::Close() {
    ReleasePhysicalMonitors();
    mDisplayInfo = SDisplayInfo{};
    CI2CConnectorDP::Close();
    return true;
}

bool CWinI2CConnectorDP::IsOpen() const {
    return mDisplayInfo.HasRequiredFields();
}

DWORD CWinI2CConnectorDP::Failed(const char* call_I) {
    const DWORD error = GetLastError();
    // The graphics errors are 0xC026.... codes, which read as negative numbers in decimal.
    DLog("CWinI2CConnectorDP: %s failed with error 0x%08lX\n", call_I, static_cast<unsigned long>(error));
    if (IsStaleHandleError(error)) {
        // Closed, the connector reports the display as gone and a new search can find it again.
        DLog("CWinI2CConnectorDP: the monitor's handle is no longer valid; the connector closes\n");
        Close();
    }
    SetLastError(error);
    return error;
}

HANDLE CWinI2CConnectorDP::PhysicalHandle() const {
    if (mDisplayInfo.physicalMonitorIndex >= mPhysicalMonitors.size()) {
        return nullptr;
    }
    return mPhysicalMonitors[mDisplayInfo.physicalMonitorIndex].hPhysicalMonitor;
}

bool CWinI2CConnectorDP::GetVCPFeature(uint8_t code_I, DWORD& current_O, DWORD& maximum_O) {
    if (!IsOpen()) {
        return false;
    }
    Dxva2::MC_VCP_CODE_TYPE type = Dxva2::MC_SET_PARAMETER;
    if (!MonitorConfigurationApi().GetVCPFeatureAndVCPFeatureReply(PhysicalHandle(), code_I, &type,
                                                                   &current_O, &maximum_O)) {
        const DWORD error = Failed("GetVCPFeatureAndVCPFeatureReply");
        DLog("CWinI2CConnectorDP::GetVCPFeature: ERROR - %i\n", static_cast<int>(error));
        SetLastError(error);
        return false;
    }
    return true;
}

bool CWinI2CConnectorDP::SetVCPFeature(uint8_t code_I, DWORD value_I) {
    if (!IsOpen()) {
        return false;
    }
    if (!MonitorConfigurationApi().SetVCPFeature(PhysicalHandle(), code_I, value_I)) {
        DLog("CWinI2CConnectorDP::SetVCPFeature: ERROR - %i\n", static_cast<int>(Failed("SetVCPFeature")));
        return false;
    }
    return true;
}

ByteBuffer CWinI2CConnectorDP::SendRequest(const ByteBuffer& toSend_I, double, unsigned, int32_t) {
    if (!IsOpen()) {
        return {};
    }
    if (!IsTranslatableRequest(toSend_I)) {
        return {};
    }
    const SMonitorConfigurationApi& api = MonitorConfigurationApi();
    const SHostRequest request = DecodeHostRequest(toSend_I);
    const uint8_t command = request.command;
    const uint8_t code = request.vcpCode;
    switch (command) {
        case ddcCC_GetVCPFeatureRequest: {
            Dxva2::MC_VCP_CODE_TYPE type = Dxva2::MC_SET_PARAMETER;
            DWORD current = 0;
            DWORD maximum = 0;
            if (!api.GetVCPFeatureAndVCPFeatureReply(PhysicalHandle(), code, &type, &current, &maximum)) {
                DLog("CWinI2CConnectorDP::SendRequest: GetVCPFeatureAndVCPFeatureReply error: %i\n",
                     static_cast<int>(Failed("GetVCPFeatureAndVCPFeatureReply")));
                return {};
            }
            return BuildSimulatedReply(command, code, static_cast<uint16_t>(current),
                                       static_cast<uint16_t>(maximum));
        }
        case ddcCC_SetVCPFeatureRequest:
        case ddcCC_SaveCurrentSettingsRequest: {
            // A save becomes a set of the packet's byte 4 (for the standard save packet its
            // checksum, 0xB2) to 0: this is how these displays are told to store.
            DWORD value = 0;
            if (command == ddcCC_SetVCPFeatureRequest) {
                if (!request.hasValue) {
                    VLR_ASSERT_FAIL("Oops - unknown or unsupported VCP op");
                    return {};
                }
                value = request.value;
            }
            if (!api.SetVCPFeature(PhysicalHandle(), code, value)) {
                // The set path logs the get call's name on purpose: traces have always read so.
                DLog("CWinI2CConnectorDP::SendRequest: GetVCPFeatureAndVCPFeatureReply error: %i\n",
                     static_cast<int>(Failed("SetVCPFeature")));
                return {};
            }
            return BuildSimulatedReply(command, code, 0, 0);
        }
        default: ReportUntranslatableCommand(); return {};
    }
}

std::string CWinI2CConnectorDP::CapabilitiesString() {
    if (!IsOpen()) {
        return {};
    }
    const SMonitorConfigurationApi& api = MonitorConfigurationApi();
    std::string error;
    std::string caps;
    DWORD length = 0;
    if (!api.GetCapabilitiesStringLength(PhysicalHandle(), &length)) {
        error =
            "GetCapabilitiesStringLength, errcode: " + std::to_string(Failed("GetCapabilitiesStringLength"));
    } else if (length == 0) {
        // The call succeeded: any last error now would be an older call's.
        error = "GetCapabilitiesStringLength: zero string length, errcode: 0";
    } else {
        std::string buffer(length, '\0');
        if (!api.CapabilitiesRequestAndCapabilitiesReply(PhysicalHandle(), buffer.data(), length)) {
            error = "CapabilitiesRequestAndCapabilitiesReply, errcode: " +
                    std::to_string(Failed("CapabilitiesRequestAndCapabilitiesReply"));
        } else {
            caps = buffer.c_str();
        }
    }
    if (!error.empty()) {
        DLog("ERROR: CWinI2CConnectorDP::CapabilitiesString - %s\n", error.c_str());
        mLastCapabilitiesError = error;
        return {};
    }
    return caps;
}

std::string CWinI2CConnectorDP::MonitorName() {
    return IsOpen() ? Narrow(mDisplayInfo.monitorName) : std::string();
}

std::string CWinI2CConnectorDP::SerialNumber(int32_t) {
    return IsOpen() ? Narrow(mDisplayInfo.serialNumber) : std::string();
}

SFirmwareVersion CWinI2CConnectorDP::FWVersion() {
    if (!IsOpen()) {
        return {};
    }
    DWORD current = 0;
    DWORD maximum = 0;
    if (!GetVCPFeature(vcpC_DisplayFirmwareLevel, current, maximum)) {
        // GetVCPFeature hands its call's error on; its own logging must not replace it.
        DLog("CWinI2CConnectorDP::FWVersion - ERROR: %i\n", static_cast<int>(GetLastError()));
        return {};
    }
    return FirmwareVersionFromVcpC9(static_cast<uint16_t>(current), static_cast<uint16_t>(maximum));
}

ByteBuffer CWinI2CConnectorDP::ReadEDID(int32_t) {
    return IsOpen() ? mDisplayInfo.edid : ByteBuffer();
}
