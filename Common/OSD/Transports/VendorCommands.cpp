#include "VendorCommands.h"

#include "Assert.h"
#include "Connector.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ScopedTimer.h"

namespace {

constexpr double kFactoryModeWaitSeconds = 0.0001;
constexpr double kEdidChunkWaitSeconds = 0.05;
constexpr unsigned kFactoryModeReplySize = 3;
constexpr unsigned kEdidChunkReplySize = 32;
// What an EDID chunk reply holds without its checksum: 6E 92, the chunk, 66 index.
constexpr size_t kEdidChunkReplyBytes = Ddc::kEdidChunkDataOffset + Ddc::kEdidChunkSize + 2;

}  // namespace

bool SetFactoryMode(Connector& connector_I, bool on_I) {
    DLog("Set Factory Mode %s\n", on_I ? "on" : "off");
    ByteBuffer inBuffer = connector_I.SendRequest(BuildFactoryModeRequest(on_I), kFactoryModeWaitSeconds,
                                                  kFactoryModeReplySize, 0);
    DLogHex("Result", inBuffer);
    VLR_ASSERT_AS(inBuffer.size() == Ddc::kNullMessageSize, "inBuffer.size() == 3");
    if (inBuffer.size() != Ddc::kNullMessageSize) {
        return false;
    }
    // The display answers with the null message; each byte is checked on its own so that the
    // trace says which one was wrong.
    VLR_ASSERT_AS(inBuffer[0] == Ddc::kDisplayAddress, "inBuffer[0] == 0x6E");
    VLR_ASSERT_AS(inBuffer[1] == Ddc::kLengthFlag, "inBuffer[1] == 0x80");
    VLR_ASSERT_AS(Checksum(inBuffer, Ddc::kReplyChecksumSeed) == 0, "Checksum(inBuffer, 0x50) == 0");
    return IsNullMessage(inBuffer);
}

ByteBuffer ReadEdidByVendorCommand(Connector& connector_I, const char* timerLabel_I) {
    CScopedTimer timer(timerLabel_I, " Send EDID request");
    ByteBuffer edid;
    SetFactoryMode(connector_I, true);
    for (int index = 0; index < Ddc::kEdidChunks; ++index) {
        const ByteBuffer request = BuildEdidChunkRequest(static_cast<uint8_t>(index));
        DLog("ReadEDID request %i\n", index);
        DLogHex("ReadEDID request", request);
        ByteBuffer inBuffer = connector_I.SendRequest(request, kEdidChunkWaitSeconds, kEdidChunkReplySize, 0);
        if (Checksum(inBuffer, Ddc::kReplyChecksumSeed) != 0) {
            VLR_ASSERT_FAIL("ReadEDID read checksum mismatch");
            DLog("ReadEDID:Read checksum failed\n");
        }
        if (!inBuffer.empty()) {
            inBuffer.pop_back();
        }
        VLR_ASSERT_AS(inBuffer.size() == kEdidChunkReplyBytes, "inBuffer.size() == 20");
        if (inBuffer.size() < Ddc::kEdidChunkDataOffset) {
            continue;  // nothing usable in this chunk
        }
        VLR_ASSERT_AS(inBuffer[0] == Ddc::kDisplayAddress, "inBuffer[0] == 0x6E");
        VLR_ASSERT_AS(inBuffer[1] == Ddc::kEdidChunkReplyLength, "inBuffer[1] == 0x92");
        if (inBuffer.size() > Ddc::kEdidChunkDataOffset + Ddc::kEdidChunkSize) {
            inBuffer.resize(Ddc::kEdidChunkDataOffset + Ddc::kEdidChunkSize);
        }
        edid.insert(edid.end(), inBuffer.begin() + Ddc::kEdidChunkDataOffset, inBuffer.end());
    }
    SetFactoryMode(connector_I, false);
    return edid;
}
