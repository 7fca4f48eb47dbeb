#include "CVirtualDisplayConnector.h"

#include "CapabilitiesReader.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "VendorCommands.h"
#include "codes.h"

CVirtualDisplayConnector::CVirtualDisplayConnector(std::shared_ptr<CVirtualDisplay> display_I,
                                                   unsigned type_I)
    : mDisplay(std::move(display_I)), mType(type_I) {}

bool CVirtualDisplayConnector::Open(const std::string& name_I) {
    DLog("CVirtualDisplayConnector::Open %s\n", name_I.c_str());
    mOpen = mDisplay != nullptr;
    return mOpen;
}

bool CVirtualDisplayConnector::Open(int32_t deviceIndex_I) {
    mOpen = mDisplay != nullptr && deviceIndex_I == 0;
    return mOpen;
}

bool CVirtualDisplayConnector::Close() {
    mOpen = false;
    return Connector::Close();
}

ByteBuffer CVirtualDisplayConnector::SendRequest(const ByteBuffer& toSend_I, double delay_I,
                                                 unsigned expectedSize_I, int32_t) {
    if (!mOpen) {
        return {};
    }
    DLogHex("CVirtualDisplayConnector::SendRequest w", toSend_I);
    ByteBuffer reply = mDisplay->Handle(toSend_I);
    Clock::PauseSeconds(delay_I);
    if (reply.size() > expectedSize_I && expectedSize_I != 0) {
        reply.resize(expectedSize_I);
    }
    DLogHex("CVirtualDisplayConnector::SendRequest r", reply);
    return reply;
}

std::string CVirtualDisplayConnector::CapabilitiesString() {
    if (!mOpen) {
        return {};
    }
    return ReadCapabilitiesByOffset(*this);
}

SFirmwareVersion CVirtualDisplayConnector::FWVersion() {
    if (!mOpen) {
        return {};
    }
    return ReadFirmwareVersionByGet("CVirtualDisplayConnector");
}

ByteBuffer CVirtualDisplayConnector::ReadEDID(int32_t) {
    if (!mOpen) {
        return {};
    }
    return ReadEdidByVendorCommand(*this, "CVirtualDisplayConnector::ReadEDID");
}
