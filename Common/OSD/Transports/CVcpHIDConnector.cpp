#include "CVcpHIDConnector.h"

#include <algorithm>

#include "Assert.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ReadInParts.h"
#include "StringUtilities.h"
#include "codes.h"

namespace {

constexpr int kMaxStatusReads = 4;
constexpr uint32_t kPollPauseMs = 100;
constexpr size_t kMinimumStatusSize = 4;
constexpr size_t kMinimumGetStatusSize = 15;
constexpr size_t kMaxCapabilityChunks = 2048;
// The display information record (a get reply of 0xF2) in a status report: the monitor name
// and the serial number, 13 bytes each.
constexpr size_t kMonitorNameStart = HidVcp::kReplyStart + 17;
constexpr size_t kSerialNumberStart = HidVcp::kReplyStart + 30;
constexpr size_t kInformationTextSize = 13;
// A capabilities reply in a status report: 6E 80|n E3 offset-high offset-low data.
constexpr size_t kCapabilitiesLengthByte = HidVcp::kReplyStart + 1;
constexpr size_t kCapabilitiesDataStart = HidVcp::kReplyStart + Ddc::kOffsetReplyHeaderSize;

// A minimum-size check with the assertion text the HID code uses everywhere.
bool HasMinimumSize(const ByteBuffer& buf_I, size_t minExpectedSize) {
    VLR_ASSERT(buf_I.size() >= minExpectedSize);
    return buf_I.size() >= minExpectedSize;
}

}  // namespace

bool CVcpHIDConnector::Open(const std::string& name_I) {
    return OpenHIDDevice(name_I);
}

bool CVcpHIDConnector::Open(int32_t) {
    VLR_ASSERT_FAIL("Not supported by this connector.");
    return false;
}

bool CVcpHIDConnector::Close() {
    mCapabilities.clear();
    mMonitorName.clear();
    mSerialNumber.clear();
    mFirmwareVersion = {};
    return Connector::Close();
}

bool CVcpHIDConnector::IsOpen() const {
    VLR_ASSERT_FAIL("must be implemented in subclasses");
    return false;
}

bool CVcpHIDConnector::OpenHIDDevice(const std::string&) {
    VLR_ASSERT_FAIL("must be implemented in subclasses");
    return false;
}

bool CVcpHIDConnector::CloseHIDDevice() {
    VLR_ASSERT_FAIL("must be implemented in subclasses");
    return false;
}

bool CVcpHIDConnector::SetFeature(const ByteBuffer&) {
    VLR_ASSERT_FAIL("must be implemented in subclasses");
    return false;
}

bool CVcpHIDConnector::GetFeature(ByteBuffer&) {
    VLR_ASSERT_FAIL("must be implemented in subclasses");
    return false;
}

ByteBuffer CVcpHIDConnector::ReadEDID(int32_t) {
    VLR_ASSERT_FAIL("Not supported by this connector.");
    return {};
}

ByteBuffer CVcpHIDConnector::BuildCommand(uint8_t command_I, const ByteBuffer& codeOrOffset_I) {
    auto byteAt = [&codeOrOffset_I](size_t index_I) -> uint8_t {
        return index_I < codeOrOffset_I.size() ? codeOrOffset_I[index_I] : 0;
    };
    switch (command_I) {
        case ddcCC_GetVCPFeatureRequest: return BuildGetVCPRequest(byteAt(0));
        case ddcCC_SetVCPFeatureRequest:
            return BuildSetVCPRequest(byteAt(0), static_cast<uint16_t>((byteAt(1) << 8) | byteAt(2)));
        case ddcCC_CapabilitiesRequest:
            return BuildCapabilitiesRequest(static_cast<uint16_t>((byteAt(0) << 8) | byteAt(1)));
        default: DLog("BuildCommand - error - command not supported: %i", command_I); return {};
    }
}

ByteBuffer CVcpHIDConnector::GetStatus() {
    ByteBuffer report = HidVcp::BuildStatusRequest();
    if (!SetFeature(report)) {
        DLog("GetStatus: fail SetFeature\n");
        return report;
    }
    if (!GetFeature(report)) {
        // The doubled prefix is the trace's established wording, kept on purpose.
        DLog("GetStatus: GetStatus: GetFeature failed\n");
    }
    DLogHex("status bytes returned:", report);
    return report;
}

ByteBuffer CVcpHIDConnector::SubmitRequest(const ByteBuffer& command_I, uint32_t kind_I) {
    VLR_ASSERT_AS(!command_I.empty(), "Empty cmdbuf!");
    if (kind_I != kRequestWithData && kind_I != kRequestWithoutData) {
        VLR_ASSERT_FAIL("Oops - unsupported request");
        return {0x00};
    }
    const ByteBuffer report = HidVcp::WrapRequest(static_cast<uint8_t>(kind_I), command_I);
    if (!SetFeature(report)) {
        DLog("CVcpHIDConnector::SubmitRequest - SetFeature failed");
        // Deliberately not empty: a set whose report did not go out still reads as answered
        // (SendRequest acknowledges it), as the firmware's own tools have always treated it.
        return {0x00};
    }
    ByteBuffer status;
    for (int read = 0; read < kMaxStatusReads; ++read) {
        status = GetStatus();
        HasMinimumSize(status, kMinimumStatusSize);
        if (status.size() > HidVcp::kStatusByte && !HidVcp::IsBusy(status)) {
            break;
        }
        Clock::PauseMs(kPollPauseMs);
    }
    DLogHex("SubmitRequest result", status);
    return status;
}

