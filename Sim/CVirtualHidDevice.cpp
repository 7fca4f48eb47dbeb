#include "CVirtualHidDevice.h"

#include <algorithm>

CVirtualHidDevice::CVirtualHidDevice(std::shared_ptr<CVirtualDisplay> display_I)
    : mDisplay(std::move(display_I)) {}

bool CVirtualHidDevice::SetFeature(const ByteBuffer& report_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFailSet > 0) {
        --mFailSet;
        return false;
    }
    if (report_I.size() < 3 || report_I[0] != 0xE5 || report_I[1] != 0x04) {
        return false;
    }
    const uint8_t kind = report_I[2];
    if (kind == 0x00) {
        mStatusRequested = true;
        return true;
    }
    // The DDC/CI packet starts at byte 5; its length byte says how long it is.
    if (report_I.size() < 8) {
        return false;
    }
    const size_t packetSize = std::min<size_t>((report_I[7] & 0x7F) + 4u, report_I.size() - 5);
    ByteBuffer packet(report_I.begin() + 5, report_I.begin() + 5 + static_cast<std::ptrdiff_t>(packetSize));
    mReply = mDisplay->Handle(packet);
    mKind = kind;
    mBusyLeft = mBusyPolls;
    mStatusRequested = false;
    return true;
}

bool CVirtualHidDevice::GetFeature(ByteBuffer& report_IO) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFailGet > 0) {
        --mFailGet;
        return false;
    }
    ByteBuffer status(kReportSize, 0x00);
    status[0] = 0xE5;
    status[1] = 0x04;
    status[2] = mKind;
    if (mStatusRequested) {
        ++mStatusReads;
    }
    if (mBusyLeft > 0) {
        // Busy reports alternate between the two codes the firmware uses.
        status[4] = (mBusyLeft % 2 == 0) ? kStatusBusyAlternate : kStatusBusy;
        --mBusyLeft;
    } else if (mReply.empty()) {
        status[4] = kStatusNoReply;
    } else {
        status[4] = kStatusDone;
        status[5] = static_cast<uint8_t>(std::min<size_t>(mReply.size(), 0xFF));
        std::copy_n(mReply.begin(), std::min(mReply.size(), kReportSize - 6), status.begin() + 6);
    }
    report_IO = status;
    return true;
}
