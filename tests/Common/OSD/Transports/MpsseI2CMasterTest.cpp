#include <gtest/gtest.h>

#include <deque>

#include "MpsseI2CMaster.h"

namespace {

// Records every stream written and answers reads from a queue.
class CRecordingChannel : public IMpsseChannel {
public:
    bool Write(const ByteBuffer& bytes_I) override {
        streams.push_back(bytes_I);
        return true;
    }
    bool Read(size_t count_I, ByteBuffer& bytes_O) override {
        if (answers.size() < count_I) {
            return false;
        }
        bytes_O.assign(answers.begin(), answers.begin() + static_cast<std::ptrdiff_t>(count_I));
        answers.erase(answers.begin(), answers.begin() + static_cast<std::ptrdiff_t>(count_I));
        return true;
    }
    std::vector<ByteBuffer> streams;
    std::deque<uint8_t> answers;
};

// Start: SCL and SDA high, SDA falls while SCL is high, then SCL falls (each held four times).
const ByteBuffer kStart = {0x80, 0x03, 0x03, 0x80, 0x03, 0x03, 0x80, 0x03, 0x03, 0x80, 0x03, 0x03, 0x80, 0x01,
                           0x03, 0x80, 0x01, 0x03, 0x80, 0x01, 0x03, 0x80, 0x01, 0x03, 0x80, 0x00, 0x03};
// Stop: both low, SCL rises, then SDA rises.
const ByteBuffer kStop = {0x80, 0x00, 0x03, 0x80, 0x00, 0x03, 0x80, 0x00, 0x03, 0x80, 0x00, 0x03,
                          0x80, 0x01, 0x03, 0x80, 0x01, 0x03, 0x80, 0x01, 0x03, 0x80, 0x01, 0x03,
                          0x80, 0x03, 0x03, 0x80, 0x03, 0x03, 0x80, 0x03, 0x03, 0x80, 0x03, 0x03};

// One byte out on the falling edge, SDA released, one acknowledge bit in, SDA driven high.
ByteBuffer ByteWithAck(uint8_t byte) {
    return {0x11, 0x00, 0x00, byte, 0x80, 0x00, 0x01, 0x22, 0x00, 0x80, 0x02, 0x03};
}

}  // namespace

TEST(MpsseI2CMaster, SetupSelects100kHzThreePhaseAdaptiveClockingWithOpenDrainLines) {
    CRecordingChannel channel;
    channel.answers = {0xFA, 0xAA};
    CMpsseI2CMaster master(channel);
    EXPECT_TRUE(master.Initialise());
    ASSERT_EQ(channel.streams.size(), 2u);
    EXPECT_EQ(channel.streams[0], ByteBuffer{0xAA});
    // 0x96: adaptive clocking, so that a display stretching the clock is waited for.
    EXPECT_EQ(channel.streams[1],
              (ByteBuffer{0x8A, 0x96, 0x8C, 0x9E, 0x03, 0x00, 0x80, 0x03, 0x03, 0x86, 0xC7, 0x00, 0x85}));

    CRecordingChannel silent;
    silent.answers = {0x00, 0x00};
    CMpsseI2CMaster dead(silent);
    EXPECT_FALSE(dead.Initialise());
}

TEST(MpsseI2CMaster, OneWriteIsThisCommandStream) {
    CRecordingChannel channel;
    channel.answers = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00};  // six ACKs
    CMpsseI2CMaster master(channel);
    EXPECT_TRUE(master.Write(0x37, {0x51, 0x82, 0x01, 0x10, 0xAC}));
    ByteBuffer bytes;
    for (uint8_t byte : {0x6E, 0x51, 0x82, 0x01, 0x10, 0xAC}) {
        ByteBuffer one = ByteWithAck(byte);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    bytes.push_back(0x87);
    ASSERT_EQ(channel.streams.size(), 3u);
    EXPECT_EQ(channel.streams[0], kStart);
    EXPECT_EQ(channel.streams[1], bytes);
    EXPECT_EQ(channel.streams[2], kStop);
}

TEST(MpsseI2CMaster, OneReadIsThisCommandStream) {
    CRecordingChannel channel;
    channel.answers = {0x00, 0x6E, 0x80};  // address ACK, then two data bytes
    CMpsseI2CMaster master(channel);
    ByteBuffer data;
    EXPECT_TRUE(master.Read(0x37, 2, data));
    EXPECT_EQ(data, (ByteBuffer{0x6E, 0x80}));
    ByteBuffer address = ByteWithAck(0x6F);
    address.push_back(0x87);
    const ByteBuffer reads = {0x80, 0x00, 0x01, 0x20, 0x00, 0x00, 0x80, 0x00, 0x03, 0x13, 0x00,
                              0x00, 0x80, 0x02, 0x03, 0x80, 0x00, 0x01, 0x20, 0x00, 0x00, 0x80,
                              0x00, 0x03, 0x13, 0x00, 0xFF, 0x80, 0x02, 0x03, 0x87};
    ASSERT_EQ(channel.streams.size(), 4u);
    EXPECT_EQ(channel.streams[0], kStart);
    EXPECT_EQ(channel.streams[1], address);
    EXPECT_EQ(channel.streams[2], reads);
    EXPECT_EQ(channel.streams[3], kStop);
}

TEST(MpsseI2CMaster, ANackFailsTheTransferButStillStops) {
    CRecordingChannel channel;
    channel.answers = {0x00, 0x01};  // address ACK, first data byte NACK
    CMpsseI2CMaster master(channel);
    EXPECT_FALSE(master.Write(0x37, {0x51}));
    EXPECT_EQ(channel.streams.back(), kStop);

    channel.streams.clear();
    channel.answers = {0x01};
    ByteBuffer data;
    EXPECT_FALSE(master.Read(0x50, 128, data));
    ASSERT_EQ(channel.streams.size(), 3u);  // start, address, stop: no data clocked
    EXPECT_EQ(channel.streams.back(), kStop);
}
