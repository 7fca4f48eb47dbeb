#include "CapabilitiesReader.h"

#include <algorithm>

#include "Connector.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "codes.h"

namespace {

constexpr size_t kHeaderSize = 5;     // address, length, opcode, two offset bytes
constexpr size_t kMaxChunkData = 32;  // MCCS: at most 32 data bytes per fragment
constexpr size_t kMaxCapabilities = 0x8000;

enum class EChunk { Data, End, Bad };

// Checks one 0xE3 reply for the requested offset and appends its data.
EChunk TakeChunk(const ByteBuffer& reply_I, uint16_t offset_I, ByteBuffer& caps_IO, size_t& taken_O) {
    taken_O = 0;
    if (reply_I.size() < kHeaderSize + 1 || Checksum(reply_I, Ddc::kReplyChecksumSeed) != 0) {
        return EChunk::Bad;
    }
    if (reply_I[0] != Ddc::kDisplayAddress || (reply_I[1] & Ddc::kLengthFlag) == 0 ||
        reply_I[2] != ddcCC_CapabilitiesReplyCode) {
        return EChunk::Bad;
    }
    if (((reply_I[3] << 8) | reply_I[4]) != offset_I) {
        return EChunk::Bad;
    }
    const size_t declared = static_cast<size_t>(reply_I[1] & 0x7F);
    if (declared < 3 || declared + 3 > reply_I.size()) {
        return EChunk::Bad;
    }
    const size_t count = std::min(declared - 3, kMaxChunkData);
    if (count == 0) {
        return EChunk::End;
    }
    caps_IO.insert(caps_IO.end(), reply_I.begin() + kHeaderSize, reply_I.begin() + kHeaderSize + count);
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
