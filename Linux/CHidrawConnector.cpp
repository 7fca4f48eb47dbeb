#include "CHidrawConnector.h"

#include <fcntl.h>
#include <linux/hidraw.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>

#include "DebugLog.h"

CHidrawConnector::~CHidrawConnector() {
    CloseHIDDevice();
}

bool CHidrawConnector::OpenHIDDevice(const std::string& devicePath_I) {
    CloseHIDDevice();
    mDescriptor = mSystem.Open(devicePath_I, O_RDWR);
    mOpenError = mDescriptor < 0 ? errno : 0;
    if (mDescriptor < 0) {
        // Usually permissions: the udev rule gives the user the maker's hidraw nodes.
        DLog("CHidrawConnector: %s does not open: %s\n", devicePath_I.c_str(), std::strerror(errno));
        return false;
    }
    return true;
}

bool CHidrawConnector::CloseHIDDevice() {
    if (mDescriptor >= 0) {
        mSystem.Close(mDescriptor);
        mDescriptor = -1;
    }
    return true;
}

bool CHidrawConnector::Close() {
    CloseHIDDevice();
    return CVcpHIDConnector::Close();
}

bool CHidrawConnector::SetFeature(const ByteBuffer& report_I) {
    ByteBuffer report = report_I;
    return Transfer(HIDIOCSFEATURE(HidVcp::kReportSize), "SetFeature", "HIDIOCSFEATURE", report);
}

bool CHidrawConnector::GetFeature(ByteBuffer& report_IO) {
    return Transfer(HIDIOCGFEATURE(HidVcp::kReportSize), "GetFeature", "HIDIOCGFEATURE", report_IO);
}

bool CHidrawConnector::Transfer(unsigned long request_I, const char* caller_I, const char* requestName_I,
                                ByteBuffer& report_IO) {
    if (!IsOpen() || report_IO.size() > HidVcp::kReportSize) {
        DLog("CHidrawConnector::%s: %s\n", caller_I, IsOpen() ? "report too long" : "device is not open");
        return false;
    }
    // Every report goes out at the full report length, as on Windows.
    ByteBuffer report(HidVcp::kReportSize, 0x00);
    std::copy(report_IO.begin(), report_IO.end(), report.begin());
    if (mSystem.Ioctl(mDescriptor, request_I, report.data()) < 0) {
        DLog("CHidrawConnector: %s failed: %s\n", requestName_I, std::strerror(errno));
        return false;
    }
    report_IO = std::move(report);
    return true;
}

bool CHidrawConnector::AnswersAsVcpDevice() {
    // The status request changes nothing on the display.
    return IsOpen() && SetFeature(HidVcp::BuildStatusRequest());
}
