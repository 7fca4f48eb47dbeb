#include <gtest/gtest.h>

#include "DdcPackets.h"
#include "LogCapture.h"
#include "codes.h"

namespace {

// A well-formed get reply with its checksum, as a display sends it.
ByteBuffer GetReply(uint8_t code, uint16_t maximum, uint16_t current, uint8_t type = 0) {
    ByteBuffer reply{0x6E,
                     0x88,
                     0x02,
                     0x00,
                     code,
                     type,
                     static_cast<uint8_t>(maximum >> 8),
                     static_cast<uint8_t>(maximum),
                     static_cast<uint8_t>(current >> 8),
                     static_cast<uint8_t>(current)};
    reply.push_back(Checksum(reply, 0x50));
    return reply;
}

std::string Check(ByteBuffer reply, uint8_t code, bool continuous, SGetReplyValue* value = nullptr) {
    SGetReplyValue scratch;
    return ReplyErrorText(CheckGetReply(reply, code, continuous, value != nullptr ? *value : scratch));
}

}  // namespace

TEST(DdcPackets, RequestsAreFramedByteForByte) {
    EXPECT_EQ(BuildGetVCPRequest(vcpC_Luminance), (ByteBuffer{0x6E, 0x51, 0x82, 0x01, 0x10, 0xAC}));
    EXPECT_EQ(BuildSetVCPRequest(vcpC_Contrast, 0x0032),
              (ByteBuffer{0x6E, 0x51, 0x84, 0x03, 0x12, 0x00, 0x32, 0x98}));
    EXPECT_EQ(BuildSetVCPRequest(vcpC_Luminance, 300),
              (ByteBuffer{0x6E, 0x51, 0x84, 0x03, 0x10, 0x01, 0x2C, 0x85}));
    EXPECT_EQ(BuildSaveCurrentSettingsRequest(), (ByteBuffer{0x6E, 0x51, 0x81, 0x0C, 0xB2}));
    EXPECT_EQ(BuildCapabilitiesRequest(0x0120), (ByteBuffer{0x6E, 0x51, 0x83, 0xF3, 0x01, 0x20, 0x6E}));
    EXPECT_EQ(BuildScalerResetMessage(), (ByteBuffer{0xEE, 0x05, 0x11, 0x00, 0x00, 0xEA}));
    EXPECT_EQ(BuildNullMessage(), (ByteBuffer{0x6E, 0x80, 0xBE}));
    // Every request's checksum makes the XOR of the whole packet zero.
    for (const ByteBuffer& request : {BuildGetVCPRequest(0xF4), BuildSetVCPRequest(0x86, 0xFFFF),
                                      BuildSaveCurrentSettingsRequest(), BuildCapabilitiesRequest(0xFFFF)}) {
        EXPECT_EQ(Checksum(request, 0), 0);
    }
}

TEST(DdcPackets, StripReplyChecksumRemovesTheLastByteAndChecksTheRest) {
    ByteBuffer reply = GetReply(0x10, 100, 50);
    const uint8_t sent = reply.back();
    EXPECT_EQ(StripReplyChecksum(reply), sent);
    EXPECT_EQ(reply.size(), 10u);
    ByteBuffer empty;
    EXPECT_EQ(StripReplyChecksum(empty), 0x50);
    EXPECT_TRUE(empty.empty());
}

