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
    if (!HidVcp::IsVcpReport(report_I)) {
        return false;
    }
    const uint8_t kind = report_I[HidVcp::kKindByte];
    if (kind == HidVcp::kKindStatus) {
        mStatusRequested = true;
        return true;
    }
    // The DDC/CI packet's length byte says how long it is.
    if (report_I.size() < HidVcp::kPacketStart + 3) {
        return false;
    }
    const auto packetStart = report_I.begin() + HidVcp::kPacketStart;
    const size_t packetSize = std::min(FramedRequestSize(ByteBuffer(packetStart, packetStart + 3)),
                                       report_I.size() - HidVcp::kPacketStart);
    ByteBuffer packet(packetStart, packetStart + static_cast<std::ptrdiff_t>(packetSize));
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
    status[0] = HidVcp::kReportId;
    status[1] = HidVcp::kVcpChannel;
    status[HidVcp::kKindByte] = mKind;
    if (mStatusRequested) {
        ++mStatusReads;
    }
    if (mBusyLeft > 0) {
        // Busy reports alternate between the two codes the firmware uses.
        status[HidVcp::kStatusByte] = (mBusyLeft % 2 == 0) ? kStatusBusyAlternate : kStatusBusy;
        --mBusyLeft;
    } else if (mReply.empty()) {
        status[HidVcp::kStatusByte] = kStatusNoReply;
    } else {
        status[HidVcp::kStatusByte] = kStatusDone;
        status[HidVcp::kReplyLengthByte] = static_cast<uint8_t>(std::min<size_t>(mReply.size(), 0xFF));
        std::copy_n(mReply.begin(), std::min(mReply.size(), kReportSize - HidVcp::kReplyStart),
                    status.begin() + HidVcp::kReplyStart);
    }
    report_IO = status;
    return true;
}
