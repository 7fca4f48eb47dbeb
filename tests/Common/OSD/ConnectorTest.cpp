#include <gtest/gtest.h>

#include <deque>

#include "Connector.h"
#include "DdcPackets.h"
#include "LogCapture.h"
#include "VirtualClock.h"

namespace {

// Answers each request with the next scripted reply and records what it was sent.
class CScriptedConnector : public Connector {
public:
    std::deque<ByteBuffer> replies;
    std::vector<ByteBuffer> requests;
    std::vector<double> delays;
    std::vector<unsigned> expectedSizes;
    ByteBuffer edid;
    int edidReads = 0;

    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return eConnectorSerial; }
    bool Open(const std::string&) override { return true; }
    bool Open(int32_t) override { return true; }
    bool IsOpen() const override { return true; }
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t) override {
        requests.push_back(toSend_I);
        delays.push_back(delay_I);
        expectedSizes.push_back(expectedSize_I);
        if (replies.empty()) {
            return {};
        }
        ByteBuffer reply = replies.front();
        replies.pop_front();
        return reply;
    }
    std::string CapabilitiesString() override { return {}; }
    SFirmwareVersion FWVersion() override { return {}; }
    ByteBuffer ReadEDID(int32_t) override {
        ++edidReads;
        return edid;
    }
};

ByteBuffer WithChecksum(ByteBuffer bytes) {
    bytes.push_back(Checksum(bytes, 0x50));
    return bytes;
}

ByteBuffer Bytes(const std::string& text) {
    return ByteBuffer(text.begin(), text.end());
}

}  // namespace

TEST(Connector, TrimCapabilitiesKeepsTheBalancedString) {
    CLogCapture log;
    EXPECT_EQ(Connector::TrimCapabilitiesString(Bytes("(prot(monitor)vcp(10))xyz")),
              "(prot(monitor)vcp(10))");
    EXPECT_EQ(Connector::TrimCapabilitiesString(Bytes(std::string("(a(b))\0\0\0", 9))), "(a(b))");
    EXPECT_EQ(Connector::TrimCapabilitiesString(Bytes("(a(b)")), "(a(b)");
    EXPECT_TRUE(log.Asserts().empty());
    EXPECT_TRUE(log.Contains("caps: "));

    log.Clear();
    EXPECT_EQ(Connector::TrimCapabilitiesString(Bytes("x(a)y")), "x(a)");
    EXPECT_EQ(Connector::TrimCapabilitiesString(ByteBuffer{}), "");
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"capsStr_I[0] == '('", "capsStr_I[0] == '('",
                                                       "!capabilitiesStr.empty()"}));
}

TEST(Connector, ScalarResetSendsTheFixedMessageAndAcceptsItsReplyForms) {
    CVirtualClock clock;
    CScopedClock scoped(clock);
    CLogCapture log;
    CScriptedConnector connector;
    connector.replies = {WithChecksum({0x80, 0xBE, 0x6E}),
                         WithChecksum({0xBE, 0x6E, 0x80}),
                         WithChecksum({0x6E, 0x88, 0x02, 0x00, 0x04, 0x00, 0x00, 0x01, 0x00, 0x01}),
                         WithChecksum({0x6E, 0x88, 0x03, 0x00}),
                         WithChecksum({0x6E, 0x80, 0xBE}),
                         {0x6E, 0x80, 0xBE},
                         {0x80, 0xBE, 0x6E, 0x40}};
    EXPECT_TRUE(connector.ScalarReset());
    EXPECT_TRUE(connector.ScalarReset());
    EXPECT_TRUE(connector.ScalarReset());
    EXPECT_FALSE(connector.ScalarReset());
    EXPECT_TRUE(log.Contains("response was one we don't recognize\n"));
    // The plain null message is not among the accepted reset replies.
    EXPECT_FALSE(connector.ScalarReset());
    log.Clear();
    EXPECT_FALSE(connector.ScalarReset());  // three bytes
    EXPECT_TRUE(log.Contains("Send request failed\n"));
    // A bad checksum is only reported.
    EXPECT_TRUE(connector.ScalarReset());
    EXPECT_TRUE(log.Contains("ScalarReset:Read checksum failed 64 0\n"));

    for (size_t i = 0; i < connector.requests.size(); ++i) {
        EXPECT_EQ(connector.requests[i], (ByteBuffer{0xEE, 0x05, 0x11, 0x00, 0x00, 0xEA}));
        EXPECT_DOUBLE_EQ(connector.delays[i], 0.07);
        EXPECT_EQ(connector.expectedSizes[i], 38u);
    }
    EXPECT_TRUE(clock.Pauses().empty());
}

TEST(Connector, SaveSettingsAcceptsTheNullMessageAndItsRotationsThenPauses200ms) {
    CVirtualClock clock;
    CScopedClock scoped(clock);
    CLogCapture log;
    CScriptedConnector connector;
    connector.replies = {WithChecksum({0x6E, 0x80}),
                         WithChecksum({0x80, 0xBE}),
                         WithChecksum({0xBE, 0x6E}),
                         {0x6E, 0x80},
                         WithChecksum({0x6E, 0x88, 0x02})};
    EXPECT_TRUE(connector.SaveSettingsToScalar());
    EXPECT_TRUE(connector.SaveSettingsToScalar());
    EXPECT_TRUE(connector.SaveSettingsToScalar());
    EXPECT_EQ(clock.PausesMs(), (std::vector<long long>{200, 200, 200}));
    clock.ClearPauses();
    EXPECT_FALSE(connector.SaveSettingsToScalar());  // two bytes: no pause
    EXPECT_FALSE(connector.SaveSettingsToScalar());  // 6E 88: not a null message
    EXPECT_TRUE(log.Contains("response was one we don't recognize\n"));
    EXPECT_TRUE(clock.Pauses().empty());
    EXPECT_EQ(connector.requests.front(), (ByteBuffer{0x6E, 0x51, 0x81, 0x0C, 0xB2}));
    EXPECT_DOUBLE_EQ(connector.delays.front(), 0.22);
}

TEST(Connector, NameAndSerialComeFromTheEdidCacheThatCloseEmpties) {
    CLogCapture log;
    CScriptedConnector connector;
    EXPECT_EQ(connector.MonitorName(), "");
    EXPECT_EQ(connector.MonitorName(), "");
    EXPECT_EQ(connector.edidReads, 2);  // nothing cached: asked again

    connector.edid = ByteBuffer(128, 0x00);
    const uint8_t name[] = {0x00, 0x00, 0x00, 0xFC, 0x00, 'S', 't', 'u', 'd', 'i', 'o', ' ', '2', '4', 0x0A};
    const uint8_t serial[] = {0x00, 0x00, 0x00, 0xFF, 0x00, 'V', 'C', '1', 0x0A};
    std::copy(std::begin(name), std::end(name), connector.edid.begin() + 90);
    std::copy(std::begin(serial), std::end(serial), connector.edid.begin() + 72);
    EXPECT_EQ(connector.MonitorName(), "Studio 24");
    EXPECT_EQ(connector.SerialNumber(-1), "VC1");
    EXPECT_EQ(connector.edidReads, 3);
    EXPECT_TRUE(log.Contains("Monitor Name Studio 24\n"));
    EXPECT_TRUE(log.Contains("Serial Number VC1\n"));

    connector.edid.clear();
    EXPECT_EQ(connector.MonitorName(), "Studio 24");  // still cached
    EXPECT_TRUE(connector.Close());
    EXPECT_EQ(connector.MonitorName(), "");
    EXPECT_EQ(connector.edidReads, 4);
}
