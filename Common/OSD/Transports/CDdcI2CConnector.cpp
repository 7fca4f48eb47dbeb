#include "CDdcI2CConnector.h"

#include "Assert.h"
#include "CapabilitiesReader.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "codes.h"

namespace {
constexpr size_t kEdidBlock = 128;
constexpr size_t kExtensionCountByte = 126;
}  // namespace

bool CDdcI2CConnector::Open(const std::string&) {
    VLR_ASSERT_FAIL("This is only used by serial connections");
    return false;
}

bool CDdcI2CConnector::Close() {
    mMaster.reset();
    return Connector::Close();
}

ByteBuffer CDdcI2CConnector::SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                                         int32_t) {
    if (!mMaster || toSend_I.size() < 2) {
        return {};
    }
    // The first byte of a packet is the 8-bit address it goes to.
    const uint8_t address7 = static_cast<uint8_t>(toSend_I[0] >> 1);
    if (!mMaster->Write(address7, ByteBuffer(toSend_I.begin() + 1, toSend_I.end()))) {
        DLog("CDdcI2CConnector::SendRequest: write to 0x%X not acknowledged\n", address7);
        return {};
    }
    Clock::PauseSeconds(delay_I);
    ByteBuffer reply;
    if (!mMaster->Read(address7, expectedSize_I, reply)) {
        DLog("CDdcI2CConnector::SendRequest: read from 0x%X not acknowledged\n", address7);
        return {};
    }
    // The bus delivers as many bytes as were asked for; the reply is what its length byte says.
    if (reply.size() >= 3 && reply[0] == Ddc::kDisplayAddress && (reply[1] & Ddc::kLengthFlag) != 0) {
        const size_t length = static_cast<size_t>(reply[1] & 0x7F) + 3;
        if (length <= reply.size()) {
            reply.resize(length);
        }
    }
    return reply;
}

std::string CDdcI2CConnector::CapabilitiesString() {
    return IsOpen() ? ReadCapabilitiesByOffset(*this) : std::string();
}

SFirmwareVersion CDdcI2CConnector::FWVersion() {
    return ReadFirmwareVersionByGet("CDdcI2CConnector");
}

ByteBuffer CDdcI2CConnector::ReadEDID(int32_t) {
    ByteBuffer edid;
    if (!mMaster || !mMaster->Write(kEdidAddress7, {0x00}) ||
        !mMaster->Read(kEdidAddress7, kEdidBlock, edid) || edid.size() < kEdidBlock) {
        DLog("CDdcI2CConnector::ReadEDID: no EDID at 0x50\n");
        return {};
    }
    if (edid[kExtensionCountByte] > 0) {
        ByteBuffer extension;
        if (mMaster->Write(kEdidAddress7, {static_cast<uint8_t>(kEdidBlock)}) &&
            mMaster->Read(kEdidAddress7, kEdidBlock, extension)) {
            edid.insert(edid.end(), extension.begin(), extension.end());
        }
    }
    return edid;
}
