#include "Connector.h"

#include "Assert.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "EdidText.h"
#include "codes.h"

const char* ConnectorTypeName(unsigned type_I) {
    switch (type_I) {
        case eConnectorDisplayPort: return "graphics driver";
        case eConnectorHID: return "HID";
        case eConnectorSerial: return "serial";
        case eConnectorFTDI: return "FTDI";
        case eConnectorTI: return "TI";
        default: return "?";
    }
}

Connector::~Connector() {
    mEDIDCache.clear();
}

bool Connector::Close() {
    mEDIDCache.clear();
    return true;
}

std::string Connector::TrimCapabilitiesString(const ByteBuffer& capsStr_I) {
    VLR_ASSERT_AS(!capsStr_I.empty() && capsStr_I[0] == '(', "capsStr_I[0] == '('");
    std::string capabilitiesStr;
    int depth = 0;
    bool opened = false;
    for (uint8_t byte : capsStr_I) {
        if (byte == '(') {
            ++depth;
            opened = true;
        } else if (byte == ')') {
            --depth;
        }
        capabilitiesStr += static_cast<char>(byte);
        if (opened && depth == 0) {
            break;  // fill bytes, NULs and strays after the balanced string are dropped
        }
    }
    VLR_ASSERT(!capabilitiesStr.empty());
    if (DebugLog::IsOn(ELogLevel::Info)) {
        DLog("caps: ");
        for (char c : capabilitiesStr) {
            DLog("%c", c);
        }
        DLog("\n");
    }
    return capabilitiesStr;
}

ByteBuffer Connector::SendFixedCommand(const SFixedCommand& command_I) {
    DLogHex(command_I.writeTitle, command_I.request);
    ByteBuffer inBuffer = SendRequest(command_I.request, Seconds(command_I.wait), Ddc::kReplySize, 0);
    if (inBuffer.size() < command_I.minimumReplySize) {
        DebugLog::Write(command_I.failureLevel, "Send request failed\n");
        return {};
    }
    const uint8_t received = inBuffer.back();
    const uint8_t computed = StripReplyChecksum(inBuffer);
    if (received != computed) {
        DLogVerbose("%s:Read checksum failed %i %i\n", command_I.name, received, computed);
    }
    DLogHex(command_I.readTitle, inBuffer);
    return inBuffer;
}

SFirmwareVersion Connector::ReadFirmwareVersionByGet(const char* className_I) {
    ByteBuffer reply = SendRequest(BuildGetVCPRequest(vcpC_DisplayFirmwareLevel), Seconds(mWaits.writeToRead),
                                   Ddc::kReplySize, 0);
    StripReplyChecksum(reply);
    SGetReplyValue value;
    if (CheckGetReply(reply, vcpC_DisplayFirmwareLevel, false, value) != EReplyError::None) {
        DLog("%s::FWVersion - failed\n", className_I);
        return {};
    }
    return FirmwareVersionFromVcpC9(value.current, value.maximum);
}

bool Connector::ScalarReset() {
    const ByteBuffer inBuffer = SendFixedCommand({BuildScalerResetMessage(), mWaits.resetToReply,
                                                  "ScalarReset", "Reset w", "Reset r", 4, ELogLevel::Info});
    if (inBuffer.empty()) {
        return false;
    }
    // A get reply, or the null message rotated by one or two bytes as some transports hand it
    // back.
    auto rotated = [&inBuffer](size_t by_I) {
        const ByteBuffer null = BuildNullMessage();
        for (size_t i = 0; i < Ddc::kNullMessageSize; ++i) {
            if (inBuffer[i] != null[(i + by_I) % Ddc::kNullMessageSize]) {
                return false;
            }
        }
        return true;
    };
    if (StartsWithGetReplyHeader(inBuffer) || rotated(1) || rotated(2)) {
        return true;
    }
    DLog("response was one we don't recognize\n");
    return false;
}

bool Connector::SaveSettingsToScalar() {
    const ByteBuffer inBuffer =
        SendFixedCommand({BuildSaveCurrentSettingsRequest(), mWaits.saveToReply, "SaveSettingsToScalar",
                          "Save w", "Save r", 3, ELogLevel::Verbose});
    // Closed under the request (a route that reads an unsent request as answered): the
    // display is gone and stored nothing.
    if (inBuffer.empty() || !IsOpen()) {
        return false;
    }
    // The null message 6E 80 BE, or a rotation of it.
    if (IsNullMessageByte(inBuffer[0]) && IsNullMessageByte(inBuffer[1])) {
        Clock::Pause(mWaits.afterSave);
        return true;
    }
    DLog("response was one we don't recognize\n");
    return false;
}

bool Connector::FillEDIDCache(int32_t sid_I) {
    if (mEDIDCache.empty()) {
        mEDIDCache = ReadEDID(sid_I);
    }
    return !mEDIDCache.empty();
}

std::string Connector::MonitorName() {
    if (!FillEDIDCache(-1)) {
        return {};
    }
    std::string name = Edid::DescriptorText(mEDIDCache, Edid::kTagMonitorName);
    DLogHex("EDID result", mEDIDCache);
    DLog("Monitor Name %s\n", name.c_str());
    return name;
}

std::string Connector::SerialNumber(int32_t sid_I) {
    if (!FillEDIDCache(sid_I)) {
        return {};
    }
    std::string serial = Edid::DescriptorText(mEDIDCache, Edid::kTagSerialNumber);
    DLogHex("EDID result", mEDIDCache);
    DLog("Serial Number %s\n", serial.c_str());
    return serial;
}
