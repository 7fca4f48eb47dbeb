#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "CPtyDisplayServer.h"
#include "DdcPackets.h"
#include "VirtualDisplayPresets.h"

TEST(PtyDisplayServer, RequestLengthFramesTheLine) {
    EXPECT_EQ(CPtyDisplayServer::RequestLength({}), 0u);
    EXPECT_EQ(CPtyDisplayServer::RequestLength({0x6E, 0x51}), 0u);
    EXPECT_EQ(CPtyDisplayServer::RequestLength({0x6E, 0x51, 0x82}), 6u);
    EXPECT_EQ(CPtyDisplayServer::RequestLength({0x6E, 0x51, 0x84, 0x03}), 8u);
    EXPECT_EQ(CPtyDisplayServer::RequestLength({0xEE, 0x05}), 6u);
    EXPECT_EQ(CPtyDisplayServer::RequestLength({0x00, 0x6E}), 1u);
}

TEST(PtyDisplayServer, AnswersRequestsWithoutTheirChecksumOnTheTerminal) {
    auto display = std::make_shared<CVirtualDisplay>(*FindVirtualDisplayPreset("studio-32"));
    CPtyDisplayServer server(display);
    ASSERT_TRUE(server.Open());
    const int line = open(server.TerminalPath().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(line, 0);
    // Noise, then two requests in one write.
    ByteBuffer out = {0x00, 0x17};
    for (const ByteBuffer& request : {BuildGetVCPRequest(0x12), BuildSetVCPRequest(0x12, 9)}) {
        out.insert(out.end(), request.begin(), request.end());
    }
    ASSERT_EQ(write(line, out.data(), out.size()), static_cast<ssize_t>(out.size()));
    server.ServeOnce(1000);
    ByteBuffer expected = BuildSimulatedReply(0x01, 0x12, 50, 100);
    expected.pop_back();
    expected.insert(expected.end(), {0x6E, 0x80});
    ByteBuffer in(64);
    ByteBuffer received;
    pollfd ready{line, POLLIN, 0};
    while (received.size() < expected.size() && poll(&ready, 1, 1000) > 0) {
        const ssize_t count = read(line, in.data(), in.size());
        ASSERT_GT(count, 0);
        received.insert(received.end(), in.begin(), in.begin() + count);
    }
    EXPECT_EQ(received, expected);
    EXPECT_EQ(display->Value(0x12), 9);
    close(line);
}
