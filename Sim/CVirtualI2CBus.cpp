#include "CVirtualI2CBus.h"

#include <algorithm>

#include "CDdcI2CConnector.h"

CVirtualI2CBus::CVirtualI2CBus(std::shared_ptr<CVirtualDisplay> display_I) : mDisplay(std::move(display_I)) {}

bool CVirtualI2CBus::Write(uint8_t address7_I, const ByteBuffer& bytes_I) {
    if (!mDisplay) {
        return false;  // nothing on the bus
    }
    if (mNackWrites > 0) {
        --mNackWrites;
        return false;
    }
    if (address7_I == CDdcI2CConnector::kEdidAddress7) {
        mEdidOffset = bytes_I.empty() ? 0 : bytes_I[0];
        return true;
    }
    if (address7_I != CDdcI2CConnector::kDisplayAddress7 && address7_I != (0xEE >> 1)) {
        return false;  // nobody at that address
    }
    ByteBuffer packet;
    packet.reserve(bytes_I.size() + 1);
    packet.push_back(static_cast<uint8_t>(address7_I << 1));
    packet.insert(packet.end(), bytes_I.begin(), bytes_I.end());
    mReply = mDisplay->Handle(packet);
    return true;
}

bool CVirtualI2CBus::Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) {
    if (!mDisplay) {
        return false;
    }
    if (mNackReads > 0) {
        --mNackReads;
        return false;
    }
    const size_t count = std::min(count_I, mShortRead);
    mShortRead = SIZE_MAX;
    bytes_O.assign(count, 0xFF);
    if (address7_I == CDdcI2CConnector::kEdidAddress7) {
        const ByteBuffer& edid = mDisplay->Edid();
        for (size_t i = 0; i < count && mEdidOffset + i < edid.size(); ++i) {
            bytes_O[i] = edid[mEdidOffset + i];
        }
        return true;
    }
    if (mReply.empty()) {
        return false;  // the controller has nothing to say and does not acknowledge
    }
    std::copy_n(mReply.begin(), std::min(count, mReply.size()), bytes_O.begin());
    return true;
}
