#pragma once
// The HID connector's Windows half: the device handle and the two feature-report calls, with
// every report exactly 512 bytes.

#include <windows.h>

#include "CVcpHIDConnector.h"

class CWinVcpHIDConnector : public CVcpHIDConnector {
public:
    static constexpr size_t kReportSize = HidVcp::kReportSize;

    CWinVcpHIDConnector() = default;
    ~CWinVcpHIDConnector() override;

    bool Close() override;
    bool IsOpen() const override { return mDevice != nullptr; }
    bool OpenHIDDevice(const std::string& devicePath_I) override;
    bool CloseHIDDevice() override;
    bool SetFeature(const ByteBuffer& report_I) override;
    bool GetFeature(ByteBuffer& report_IO) override;

    // Takes over a handle that discovery opened; the connector closes it.
    void AdoptDevice(HANDLE device_I);
    // A control interface of the maker's that accepts the VCP status report. Pen, touch and
    // keyboard collections of the same device refuse it.
    bool AnswersAsVcpDevice();

private:
    HANDLE mDevice = nullptr;
};
