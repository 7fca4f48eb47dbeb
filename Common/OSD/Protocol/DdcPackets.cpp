#include "DdcPackets.h"

#include "Assert.h"
#include "codes.h"

uint8_t Checksum(const ByteBuffer& buffer_I, uint8_t seed_I) {
    uint8_t sum = seed_I;
    for (uint8_t byte : buffer_I) {
        sum ^= byte;
    }
    return sum;
}

namespace {

uint8_t High(uint16_t value_I) {
    return static_cast<uint8_t>(value_I >> 8);
}
uint8_t Low(uint16_t value_I) {
    return static_cast<uint8_t>(value_I & 0xFF);
}

// Destination, source, length byte, then the data; the checksum (seed 0) goes last.
ByteBuffer FrameRequest(std::initializer_list<uint8_t> data_I) {
    ByteBuffer packet;
    packet.reserve(data_I.size() + 4);
    packet.push_back(Ddc::kDisplayAddress);
    packet.push_back(Ddc::kHostAddress);
    packet.push_back(static_cast<uint8_t>(Ddc::kLengthFlag | data_I.size()));
    packet.insert(packet.end(), data_I.begin(), data_I.end());
    packet.push_back(Checksum(packet, 0));
    return packet;
}

}  // namespace

ByteBuffer SealReply(ByteBuffer reply_I) {
    reply_I.push_back(Checksum(reply_I, Ddc::kReplyChecksumSeed));
    return reply_I;
}

ByteBuffer BuildGetVCPRequest(uint8_t vcpCode_I) {
    return FrameRequest({ddcCC_GetVCPFeatureRequest, vcpCode_I});
}

ByteBuffer BuildSetVCPRequest(uint8_t vcpCode_I, uint16_t value_I) {
    return FrameRequest({ddcCC_SetVCPFeatureRequest, vcpCode_I, High(value_I), Low(value_I)});
}

ByteBuffer BuildSaveCurrentSettingsRequest() {
    return FrameRequest({ddcCC_SaveCurrentSettingsRequest});
}

ByteBuffer BuildCapabilitiesRequest(uint16_t offset_I) {
    return FrameRequest({ddcCC_CapabilitiesRequest, High(offset_I), Low(offset_I)});
}

ByteBuffer BuildTableReadRequest(uint8_t table_I, uint16_t offset_I) {
    return FrameRequest({ddcCC_TableReadRequest, table_I, High(offset_I), Low(offset_I)});
}

ByteBuffer BuildFactoryModeRequest(bool on_I) {
    return FrameRequest(
        {Ddc::kVendorOpcode, Ddc::kFactoryModeCommand, 0x00, static_cast<uint8_t>(on_I ? 1 : 0)});
}

ByteBuffer BuildEdidChunkRequest(uint8_t index_I) {
    return FrameRequest({Ddc::kVendorOpcode, Ddc::kEdidChunkCommand, index_I});
}

ByteBuffer BuildScalerResetMessage() {
    return {Ddc::kScalerResetFirstByte, 0x05, 0x11, 0x00, 0x00, 0xEA};
}

size_t FramedRequestSize(const ByteBuffer& request_I) {
    if (request_I.size() < 3) {
        return 0;
    }
    return static_cast<size_t>(request_I[2] & Ddc::kLengthMask) + 4;
}

ByteBuffer BuildNullMessage() {
    return SealReply({Ddc::kDisplayAddress, Ddc::kLengthFlag});
}

ByteBuffer BuildGetReply(uint8_t result_I, uint8_t vcpCode_I, uint16_t maximum_I, uint16_t current_I) {
    return SealReply({Ddc::kDisplayAddress, Ddc::kGetReplyLength, ddcCC_VCPReplyCode, result_I, vcpCode_I,
                      0x00, High(maximum_I), Low(maximum_I), High(current_I), Low(current_I)});
}

ByteBuffer BuildOffsetReply(uint8_t opcode_I, uint16_t offset_I, const ByteBuffer& data_I) {
    ByteBuffer reply{Ddc::kDisplayAddress, 0x00, opcode_I, High(offset_I), Low(offset_I)};
    reply.insert(reply.end(), data_I.begin(), data_I.end());
    reply[1] = static_cast<uint8_t>(Ddc::kLengthFlag | (reply.size() - 2));
    return SealReply(std::move(reply));
}