TEST(DdcPackets, GetReplyChecksFailInTheFirmwaresOrder) {
    EXPECT_EQ(Check({}, 0x10, true), "Send request failed");
    EXPECT_EQ(Check({0x6E}, 0x10, true), "Send request failed");
    EXPECT_EQ(Check({0x6E, 0x80}, 0x10, true), "Send request no data");
    EXPECT_EQ(Check({0x6E, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 0x10, true),
              "Send request no data");
    EXPECT_EQ(Check({0x6F, 0x80}, 0x10, true), "Send request unknown response");
    EXPECT_EQ(Check({0x6E, 0x88, 0x02}, 0x10, true), "Send request unknown response");

    ByteBuffer good = GetReply(0x10, 100, 50);
    good.pop_back();
    ASSERT_EQ(Check(good, 0x10, true), "");

    // Each field is checked in turn; with several wrong fields the first one decides.
    auto with = [&good](size_t index, uint8_t value) {
        ByteBuffer reply = good;
        reply[index] = value;
        return reply;
    };
    EXPECT_EQ(Check(with(0, 0x6F), 0x10, true), "address is incorrect");
    EXPECT_EQ(Check(with(1, 0x87), 0x10, true), "length is incorrect");
    EXPECT_EQ(Check(with(2, 0x03), 0x10, true), "reply code is incorrect");
    EXPECT_EQ(Check(with(3, 0x01), 0x10, true), "vcp code error");
    EXPECT_EQ(Check(with(4, 0x12), 0x10, true), "it is NOT a response to our query");
    EXPECT_EQ(Check(good, 0x12, true), "it is NOT a response to our query");
    EXPECT_EQ(Check(with(5, 0x02), 0x10, true), "Bad code type");
    ByteBuffer twoWrong = with(1, 0x00);
    twoWrong[4] = 0x99;
    EXPECT_EQ(Check(twoWrong, 0x10, true), "length is incorrect");
    // A bad checksum is not judged here: the fields decide.
    ByteBuffer badChecksum = GetReply(0x10, 100, 50);
    badChecksum.back() ^= 0xFF;
    StripReplyChecksum(badChecksum);
    EXPECT_EQ(Check(badChecksum, 0x10, true), "");
}

TEST(DdcPackets, GetReplyValuesAreBigEndianWithTheInputSourceLayout) {
    SGetReplyValue value;
    ByteBuffer reply = GetReply(0x10, 0x0164, 0x0123, 1);
    reply.pop_back();
    ASSERT_EQ(Check(reply, 0x10, true, &value), "");
    EXPECT_EQ(value.maximum, 0x0164);
    EXPECT_EQ(value.current, 0x0123);
    EXPECT_EQ(value.type, 1);
    EXPECT_EQ(value.nonContinuous, 0x01640123);

    // Input Source: bytes 6, 7 and 9, with byte 8 fixed at 01.
    ByteBuffer input = {0x6E, 0x88, 0x02, 0x00, 0x60, 0x00, 0x00, 0x12, 0x01, 0x0F};
    CLogCapture log;
    ASSERT_EQ(Check(input, 0x60, false, &value), "");
    EXPECT_EQ(value.nonContinuous, 0x0012000F);
    EXPECT_TRUE(log.Asserts().empty());
    input[8] = 0x00;
    ASSERT_EQ(Check(input, 0x60, false, &value), "");
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"inBuffer[8] == 0x01"});
}

TEST(DdcPackets, SimulatedRepliesPassTheChecksTheyStandFor) {
    ByteBuffer get = BuildSimulatedReply(0x01, 0xC9, 0x0102, 0x0003);
    EXPECT_EQ(get, (ByteBuffer{0x6E, 0x88, 0x02, 0x00, 0xC9, 0x00, 0x00, 0x03, 0x01, 0x02,
                               static_cast<uint8_t>(Checksum(
                                   {0x6E, 0x88, 0x02, 0x00, 0xC9, 0x00, 0x00, 0x03, 0x01, 0x02}, 0x50))}));
    EXPECT_EQ(Checksum(get, 0x50), 0);
    SGetReplyValue value;
    StripReplyChecksum(get);
    EXPECT_EQ(CheckGetReply(get, 0xC9, false, value), EReplyError::None);
    EXPECT_EQ(value.maximum, 3);
    EXPECT_EQ(value.current, 0x0102);

    EXPECT_EQ(BuildSimulatedReply(0x03, 0x10, 0, 0), (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(BuildSimulatedReply(0x0C, 0xB2, 0, 0), (ByteBuffer{0x6E, 0x80, 0xBE}));

    CLogCapture log;
    EXPECT_EQ(BuildSimulatedReply(0xF3, 0x00, 0, 0), (ByteBuffer{0x50}));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"Oops - unsupported simulated response"});
}
