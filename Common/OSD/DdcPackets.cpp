#include "DdcPackets.h"

#include "Assert.h"
#include "codes.h"

namespace Ddc {

double SetRequestWaitSeconds(uint8_t vcpCode_I) {
    switch (vcpCode_I) {
        case vcpC_Luminance: return kSetLuminanceWaitSeconds;
        case vcpC_DisplayScaling: return kSetDisplayScalingWaitSeconds;
        default: return kSetWaitSeconds;
    }
}

}  // namespace Ddc

uint8_t Checksum(const ByteBuffer& buffer_I, uint8_t seed_I) {
    uint8_t sum = seed_I;
    for (uint8_t byte : buffer_I) {
        sum ^= byte;
    }
    return sum;
}

namespace {

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

ByteBuffer BuildGetVCPRequest(uint8_t vcpCode_I) {
    return FrameRequest({ddcCC_GetVCPFeatureRequest, vcpCode_I});
}

ByteBuffer BuildSetVCPRequest(uint8_t vcpCode_I, uint16_t value_I) {
    return FrameRequest({ddcCC_SetVCPFeatureRequest, vcpCode_I, static_cast<uint8_t>(value_I >> 8),
                         static_cast<uint8_t>(value_I & 0xFF)});
}

ByteBuffer BuildSaveCurrentSettingsRequest() {
    return FrameRequest({ddcCC_SaveCurrentSettingsRequest});
}

ByteBuffer BuildCapabilitiesRequest(uint16_t offset_I) {
    return FrameRequest({ddcCC_CapabilitiesRequest, static_cast<uint8_t>(offset_I >> 8),
                         static_cast<uint8_t>(offset_I & 0xFF)});
}

ByteBuffer BuildScalerResetMessage() {
    return {0xEE, 0x05, 0x11, 0x00, 0x00, 0xEA};
}

ByteBuffer BuildNullMessage() {
    ByteBuffer reply{Ddc::kDisplayAddress, Ddc::kLengthFlag};
    reply.push_back(Checksum(reply, Ddc::kReplyChecksumSeed));
    return reply;
}

uint8_t StripReplyChecksum(ByteBuffer& reply_IO) {
    if (!reply_IO.empty()) {
        reply_IO.pop_back();
    }
    return Checksum(reply_IO, Ddc::kReplyChecksumSeed);
}

std::string CheckGetReply(const ByteBuffer& inBuffer, uint8_t requestedCode_I, bool continuous_I,
                          SGetReplyValue& value_O) {
    if (inBuffer.size() < 2) {
        return "Send request failed";
    }
    if (inBuffer.size() < 10) {
        if (inBuffer[0] == Ddc::kDisplayAddress && inBuffer[1] == Ddc::kLengthFlag) {
            return "Send request no data";
        }
        return "Send request unknown response";
    }
    if (inBuffer[0] != Ddc::kDisplayAddress) {
        return "address is incorrect";
    }
    if (inBuffer[1] != 0x88) {
        return "length is incorrect";
    }
    if (inBuffer[2] != ddcCC_VCPReplyCode) {
        return "reply code is incorrect";
    }
    if (inBuffer[3] != 0) {
        return "vcp code error";
    }
    if (inBuffer[4] != requestedCode_I) {
        return "it is NOT a response to our query";
    }
    if (inBuffer[5] != 0 && inBuffer[5] != 1) {
        return "Bad code type";
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
    return {};
}

ByteBuffer BuildSimulatedReply(uint8_t command_I, uint8_t vcpCode_I, uint16_t current_I, uint16_t maximum_I) {
    ByteBuffer reply;
    switch (command_I) {
        case ddcCC_GetVCPFeatureRequest:
            reply = {Ddc::kDisplayAddress,
                     0x88,
                     ddcCC_VCPReplyCode,
                     0x00,
                     vcpCode_I,
                     0x00,
                     static_cast<uint8_t>(maximum_I >> 8),
                     static_cast<uint8_t>(maximum_I & 0xFF),
                     static_cast<uint8_t>(current_I >> 8),
                     static_cast<uint8_t>(current_I & 0xFF)};
            break;
        case ddcCC_SetVCPFeatureRequest:
        case ddcCC_SaveCurrentSettingsRequest: reply = {Ddc::kDisplayAddress, Ddc::kLengthFlag}; break;
        default: VLR_ASSERT_FAIL("Oops - unsupported simulated response"); break;
    }
    reply.push_back(Checksum(reply, Ddc::kReplyChecksumSeed));
    return reply;
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
