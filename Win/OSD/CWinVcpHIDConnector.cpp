#include "CWinVcpHIDConnector.h"

#include <winioctl.h>
// winioctl.h first: hidclass.h builds its request codes with it.
#include <hidclass.h>

#include <algorithm>

#include "Assert.h"
#include "CEdidBuilder.h"
#include "DebugLog.h"
#include "DeviceGoneErrors.h"
#include "HidApi.h"

HANDLE CWinVcpHIDConnector::OpenFeatureHandle(CreateFileFunction createFile_I,
                                              const std::string& devicePath_I) {
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
    HANDLE device = createFile_I(devicePath_I.c_str(), GENERIC_READ | GENERIC_WRITE, kShare, nullptr,
                                 OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (device != INVALID_HANDLE_VALUE && device != nullptr) {
        DLog("OpenFeatureHandle: %s opened for reading and writing\n", devicePath_I.c_str());
        return device;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) {
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    }
    device =
        createFile_I(devicePath_I.c_str(), 0, kShare, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (device == INVALID_HANDLE_VALUE || device == nullptr) {
        return INVALID_HANDLE_VALUE;
    }
    DLog(
        "OpenFeatureHandle: %s refused reading and writing [%lu]; opened with access 0 for feature reports\n",
        devicePath_I.c_str(), static_cast<unsigned long>(error));
    return device;
}

CWinVcpHIDConnector::~CWinVcpHIDConnector() {
    CloseHIDDevice();
}

bool CWinVcpHIDConnector::OpenHIDDevice(const std::string& devicePath_I) {
    if (devicePath_I.empty()) {
        return false;
    }
    CloseHIDDevice();
    HANDLE device = OpenFeatureHandle(HidApi().CreateFileA, devicePath_I);
    if (device == INVALID_HANDLE_VALUE) {
        DLog("OpenHIDDevice: ERROR [%i]: %s appears to be opened exclusively.\n\n",
             static_cast<int>(GetLastError()), devicePath_I.c_str());
    } else {
        Attach(device);
        DLog("OpenHIDDevice: SUCCESS: opened a handle to instance: %s\n", devicePath_I.c_str());
    }
    return IsOpen();
}

void CWinVcpHIDConnector::AdoptDevice(HANDLE device_I) {
    CloseHIDDevice();
    if (device_I != INVALID_HANDLE_VALUE && device_I != nullptr) {
        Attach(device_I);
    }
}

void CWinVcpHIDConnector::Attach(HANDLE device_I) {
    mDevice = device_I;
    mEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    // 512 bytes as the protocol fixes, more where the collection declares longer feature
    // reports: Windows refuses a report shorter than the collection's length.
    mReportSize = std::max(kReportSize, ReadFeatureReportLength());
    DLog("CWinVcpHIDConnector: feature reports of %u bytes\n", static_cast<unsigned>(mReportSize));
}

size_t CWinVcpHIDConnector::ReadFeatureReportLength() const {
    const SHidApi& api = HidApi();
    PHIDP_PREPARSED_DATA preparsed = nullptr;
    if (!api.HidD_GetPreparsedData(mDevice, &preparsed)) {
        DLog("CWinVcpHIDConnector: HidD_GetPreparsedData error: [%lu]\n",
             static_cast<unsigned long>(GetLastError()));
        return 0;
    }
    HIDP_CAPS caps{};
    const NTSTATUS status = api.HidP_GetCaps(preparsed, &caps);
    api.HidD_FreePreparsedData(preparsed);
    if (status != HIDP_STATUS_SUCCESS) {
        DLog("CWinVcpHIDConnector: HidP_GetCaps error: 0x%08lX\n", static_cast<unsigned long>(status));
        return 0;
    }
    return caps.FeatureReportByteLength;
}

bool CWinVcpHIDConnector::Transfer(DWORD ioctl_I, ByteBuffer& report_IO) {
    const SHidApi& api = HidApi();
    if (mEvent == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    ResetEvent(mEvent);
    OVERLAPPED overlapped{};
    overlapped.hEvent = mEvent;
    const bool get = ioctl_I == IOCTL_HID_GET_FEATURE;
    const DWORD length = static_cast<DWORD>(report_IO.size());
    DWORD transferred = 0;
    if (api.DeviceIoControl(mDevice, ioctl_I, report_IO.data(), length, get ? report_IO.data() : nullptr,
                            get ? length : 0, &transferred, &overlapped)) {
        return true;
    }
    DWORD error = GetLastError();
    if (error == ERROR_IO_PENDING) {
        if (WaitForSingleObject(mEvent, mTransferTimeoutMs) == WAIT_OBJECT_0) {
            if (api.GetOverlappedResult(mDevice, &overlapped, &transferred, FALSE)) {
                return true;
            }
            error = GetLastError();
        } else {
            // The request must be over before its buffer and OVERLAPPED go away.
            api.CancelIoEx(mDevice, &overlapped);
            api.GetOverlappedResult(mDevice, &overlapped, &transferred, TRUE);
            DLog("CWinVcpHIDConnector: the device did not take the feature report within %lu ms; cancelled\n",
                 static_cast<unsigned long>(mTransferTimeoutMs));
            error = ERROR_TIMEOUT;
        }
    }
    // These say the device itself is gone (unplugged, powered off, asleep): the handle is dead
    // for good, so the connector closes and the program searches again for the display.
    if (IsDeviceGoneError(error)) {
        DLog("CWinVcpHIDConnector: the device is gone (error %lu); closing\n",
             static_cast<unsigned long>(error));
        Close();
    }
    SetLastError(error);
    return false;
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
    ByteBuffer report(mReportSize, 0x00);
    std::copy(statusRequest.begin(), statusRequest.end(), report.begin());
    return Transfer(IOCTL_HID_SET_FEATURE, report);
}

bool CWinVcpHIDConnector::CloseHIDDevice() {
    if (mDevice != nullptr) {
        HidApi().CloseHandle(mDevice);
        mDevice = nullptr;
    }
    if (mEvent != nullptr) {
        CloseHandle(mEvent);
        mEvent = nullptr;
    }
    mReportSize = kReportSize;
    return true;
}

bool CWinVcpHIDConnector::Close() {
    CloseHIDDevice();
    CVcpHIDConnector::Close();
    return true;
}

// The error lines keep the names of the HID library's calls, which these requests are.
bool CWinVcpHIDConnector::SetFeature(const ByteBuffer& report_I) {
    if (!IsOpen()) {
        VLR_ASSERT_FAIL("SetFeature: ERROR: device is not open");
        return false;
    }
    if (report_I.size() > mReportSize) {
        DLog("SetFeature: ERROR: SetFeature can't handle commandBuf size > %i\n",
             static_cast<int>(mReportSize));
        VLR_ASSERT_FAIL("ERROR: SetFeature databuf too big");
        return false;
    }
    ByteBuffer report(mReportSize, 0x00);
    std::copy(report_I.begin(), report_I.end(), report.begin());
    if (!Transfer(IOCTL_HID_SET_FEATURE, report)) {
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
    if (report_IO.size() > mReportSize) {
        DLog("GetFeature: ERROR: GetFeature can't handle commandBuf size > %i\n",
             static_cast<int>(mReportSize));
        VLR_ASSERT_FAIL("ERROR: GetFeature databuf too big");
        return false;
    }
    ByteBuffer report(mReportSize, 0x00);
    std::copy(report_IO.begin(), report_IO.end(), report.begin());
    if (!Transfer(IOCTL_HID_GET_FEATURE, report)) {
        DLog("HidD_GetFeature returned an error: [%i]\n\n", static_cast<int>(GetLastError()));
        return false;
    }
    report_IO = std::move(report);
    return true;
}
