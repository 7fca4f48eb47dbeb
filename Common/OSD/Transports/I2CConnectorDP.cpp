#include "I2CConnectorDP.h"

#include "Assert.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "VendorCommands.h"
#include "codes.h"

namespace {

constexpr double kTableReadWaitSeconds = 0.05;
constexpr unsigned kTableReadReplySize = 37;
constexpr int kAttemptsPerChunk = 6;
constexpr size_t kMaxTableSize = 0x8000;

// A vendor-table reply for this offset that carries data and nothing after its checksum.
bool IsTableChunk(const ByteBuffer& reply_I, uint16_t offset_I) {
    size_t dataSize = 0;
    return CheckOffsetReply(reply_I, ddcCC_TableReadReplyCode, offset_I, dataSize) && dataSize > 0 &&
           Ddc::kOffsetReplyHeaderSize + dataSize + 1 == reply_I.size();
}

}  // namespace

bool CI2CConnectorDP::Open(const std::string&) {
    VLR_ASSERT_FAIL("This is only used by serial connections");
    return false;
}

bool CI2CConnectorDP::Open(int32_t) {
    VLR_ASSERT_FAIL("This is not used by display port connections");
    return false;
}

bool CI2CConnectorDP::Close() {
    return Connector::Close();
}

ByteBuffer CI2CConnectorDP::ReadVendorTable(uint8_t table_I) {
    ByteBuffer table;
    uint16_t offset = 0;
    while (table.size() < kMaxTableSize) {
        bool chunkRead = false;
        for (int attempt = 1; attempt <= kAttemptsPerChunk && !chunkRead; ++attempt) {
            ByteBuffer reply = SendRequest(BuildTableReadRequest(table_I, offset), kTableReadWaitSeconds,
                                           kTableReadReplySize, 0);
            if (StartsWithNullMessage(reply)) {
                return table;  // past the end
            }
            if (IsTableChunk(reply, offset)) {
                table.insert(table.end(), reply.begin() + Ddc::kOffsetReplyHeaderSize, reply.end() - 1);
                offset = static_cast<uint16_t>(offset + reply.size() - Ddc::kOffsetReplyHeaderSize - 1);
                chunkRead = true;
            } else {
                DLog("CI2CConnectorDP::ReadVendorTable: bad reply for table 0x%X at %u (attempt %i)\n",
                     table_I, offset, attempt);
            }
        }
        if (!chunkRead) {
            DLog("CI2CConnectorDP::ReadVendorTable: giving up on table 0x%X at %u\n", table_I, offset);
            return {};
        }
    }
    return table;
}

std::string CI2CConnectorDP::CapabilitiesString() {
    ByteBuffer caps = ReadVendorTable(ddcCC_CapabilitiesRequest);
    if (caps.empty()) {
        return {};
    }
    return TrimCapabilitiesString(caps);
}

SFirmwareVersion CI2CConnectorDP::FWVersion() {
    ByteBuffer record = ReadVendorTable(vcpC_DisplayFirmwareLevel);
    if (record.size() < 3) {
        DLog("CI2CConnectorDP::FWVersion - failed\n");
        return {};
    }
    return {record[0], record[1], record[2], kFirmwareVersionKindVcpC9, 0};
}

ByteBuffer CI2CConnectorDP::ReadEDID(int32_t) {
    return ReadEdidByVendorCommand(*this, "CI2CConnectorDP::ReadEDID");
}

bool CI2CConnectorDP::SetFactoryMode(bool on_I) {
    return ::SetFactoryMode(*this, on_I);
}
