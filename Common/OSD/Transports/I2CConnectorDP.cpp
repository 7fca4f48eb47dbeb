#include "I2CConnectorDP.h"

#include "Assert.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ReadInParts.h"
#include "VendorCommands.h"
#include "codes.h"

namespace {

constexpr double kTableReadWaitSeconds = 0.05;
constexpr unsigned kTableReadReplySize = 37;
constexpr int kAttemptsPerChunk = 6;

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
    SReadInParts read;
    read.attemptsPerPart = kAttemptsPerChunk;
    read.readPart = [this, table_I](uint16_t offset) {
        const ByteBuffer reply = SendRequest(BuildTableReadRequest(table_I, offset), kTableReadWaitSeconds,
                                             kTableReadReplySize, 0);
        if (StartsWithNullMessage(reply)) {
            return SPart::End();  // past the end
        }
        if (!IsTableChunk(reply, offset)) {
            return SPart::Bad();
        }
        return SPart::Taken(ByteBuffer(reply.begin() + Ddc::kOffsetReplyHeaderSize, reply.end() - 1));
    };
    read.onBadPart = [table_I](uint16_t offset, int attempt) {
        DLog("CI2CConnectorDP::ReadVendorTable: bad reply for table 0x%X at %u (attempt %i)\n", table_I,
             offset, attempt);
    };
    read.onGiveUp = [table_I](uint16_t offset) {
        DLog("CI2CConnectorDP::ReadVendorTable: giving up on table 0x%X at %u\n", table_I, offset);
    };
    SPartsRead parts = ReadInParts(read);
    return parts.gaveUp ? ByteBuffer() : std::move(parts.data);
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