ByteBuffer CVcpHIDConnector::SendRequest(const ByteBuffer& toSend_I, double, unsigned, int32_t) {
    if (!IsOpen()) {
        return {};
    }
    if (!IsTranslatableRequest(toSend_I)) {
        return {};
    }
    const SHostRequest request = DecodeHostRequest(toSend_I);
    const uint8_t command = request.command;
    const uint8_t code = request.vcpCode;
    switch (command) {
        case ddcCC_GetVCPFeatureRequest: {
            const ByteBuffer status = SubmitRequest(toSend_I, kRequestWithData);
            if (!HasMinimumSize(status, kMinimumGetStatusSize) || status.size() <= HidVcp::kCurrentLowByte) {
                DLog("CVcpHIDConnector::SendRequest - GetRequest failed\n");
                return {};
            }
            // Deliberately refused: a status without the display's answer, or with its
            // refusal, has no value to pass on; better no reply than a made-up zero.
            if (!HidVcp::CarriesGetReply(status, code)) {
                DLog("CVcpHIDConnector::SendRequest - GetRequest failed\n");
                return {};
            }
            // Only the low bytes of maximum and current are passed on.
            return BuildSimulatedReply(command, code, status[HidVcp::kCurrentLowByte],
                                       status[HidVcp::kMaximumLowByte]);
        }
        case ddcCC_SetVCPFeatureRequest:
        case ddcCC_SaveCurrentSettingsRequest: {
            const ByteBuffer status = SubmitRequest(toSend_I, kRequestWithoutData);
            // Never empty: a failed set is reported as taken (see SubmitRequest).
            if (status.empty()) {
                DLog("CVcpHIDConnector::SendRequest - SetRequest failed\n");
                return {};
            }
            return BuildSimulatedReply(command, code, 0, 0);
        }
        default: ReportUntranslatableCommand(); return {};
    }
}

std::string CVcpHIDConnector::CapabilitiesString() {
    if (!mCapabilities.empty()) {
        return mCapabilities;
    }
    SReadInParts read;
    // Bounded, also for a display that keeps sending empty (all-NUL) fragments.
    read.maxParts = kMaxCapabilityChunks;
    read.readPart = [this](uint16_t offset) {
        const ByteBuffer status =
            SubmitRequest(BuildCommand(ddcCC_CapabilitiesRequest,
                                       {static_cast<uint8_t>(offset >> 8), static_cast<uint8_t>(offset)}),
                          kRequestWithData);
        if (status.size() <= kCapabilitiesLengthByte + 1) {
            return SPart::End();
        }
        // The offset and data bytes of the reply, as its length byte counts them.
        const int n = static_cast<int>(status[kCapabilitiesLengthByte] & Ddc::kLengthMask) - 1;
        if (n <= 2 || kCapabilitiesLengthByte + 2 + static_cast<size_t>(n) > status.size()) {
            return SPart::End();
        }
        // The text stops at a NUL; the offset moves on by every data byte.
        const auto data = status.begin() + kCapabilitiesDataStart;
        const auto end = status.begin() + static_cast<std::ptrdiff_t>(kCapabilitiesLengthByte + 2 + n);
        return SPart{SPart::EKind::Data, ByteBuffer(data, std::find(data, end, 0)),
                     static_cast<size_t>(n - 2)};
    };
    const ByteBuffer text = ReadInParts(read).data;
    if (!text.empty()) {
        mCapabilities = TrimCapabilitiesString(text);
    }
    return mCapabilities;
}

std::string CVcpHIDConnector::ReadDisplayInformationText(size_t first_I, size_t minimumSize_I,
                                                         const char* name_I) {
    const ByteBuffer status =
        SubmitRequest(BuildCommand(ddcCC_GetVCPFeatureRequest, {vcpC_DisplayInfo}), kRequestWithData);
    if (status.size() <= 1) {
        DLog("%s - failed\n", name_I);
        return {};
    }
    if (!HasMinimumSize(status, minimumSize_I)) {
        return {};
    }
    const auto begin = status.begin() + static_cast<std::ptrdiff_t>(first_I);
    const auto end = begin + kInformationTextSize;
    return TrimRightWhitespace(std::string(begin, std::find(begin, end, 0)));
}

std::string CVcpHIDConnector::MonitorName() {
    if (mMonitorName.empty()) {
        mMonitorName = ReadDisplayInformationText(kMonitorNameStart, kMonitorNameStart + kInformationTextSize,
                                                  "MonitorName");
        DLog("CVcpHIDConnector::MonitorName: %s\n", mMonitorName.c_str());
    }
    return mMonitorName;
}

std::string CVcpHIDConnector::SerialNumber(int32_t) {
    if (mSerialNumber.empty()) {
        mSerialNumber = ReadDisplayInformationText(kSerialNumberStart,
                                                   kSerialNumberStart + kInformationTextSize, "SerialNumber");
        DLog("CVcpHIDConnector::SerialNumber: %s\n", mSerialNumber.c_str());
    }
    return mSerialNumber;
}

SFirmwareVersion CVcpHIDConnector::FWVersion() {
    if (!mFirmwareVersion.IsZero()) {
        return mFirmwareVersion;
    }
    const ByteBuffer status = SubmitRequest(
        BuildCommand(ddcCC_GetVCPFeatureRequest, {vcpC_DisplayFirmwareLevel}), kRequestWithData);
    // Deliberately refused without the display's get reply, as on the get path.
    if (status.size() < kMinimumGetStatusSize || status[0] == 0 ||
        !HidVcp::CarriesGetReply(status, vcpC_DisplayFirmwareLevel)) {
        DLog("FWVersion - failed\n");
        return {};
    }
    mFirmwareVersion = {status[HidVcp::kMaximumLowByte], status[HidVcp::kMaximumLowByte + 1],
                        status[HidVcp::kCurrentLowByte], kFirmwareVersionKindVcpC9, 0};
    return mFirmwareVersion;
}
