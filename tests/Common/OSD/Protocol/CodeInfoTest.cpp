#include <gtest/gtest.h>

#include "CEdidBuilder.h"
#include "CodeInfo.h"
#include "DisplayTraits.h"

namespace {
// Product codes of one display of each kind (EDID product code -> tablet family).
constexpr uint16_t kProDisplay = 0x1060;          // family 0x037C
constexpr uint16_t kEarlySerialDisplay = 0x1040;  // family 0x0304
constexpr uint16_t kOtherDisplay = 0x1070;        // family 0x03A6
}  // namespace

TEST(CodeInfo, SizesFollowTheAccess) {
    CodeInfoTable table = BuildCodeInfoTable(DisplayTraitsFor(kOtherDisplay).codeVariants);
    auto expect = [&table](uint8_t code, uint32_t access, uint32_t type, uint32_t readSize,
                           uint32_t writeSize) {
        ASSERT_TRUE(table.count(code)) << std::hex << int(code);
        const CCodeInfo& info = table.at(code);
        EXPECT_EQ(info.Access(), access) << std::hex << int(code);
        EXPECT_EQ(info.Type(), type) << std::hex << int(code);
        EXPECT_EQ(info.ReadSize(), readSize) << std::hex << int(code);
        EXPECT_EQ(info.WriteSize(), writeSize) << std::hex << int(code);
    };
    expect(0x10, eAccessReadWrite, eTypeContinuous, 4, 2);
    expect(0x6B, eAccessReadWrite, eTypeContinuous, 4, 2);
    expect(0xF4, eAccessReadWrite, eTypeNonContinuous, 4, 2);
    expect(0xC9, eAccessReadOnly, eTypeNonContinuous, 4, 0);
    expect(0x04, eAccessWriteOnly, eTypeNonContinuous, 0, 2);
    expect(0xEA, eAccessWriteOnly, eTypeNonContinuous, 0, 2);
    expect(0x52, eAccessReadOnly, eTypeNonContinuous, 4, 2);
    expect(0x8B, eAccessWriteOnly, eTypeNonContinuous, 4, 2);
    expect(0xC2, eAccessReadOnly, eTypeContinuous, 4, 0);
    expect(0x76, eAccessWriteOnly, eTypeTable, 0, 19);
    expect(0xF2, eAccessReadOnly, eTypeTable, 70, 0);
    expect(0xC3, eAccessReadWrite, eTypeTable, 256, 256);
    EXPECT_EQ(table.count(0x00), 0u);
    EXPECT_EQ(table.count(0xF5), 0u);
    EXPECT_EQ(table.count(0x07), 0u);
    EXPECT_EQ(table.size(), 76u + 46u + 11u + 10u + 3u + 1u + 11u + 2u);
}

TEST(CodeInfo, GammaAndRedOffsetDependOnTheModel) {
    EXPECT_TRUE(BuildCodeInfoTable(DisplayTraitsFor(kProDisplay).codeVariants).at(0x72).Continuous());
    EXPECT_FALSE(BuildCodeInfoTable(DisplayTraitsFor(kOtherDisplay).codeVariants).at(0x72).Continuous());
    EXPECT_FALSE(
        BuildCodeInfoTable(DisplayTraitsFor(kEarlySerialDisplay).codeVariants).at(0xE4).Continuous());
    EXPECT_TRUE(BuildCodeInfoTable(DisplayTraitsFor(kOtherDisplay).codeVariants).at(0xE4).Continuous());
}
