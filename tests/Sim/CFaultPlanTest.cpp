#include <gtest/gtest.h>

#include "CFaultPlan.h"
#include "CVirtualDisplay.h"
#include "DdcPackets.h"
#include "VirtualDisplayPresets.h"

TEST(FaultPlan, PlannedFaultsMatchOpcodeAndCodeAndRunOut) {
    CFaultPlan plan;
    plan.FailNext(EFault::NoReply, 2, 0x03, 0x12);
    plan.FailNext(EFault::NullMessage, 1);
    EXPECT_EQ(plan.Next(0x01, 0x12), EFault::NullMessage);  // the first rule does not match a get
    EXPECT_EQ(plan.Next(0x01, 0x12), EFault::None);
    EXPECT_EQ(plan.Next(0x03, 0x10), EFault::None);
    EXPECT_EQ(plan.Next(0x03, 0x12), EFault::NoReply);
    EXPECT_EQ(plan.Next(0x03, 0x12), EFault::NoReply);
    EXPECT_EQ(plan.Next(0x03, 0x12), EFault::None);
    plan.FailNext(EFault::TruncatedReply, 0);
    plan.FailNext(EFault::None, 3);
    EXPECT_EQ(plan.Next(0x01, 0x12), EFault::None);
}

TEST(FaultPlan, RateIsReproducibleFromItsSeed) {
    auto draw = [](uint32_t seed) {
        CFaultPlan plan;
        plan.SetRate(0.25, seed);
        std::vector<EFault> faults;
        for (int i = 0; i < 400; ++i) {
            faults.push_back(plan.Next(0x01, 0x10));
        }
        return faults;
    };
    std::vector<EFault> first = draw(42);
    EXPECT_EQ(first, draw(42));
    EXPECT_NE(first, draw(43));
    size_t failures = 400 - static_cast<size_t>(std::count(first.begin(), first.end(), EFault::None));
    EXPECT_GT(failures, 60u);
    EXPECT_LT(failures, 140u);
    for (EFault fault : CFaultPlan::AllFaults()) {
        EXPECT_NE(std::count(first.begin(), first.end(), fault), 0) << FaultName(fault);
        EXPECT_EQ(ParseFault(FaultName(fault)), fault);
    }
    EXPECT_EQ(ParseFault("sometimes"), EFault::None);
}

TEST(FaultPlan, EachFaultShapesTheReplyAsItsNameSays) {
    CVirtualDisplay display(*FindVirtualDisplayPreset("studio-24"));
    const ByteBuffer good = display.Handle(BuildGetVCPRequest(0x12));
    auto faulty = [&display](EFault fault) {
        display.Faults().FailNext(fault);
        return display.Handle(BuildGetVCPRequest(0x12));
    };
    EXPECT_TRUE(faulty(EFault::NoReply).empty());
    EXPECT_EQ(faulty(EFault::NullMessage), (ByteBuffer{0x6E, 0x80, 0xBE}));
    ByteBuffer corrupt = faulty(EFault::CorruptChecksum);
    EXPECT_EQ(ByteBuffer(corrupt.begin(), corrupt.end() - 1), ByteBuffer(good.begin(), good.end() - 1));
    EXPECT_NE(corrupt.back(), good.back());
    ByteBuffer wrongCode = faulty(EFault::WrongEchoedCode);
    EXPECT_EQ(wrongCode[4], 0x13);
    EXPECT_EQ(Checksum(wrongCode, 0x50), 0);
    ByteBuffer result = faulty(EFault::ErrorResultCode);
    EXPECT_EQ(result[3], 0x01);
    EXPECT_EQ(Checksum(result, 0x50), 0);
    EXPECT_EQ(faulty(EFault::TruncatedReply), ByteBuffer(good.begin(), good.begin() + 5));
}