ByteBuffer BuildEdidChunkReply(uint8_t index_I, const ByteBuffer& chunk_I) {
    ByteBuffer reply{Ddc::kDisplayAddress, Ddc::kEdidChunkReplyLength};
    reply.insert(reply.end(), chunk_I.begin(), chunk_I.end());
    reply.push_back(Ddc::kEdidChunkCommand);
    reply.push_back(index_I);
    return SealReply(std::move(reply));
}

uint8_t StripReplyChecksum(ByteBuffer& reply_IO) {
    if (!reply_IO.empty()) {
        reply_IO.pop_back();
    }
    return Checksum(reply_IO, Ddc::kReplyChecksumSeed);
}

bool IsNullMessage(const ByteBuffer& reply_I) {
    return reply_I.size() == Ddc::kNullMessageSize && StartsWithNullMessage(reply_I);
}

bool StartsWithNullMessage(const ByteBuffer& reply_I) {
    return reply_I.size() >= Ddc::kNullMessageSize && reply_I[0] == Ddc::kDisplayAddress &&
           reply_I[1] == Ddc::kLengthFlag && reply_I[2] == Ddc::kNullMessageChecksum;
}

bool IsNullMessageByte(uint8_t byte_I) {
    return byte_I == Ddc::kDisplayAddress || byte_I == Ddc::kLengthFlag ||
           byte_I == Ddc::kNullMessageChecksum;
}

bool StartsWithGetReplyHeader(const ByteBuffer& reply_I) {
    return reply_I.size() >= 3 && reply_I[0] == Ddc::kDisplayAddress && reply_I[1] == Ddc::kGetReplyLength &&
           reply_I[2] == ddcCC_VCPReplyCode;
}

bool CheckOffsetReply(const ByteBuffer& reply_I, uint8_t opcode_I, uint16_t offset_I, size_t& dataSize_O) {
    dataSize_O = 0;
    if (reply_I.size() < Ddc::kOffsetReplyHeaderSize + 1 || Checksum(reply_I, Ddc::kReplyChecksumSeed) != 0) {
        return false;
    }
    if (reply_I[0] != Ddc::kDisplayAddress || (reply_I[1] & Ddc::kLengthFlag) == 0 ||
        reply_I[2] != opcode_I || ((reply_I[3] << 8) | reply_I[4]) != offset_I) {
        return false;
    }
    // The length byte counts the opcode, the two offset bytes and the data.
    const size_t declared = reply_I[1] & Ddc::kLengthMask;
    if (declared < 3 || declared + 3 > reply_I.size()) {
        return false;
    }
    dataSize_O = declared - 3;
    return true;
}

EReplyError CheckGetReply(const ByteBuffer& inBuffer, uint8_t requestedCode_I, bool continuous_I,
                          SGetReplyValue& value_O) {
    if (inBuffer.size() < 2) {
        return EReplyError::SendRequestFailed;
    }
    if (inBuffer.size() < 10) {
        if (inBuffer[0] == Ddc::kDisplayAddress && inBuffer[1] == Ddc::kLengthFlag) {
            return EReplyError::NoData;
        }
        return EReplyError::UnknownResponse;
    }
    if (inBuffer[0] != Ddc::kDisplayAddress) {
        return EReplyError::AddressIncorrect;
    }
    if (inBuffer[1] != Ddc::kGetReplyLength) {
        return EReplyError::LengthIncorrect;
    }
    if (inBuffer[2] != ddcCC_VCPReplyCode) {
        return EReplyError::ReplyCodeIncorrect;
    }
    if (inBuffer[3] != 0) {
        return EReplyError::VcpCodeError;
    }
    if (inBuffer[4] != requestedCode_I) {
        return EReplyError::NotOurQuery;
    }
    if (inBuffer[5] != 0 && inBuffer[5] != 1) {
        return EReplyError::BadCodeType;
    }
    value_O.type = inBuffer[5];
    value_O.maximum = static_cast<uint16_t>((inBuffer[6] << 8) | inBuffer[7]);
    value_O.current = static_cast<uint16_t>((inBuffer[8] << 8) | inBuffer[9]);
    if (!continuous_I && requestedCode_I == vcpC_InputSource) {
        // Input Source reports its value in bytes 6, 7 and 9, with byte 8 fixed at 01.
        VLR_ASSERT(inBuffer[8] == 0x01);
        value_O.nonContinuous =
            static_cast<int32_t>((static_cast<uint32_t>(inBuffer[6]) << 24) |
                                 (static_cast<uint32_t>(inBuffer[7]) << 16) | inBuffer[9]);
    } else {
        value_O.nonContinuous = static_cast<int32_t>((static_cast<uint32_t>(inBuffer[6]) << 24) |
                                                     (static_cast<uint32_t>(inBuffer[7]) << 16) |
                                                     (static_cast<uint32_t>(inBuffer[8]) << 8) | inBuffer[9]);
    }
    return EReplyError::None;
}

