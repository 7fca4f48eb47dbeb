#include "CapabilitiesReader.h"

#include <algorithm>

#include "Connector.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ReadInParts.h"
#include "codes.h"

std::string ReadCapabilitiesByOffset(Connector& connector_I, const SCapabilitiesReadTiming& timing_I) {
    SReadInParts read;
    read.attemptsPerPart = timing_I.attemptsPerChunk;
    // One 0xE3 reply for the requested offset, and its data.
    read.readPart = [&](uint16_t offset_I) {
        const ByteBuffer reply = connector_I.SendRequest(BuildCapabilitiesRequest(offset_I),
                                                         timing_I.replyWaitSeconds, timing_I.expectedSize, 0);
        size_t dataSize = 0;
        if (!CheckOffsetReply(reply, ddcCC_CapabilitiesReplyCode, offset_I, dataSize)) {
            return SPart::Bad();
        }
        const size_t count = std::min(dataSize, Ddc::kMaxFragmentData);
        if (count == 0) {
            return SPart::End();
        }
        const auto data = reply.begin() + Ddc::kOffsetReplyHeaderSize;
        return SPart::Taken(ByteBuffer(data, data + static_cast<std::ptrdiff_t>(count)));
    };
    read.onBadPart = [](uint16_t offset_I, int attempt_I) {
        DLog("ReadCapabilitiesByOffset: bad reply at offset %u (attempt %i)\n", offset_I, attempt_I);
    };
    read.onGiveUp = [](uint16_t offset_I) {
        DLog("ReadCapabilitiesByOffset: giving up at offset %u\n", offset_I);
    };
    SPartsRead parts = ReadInParts(read);
    if (parts.gaveUp) {
        return {};
    }
    ByteBuffer& caps = parts.data;
    // Some firmware pads the last fragment with NULs.
    caps.erase(std::find(caps.begin(), caps.end(), 0), caps.end());
    if (caps.empty()) {
        return {};
    }
    return Connector::TrimCapabilitiesString(caps);
}
