#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ReadInParts.h"

namespace {

ByteBuffer Bytes(const std::string& text) {
    return ByteBuffer(text.begin(), text.end());
}

}  // namespace

TEST(ReadInParts, OffsetsMoveByWhatEachPartCountsAndBadPartsAreAskedAgain) {
    std::vector<uint16_t> asked;
    std::vector<std::string> told;
    int badLeft = 2;
    SReadInParts read;
    read.attemptsPerPart = 3;
    read.readPart = [&](uint16_t offset) {
        asked.push_back(offset);
        if (offset == 0) {
            return SPart::Taken(Bytes("(prot"));
        }
        if (offset == 5 && badLeft-- > 0) {
            return SPart::Bad();
        }
        if (offset == 5) {
            return SPart{SPart::EKind::Data, Bytes("(x)"), 7};  // four bytes counted but not kept
        }
        return SPart::End();
    };
    read.onBadPart = [&](uint16_t offset, int attempt) {
        told.push_back("bad " + std::to_string(offset) + " " + std::to_string(attempt));
    };
    const SPartsRead parts = ReadInParts(read);
    EXPECT_FALSE(parts.gaveUp);
    EXPECT_EQ(parts.data, Bytes("(prot(x)"));
    EXPECT_EQ(asked, (std::vector<uint16_t>{0, 5, 5, 5, 12}));
    EXPECT_EQ(told, (std::vector<std::string>{"bad 5 1", "bad 5 2"}));
}

TEST(ReadInParts, GivesUpKeepingWhatCameAndStopsAtItsBounds) {
    // A part that fails every attempt: given up on once, after three tries.
    int giveUps = 0;
    unsigned requests = 0;
    SReadInParts read;
    read.attemptsPerPart = 3;
    read.readPart = [&](uint16_t offset) {
        ++requests;
        return offset == 0 ? SPart::Taken(Bytes("ab")) : SPart::Bad();
    };
    read.onGiveUp = [&](uint16_t offset) { giveUps += offset == 2; };
    SPartsRead parts = ReadInParts(read);
    EXPECT_TRUE(parts.gaveUp);
    EXPECT_EQ(parts.data, Bytes("ab"));
    EXPECT_EQ(requests, 4u);
    EXPECT_EQ(giveUps, 1);

    // A display that never ends: at most so many parts, and never past the size limit.
    read = {};
    read.maxParts = 10;
    read.readPart = [](uint16_t) { return SPart{SPart::EKind::Data, {}, 0}; };
    EXPECT_TRUE(ReadInParts(read).data.empty());
    read.maxParts = std::numeric_limits<size_t>::max();
    requests = 0;
    read.readPart = [&](uint16_t) {
        ++requests;
        return SPart::Taken(ByteBuffer(32, 'x'));
    };
    EXPECT_EQ(ReadInParts(read).data.size(), 0x8000u);
    EXPECT_EQ(requests, 0x8000u / 32);
}
