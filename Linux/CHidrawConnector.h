#pragma once
// The HID connector's Linux half: the control interface's /dev/hidrawN node and its feature
// reports (HIDIOCSFEATURE, HIDIOCGFEATURE), every report padded to 512 bytes as on Windows.

#include "CVcpHIDConnector.h"
#include "LinuxSystem.h"

class CHidrawConnector : public CVcpHIDConnector {
public:
    explicit CHidrawConnector(ILinuxSystem& system_I) : mSystem(system_I) {}
    ~CHidrawConnector() override;

    bool Close() override;
    bool IsOpen() const override { return mDescriptor >= 0; }
    bool OpenHIDDevice(const std::string& devicePath_I) override;
    bool CloseHIDDevice() override;
    bool SetFeature(const ByteBuffer& report_I) override;
    bool GetFeature(ByteBuffer& report_IO) override;

    // Whether this interface takes the VCP status report (the control interface does; pen and
    // touch interfaces of the same device do not).
    bool AnswersAsVcpDevice();
    // The errno of the last OpenHIDDevice that failed, 0 after one that worked.
    int OpenError() const { return mOpenError; }

private:
    // One feature-report ioctl with the report padded to the full length; a get's answer
    // replaces the report.
    bool Transfer(unsigned long request_I, const char* caller_I, const char* requestName_I,
                  ByteBuffer& report_IO);

    ILinuxSystem& mSystem;
    int mDescriptor = -1;
    int mOpenError = 0;
};
