#pragma once
// The VCP control interface that some displays expose as a USB HID device: DDC/CI requests
// arrive inside feature report E5 04 <kind> 00 00 <packet>; the host then asks for status
// with E5 04 00 and reads a 512-byte status report whose byte 4 is 01 or 05 while the display
// works, and which carries the display's DDC/CI reply from byte 6 on.

#include <cstdint>
#include <memory>
#include <mutex>

#include "ByteBuffer.h"
#include "CVirtualDisplay.h"
#include "DdcPackets.h"

class CVirtualHidDevice {
public:
    static constexpr size_t kReportSize = HidVcp::kReportSize;
    static constexpr uint8_t kStatusBusy = HidVcp::kStatusBusy;
    static constexpr uint8_t kStatusBusyAlternate = HidVcp::kStatusBusyAlternate;
    static constexpr uint8_t kStatusDone = HidVcp::kStatusDone;
    static constexpr uint8_t kStatusNoReply = HidVcp::kStatusNoReply;

    explicit CVirtualHidDevice(std::shared_ptr<CVirtualDisplay> display_I);

    // The two HID calls; false when the device refuses (see FailNext).
    bool SetFeature(const ByteBuffer& report_I);
    bool GetFeature(ByteBuffer& report_IO);

    // The next requests report busy for this many status reads before the answer.
    void SetBusyPolls(unsigned polls_I) { mBusyPolls = polls_I; }
    // The next `times_I` SetFeature or GetFeature calls fail.
    void FailSetFeature(unsigned times_I) { mFailSet = times_I; }
    void FailGetFeature(unsigned times_I) { mFailGet = times_I; }

    const std::shared_ptr<CVirtualDisplay>& Display() const { return mDisplay; }
    unsigned StatusReads() const { return mStatusReads; }

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    std::mutex mMutex;
    ByteBuffer mReply;
    uint8_t mKind = 0;
    unsigned mBusyPolls = 0;
    unsigned mBusyLeft = 0;
    unsigned mFailSet = 0;
    unsigned mFailGet = 0;
    unsigned mStatusReads = 0;
    bool mStatusRequested = false;
};