EReplyError CheckSetReply(const ByteBuffer& inBuffer) {
    return inBuffer.size() < 2 ? EReplyError::SendRequestFailed : EReplyError::None;
}

ByteBuffer BuildSimulatedReply(uint8_t command_I, uint8_t vcpCode_I, uint16_t current_I, uint16_t maximum_I) {
    switch (command_I) {
        case ddcCC_GetVCPFeatureRequest: return BuildGetReply(0x00, vcpCode_I, maximum_I, current_I);
        case ddcCC_SetVCPFeatureRequest:
        case ddcCC_SaveCurrentSettingsRequest: return BuildNullMessage();
        default: VLR_ASSERT_FAIL("Oops - unsupported simulated response"); return SealReply({});
    }
}

SHostRequest DecodeHostRequest(const ByteBuffer& request_I) {
    SHostRequest request;
    if (request_I.size() > Ddc::kCommandByte) {
        request.command = request_I[Ddc::kCommandByte];
    }
    if (request_I.size() > Ddc::kCodeByte) {
        request.vcpCode = request_I[Ddc::kCodeByte];
    }
    if (request_I.size() > Ddc::kValueLowByte) {
        request.hasValue = true;
        request.value =
            static_cast<uint16_t>((request_I[Ddc::kValueHighByte] << 8) | request_I[Ddc::kValueLowByte]);
    }
    return request;
}

bool IsTranslatableRequest(const ByteBuffer& request_I) {
    if (request_I.size() < 4 || request_I[0] != Ddc::kDisplayAddress || request_I[1] != Ddc::kHostAddress) {
        VLR_ASSERT_FAIL("Zero-length request vector");
        VLR_ASSERT_FAIL("Oops - unknown or unsupported VCP op");
        return false;
    }
    return true;
}

void ReportUntranslatableCommand() {
    VLR_ASSERT_FAIL("Oops - unsupported vcpCode");
    VLR_ASSERT_FAIL("Oops - unknown or unsupported VCP op");
}

namespace HidVcp {

ByteBuffer BuildStatusRequest() {
    return {kReportId, kVcpChannel, kKindStatus};
}

ByteBuffer WrapRequest(uint8_t kind_I, const ByteBuffer& packet_I) {
    ByteBuffer report{kReportId, kVcpChannel, kind_I, 0x00, 0x00};
    report.insert(report.end(), packet_I.begin(), packet_I.end());
    return report;
}

bool IsVcpReport(const ByteBuffer& report_I) {
    return report_I.size() > kKindByte && report_I[0] == kReportId && report_I[1] == kVcpChannel;
}

bool IsBusy(const ByteBuffer& status_I) {
    return status_I.size() > kStatusByte &&
           (status_I[kStatusByte] == kStatusBusy || status_I[kStatusByte] == kStatusBusyAlternate);
}

bool CarriesGetReply(const ByteBuffer& status_I, uint8_t code_I) {
    return status_I.size() > kCurrentLowByte && status_I[kReplyStart] == Ddc::kDisplayAddress &&
           status_I[kReplyStart + 2] == ddcCC_VCPReplyCode && status_I[kReplyStart + 3] == 0x00 &&
           status_I[kReplyStart + 4] == code_I;
}

}  // namespace HidVcp
