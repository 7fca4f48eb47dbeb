#include "CWinVcpHIDConnector.h"

#include "Assert.h"
#include "CEdidBuilder.h"
#include "DebugLog.h"
#include "HidApi.h"

CWinVcpHIDConnector::~CWinVcpHIDConnector() {
    CloseHIDDevice();
}

bool CWinVcpHIDConnector::OpenHIDDevice(const std::string& devicePath_I) {
    if (devicePath_I.empty()) {
        return false;
    }
    CloseHIDDevice();
    HANDLE device =
        HidApi().CreateFileA(devicePath_I.c_str(), GENERIC_READ | GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (device == INVALID_HANDLE_VALUE || device == nullptr) {
        DLog("OpenHIDDevice: ERROR [%i]: %s appears to be opened exclusively.\n\n",
             static_cast<int>(GetLastError()), devicePath_I.c_str());
        mDevice = nullptr;
    } else {
        mDevice = device;
        DLog("OpenHIDDevice: SUCCESS: opened a handle to instance: %s\n", devicePath_I.c_str());
    }
    return IsOpen();
}

void CWinVcpHIDConnector::AdoptDevice(HANDLE device_I) {
    CloseHIDDevice();
    mDevice = device_I == INVALID_HANDLE_VALUE ? nullptr : device_I;
}

bool CWinVcpHIDConnector::AnswersAsVcpDevice() {
    if (!IsOpen()) {
        return false;
    }
    HIDD_ATTRIBUTES attributes{};
    attributes.Size = sizeof(attributes);
    if (!HidApi().HidD_GetAttributes(mDevice, &attributes)) {
        DLog("CWinVcpHIDConnector: HidD_GetAttributes error: [%i]\n", static_cast<int>(GetLastError()));
        return false;
    }
    if (attributes.VendorID != kVelorUsbVendorId) {
        return false;
    }
    // The status request changes nothing on the display; a collection without the control
    // report refuses it.
    const ByteBuffer statusRequest = HidVcp::BuildStatusRequest();
    ByteBuffer report(kReportSize, 0x00);
    std::copy(statusRequest.begin(), statusRequest.end(), report.begin());
    return HidApi().HidD_SetFeature(mDevice, report.data(), static_cast<ULONG>(report.size())) != FALSE;
}

bool CWinVcpHIDConnector::CloseHIDDevice() {
    if (mDevice != nullptr) {
        HidApi().CloseHandle(mDevice);
        mDevice = nullptr;
    }
    return true;
}

bool CWinVcpHIDConnector::Close() {
    CloseHIDDevice();
    CVcpHIDConnector::Close();
    return true;
}

bool CWinVcpHIDConnector::SetFeature(const ByteBuffer& report_I) {
    if (!IsOpen()) {
        VLR_ASSERT_FAIL("SetFeature: ERROR: device is not open");
        return false;
    }
    if (report_I.size() > kReportSize) {
        DLog("SetFeature: ERROR: SetFeature can't handle commandBuf size > %i\n",
             static_cast<int>(kReportSize));
        VLR_ASSERT_FAIL("ERROR: SetFeature databuf too big");
        return false;
    }
    ByteBuffer report(kReportSize, 0x00);
    std::copy(report_I.begin(), report_I.end(), report.begin());
    if (!HidApi().HidD_SetFeature(mDevice, report.data(), static_cast<ULONG>(report.size()))) {
        DLog("HidD_SetFeature returned an error: [%i]\n\n", static_cast<int>(GetLastError()));
        return false;
    }
    return true;
}

bool CWinVcpHIDConnector::GetFeature(ByteBuffer& report_IO) {
    if (!IsOpen()) {
        VLR_ASSERT_FAIL("GetFeature: ERROR: device is not open");
        return false;
    }
    if (report_IO.size() > kReportSize) {
        DLog("GetFeature: ERROR: GetFeature can't handle commandBuf size > %i\n",
             static_cast<int>(kReportSize));
        VLR_ASSERT_FAIL("ERROR: GetFeature databuf too big");
        return false;
    }
    ByteBuffer report(kReportSize, 0x00);
    std::copy(report_IO.begin(), report_IO.end(), report.begin());
    if (!HidApi().HidD_GetFeature(mDevice, report.data(), static_cast<ULONG>(report.size()))) {
        DLog("HidD_GetFeature returned an error: [%i]\n\n", static_cast<int>(GetLastError()));
        return false;
    }
    report_IO = std::move(report);
    return true;
}
