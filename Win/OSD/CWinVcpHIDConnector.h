#pragma once
// The HID connector's Windows half: the device handle and the two feature-report calls. Every
// report is 512 bytes, or the collection's own feature-report length where that is larger.

#include <windows.h>

#include "CVcpHIDConnector.h"

class CWinVcpHIDConnector : public CVcpHIDConnector {
public:
    static constexpr size_t kReportSize = HidVcp::kReportSize;
    // How long one feature report may take before it is cancelled.
    static constexpr DWORD kTransferTimeoutMs = 1000;

    using CreateFileFunction = HANDLE(WINAPI*)(LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD,
                                               HANDLE);
    // Opens a HID path for feature reports: for reading and writing, or, where Windows keeps
    // the collection for itself (pen, touch, keyboard; error 5) or the tablet service holds it
    // (error 32), with access 0, which feature reports still work with. Overlapped, so that
    // each report can be bounded. INVALID_HANDLE_VALUE on failure, with the last error set.
    static HANDLE OpenFeatureHandle(CreateFileFunction createFile_I, const std::string& devicePath_I);

    CWinVcpHIDConnector() = default;
    ~CWinVcpHIDConnector() override;

    bool Close() override;
    bool IsOpen() const override { return mDevice != nullptr; }
    bool OpenHIDDevice(const std::string& devicePath_I) override;
    bool CloseHIDDevice() override;
    bool SetFeature(const ByteBuffer& report_I) override;
    bool GetFeature(ByteBuffer& report_IO) override;

    // Takes over a handle that discovery opened with OpenFeatureHandle; the connector closes it.
    void AdoptDevice(HANDLE device_I);
    // A control interface of the maker's that accepts the VCP status report. Pen, touch and
    // keyboard collections of the same device refuse it.
    bool AnswersAsVcpDevice();

    // The length every report is padded to.
    size_t ReportSize() const { return mReportSize; }
    void SetTransferTimeout(DWORD milliseconds_I) { mTransferTimeoutMs = milliseconds_I; }

private:
    void Attach(HANDLE device_I);
    // The collection's feature-report length (report id included), when it says.
    size_t ReadFeatureReportLength() const;
    // One feature report through the device, given up on after the time-out.
    bool Transfer(DWORD ioctl_I, ByteBuffer& report_IO);

    HANDLE mDevice = nullptr;
    HANDLE mEvent = nullptr;
    size_t mReportSize = kReportSize;
    DWORD mTransferTimeoutMs = kTransferTimeoutMs;
};
