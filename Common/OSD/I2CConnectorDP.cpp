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
constexpr size_t kHeaderSize = 5;  // address, length, opcode, two offset bytes
constexpr size_t kMaxTableSize = 0x8000;

bool IsNullMessage(const ByteBuffer& reply_I) {
    return reply_I.size() >= 3 && reply_I[0] == Ddc::kDisplayAddress && reply_I[1] == Ddc::kLengthFlag &&
           Checksum(ByteBuffer(reply_I.begin(), reply_I.begin() + 3), Ddc::kReplyChecksumSeed) == 0;
}

// A table-read reply for this offset: 6E 80|n E4 offset-high offset-low data chk.
bool IsTableChunk(const ByteBuffer& reply_I, uint16_t offset_I) {
    if (reply_I.size() < kHeaderSize + 2 || Checksum(reply_I, Ddc::kReplyChecksumSeed) != 0) {
        return false;
    }
    const size_t declared = reply_I[1] & 0x7F;
    return reply_I[0] == Ddc::kDisplayAddress && (reply_I[1] & Ddc::kLengthFlag) != 0 &&
           reply_I[2] == ddcCC_TableReadReplyCode && ((reply_I[3] << 8) | reply_I[4]) == offset_I &&
           declared > 3 && declared + 3 == reply_I.size();
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

ByteBuffer CI2CConnectorDP::BuildTableReadRequest(uint8_t table_I, uint16_t offset_I) {
    ByteBuffer request{0x6E,
                       0x51,
                       0x84,
                       ddcCC_TableReadRequest,
                       table_I,
                       static_cast<uint8_t>(offset_I >> 8),
                       static_cast<uint8_t>(offset_I & 0xFF)};
    request.push_back(Checksum(request, 0));
    return request;
}

ByteBuffer CI2CConnectorDP::ReadVendorTable(uint8_t table_I) {
    ByteBuffer table;
    uint16_t offset = 0;
    while (table.size() < kMaxTableSize) {
        bool chunkRead = false;
        for (int attempt = 1; attempt <= kAttemptsPerChunk && !chunkRead; ++attempt) {
            ByteBuffer reply = SendRequest(BuildTableReadRequest(table_I, offset), kTableReadWaitSeconds,
                                           kTableReadReplySize, 0);
            if (IsNullMessage(reply)) {
                return table;  // past the end
            }
            if (IsTableChunk(reply, offset)) {
                table.insert(table.end(), reply.begin() + kHeaderSize, reply.end() - 1);
                offset = static_cast<uint16_t>(offset + reply.size() - kHeaderSize - 1);
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
