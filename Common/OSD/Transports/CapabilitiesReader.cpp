#include "CapabilitiesReader.h"

#include <algorithm>

#include "Connector.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "codes.h"

namespace {

constexpr size_t kMaxChunkData = 32;  // MCCS: at most 32 data bytes per fragment
constexpr size_t kMaxCapabilities = 0x8000;

enum class EChunk { Data, End, Bad };

// Checks one 0xE3 reply for the requested offset and appends its data.
EChunk TakeChunk(const ByteBuffer& reply_I, uint16_t offset_I, ByteBuffer& caps_IO, size_t& taken_O) {
    taken_O = 0;
    size_t dataSize = 0;
    if (!CheckOffsetReply(reply_I, ddcCC_CapabilitiesReplyCode, offset_I, dataSize)) {
        return EChunk::Bad;
    }
    const size_t count = std::min(dataSize, kMaxChunkData);
    if (count == 0) {
        return EChunk::End;
    }
    const auto data = reply_I.begin() + Ddc::kOffsetReplyHeaderSize;
    caps_IO.insert(caps_IO.end(), data, data + static_cast<std::ptrdiff_t>(count));
    taken_O = count;
    return EChunk::Data;
}

}  // namespace

std::string ReadCapabilitiesByOffset(Connector& connector_I, const SCapabilitiesReadTiming& timing_I) {
    ByteBuffer caps;
    uint16_t offset = 0;
    while (caps.size() < kMaxCapabilities) {
        EChunk chunk = EChunk::Bad;
        size_t taken = 0;
        for (int attempt = 0; attempt < timing_I.attemptsPerChunk && chunk == EChunk::Bad; ++attempt) {
            ByteBuffer reply = connector_I.SendRequest(BuildCapabilitiesRequest(offset),
                                                       timing_I.replyWaitSeconds, timing_I.expectedSize, 0);
            chunk = TakeChunk(reply, offset, caps, taken);
            if (chunk == EChunk::Bad) {
                DLog("ReadCapabilitiesByOffset: bad reply at offset %u (attempt %i)\n", offset, attempt + 1);
            }
        }
        if (chunk == EChunk::End) {
            break;
        }
        if (chunk == EChunk::Bad) {
            DLog("ReadCapabilitiesByOffset: giving up at offset %u\n", offset);
            return {};
        }
        offset = static_cast<uint16_t>(offset + taken);
    }
    // Some firmware pads the last fragment with NULs.
    caps.erase(std::find(caps.begin(), caps.end(), 0), caps.end());
    if (caps.empty()) {
        return {};
    }
    return Connector::TrimCapabilitiesString(caps);
}
