#include "VendorCommands.h"

#include "Assert.h"
#include "Connector.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ScopedTimer.h"

namespace {

constexpr uint8_t kVendorOpcode = 0xC0;
constexpr uint8_t kFactoryModeCommand = 0xE1;
constexpr uint8_t kEdidChunkCommand = 0x66;
constexpr int kEdidChunks = 16;
constexpr double kFactoryModeWaitSeconds = 0.0001;
constexpr double kEdidChunkWaitSeconds = 0.05;

ByteBuffer Frame(ByteBuffer packet_I) {
    packet_I.push_back(Checksum(packet_I, 0));
    return packet_I;
}

}  // namespace

ByteBuffer BuildFactoryModeRequest(bool on_I) {
    return Frame(
        {0x6E, 0x51, 0x84, kVendorOpcode, kFactoryModeCommand, 0x00, static_cast<uint8_t>(on_I ? 1 : 0)});
}

ByteBuffer BuildEdidChunkRequest(uint8_t index_I) {
    return Frame({0x6E, 0x51, 0x83, kVendorOpcode, kEdidChunkCommand, index_I});
}

bool SetFactoryMode(Connector& connector_I, bool on_I) {
    DLog("Set Factory Mode %s\n", on_I ? "on" : "off");
    ByteBuffer inBuffer =
        connector_I.SendRequest(BuildFactoryModeRequest(on_I), kFactoryModeWaitSeconds, 3, 0);
    DLogHex("Result", inBuffer);
    VLR_ASSERT(inBuffer.size() == 3);
    if (inBuffer.size() != 3) {
        return false;
    }
    VLR_ASSERT(inBuffer[0] == 0x6E);
    VLR_ASSERT(inBuffer[1] == 0x80);
    VLR_ASSERT(Checksum(inBuffer, 0x50) == 0);
    return inBuffer[0] == 0x6E && inBuffer[1] == 0x80 && Checksum(inBuffer, 0x50) == 0;
}

ByteBuffer ReadEdidByVendorCommand(Connector& connector_I, const char* timerLabel_I) {
    CScopedTimer timer(timerLabel_I, " Send EDID request");
    ByteBuffer edid;
    SetFactoryMode(connector_I, true);
    for (int index = 0; index < kEdidChunks; ++index) {
        const ByteBuffer request = BuildEdidChunkRequest(static_cast<uint8_t>(index));
        DLog("ReadEDID request %i\n", index);
        DLogHex("ReadEDID request", request);
        ByteBuffer inBuffer = connector_I.SendRequest(request, kEdidChunkWaitSeconds, 32, 0);
        if (Checksum(inBuffer, 0x50) != 0) {
            VLR_ASSERT_FAIL("ReadEDID read checksum mismatch");
            DLog("ReadEDID:Read checksum failed\n");
        }
        if (!inBuffer.empty()) {
            inBuffer.pop_back();
        }
        VLR_ASSERT(inBuffer.size() == 20);
        if (inBuffer.size() < 2) {
            continue;  // nothing usable in this chunk
        }
        VLR_ASSERT(inBuffer[0] == 0x6E);
        VLR_ASSERT(inBuffer[1] == 0x92);
        if (inBuffer.size() > 18) {
            inBuffer.resize(18);
        }
        edid.insert(edid.end(), inBuffer.begin() + 2, inBuffer.end());
    }
    SetFactoryMode(connector_I, false);
    return edid;
}
