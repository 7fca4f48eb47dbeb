#include <gtest/gtest.h>

#include <sstream>

#include "CVCPOption.h"
#include "LogCapture.h"

namespace {
const CCodeInfo kRwContinuous = CCodeInfo::Continuous(eAccessReadWrite);
const CCodeInfo kRwEnumerated = CCodeInfo::NonContinuous(eAccessReadWrite);
const CCodeInfo kWriteOnly = CCodeInfo::NonContinuous(eAccessWriteOnly);

std::string Printed(const VCPOptionBase& option) {
    std::ostringstream out;
    option.Print(out);
    return out.str();
}
}  // namespace

TEST(VCPOption, ContinuousRangeAndSetters) {
    VCPOptionSingleCode brightness(vcpC_Luminance, kRwContinuous);
    brightness.SetMaximum(100);
    EXPECT_EQ(brightness.GetRange(), (SRange{0, 100}));
    EXPECT_FALSE(brightness.HasOriginal());
    EXPECT_TRUE(brightness.SetOriginal(40));
    EXPECT_TRUE(brightness.HasOriginal());
    EXPECT_FALSE(brightness.SetOriginal(101));
    EXPECT_EQ(brightness.GetOriginal(), 40);

    brightness.ResetValueToOriginal();
    EXPECT_FALSE(brightness.SetValue(40));  // already current: nothing changes
    EXPECT_FALSE(brightness.IsChanged());
    brightness.SetError("Send request failed");
    EXPECT_FALSE(brightness.SetValue(101));
    EXPECT_FALSE(brightness.SetValue(-1));
    EXPECT_TRUE(brightness.HasError());  // a rejected value leaves the error alone
    EXPECT_TRUE(brightness.SetValue(100));
    EXPECT_FALSE(brightness.HasError());
    EXPECT_TRUE(brightness.IsChanged());
    EXPECT_TRUE(brightness.IsValue(100));
}

TEST(VCPOption, WrappingRangeHoldsBothEnds) {
    VCPOptionSingleCode option(vcpC_Contrast, kRwContinuous);
    option.SetRange(10, 5);
    EXPECT_TRUE(option.IsValidValue(12));
    EXPECT_TRUE(option.IsValidValue(3));
    EXPECT_TRUE(option.IsValidValue(10));
    EXPECT_TRUE(option.IsValidValue(5));
    EXPECT_FALSE(option.IsValidValue(7));
}

TEST(VCPOption, EnumeratedOptionSetRules) {
    VCPOptionCodeWithEnumerationT<colorPresetCode> preset(vcpC_SelectColorPreset, kRwEnumerated, "05 08 0B");
    EXPECT_EQ(preset.OptionSet(), (std::vector<uint32_t>{5, 8, 11}));
    EXPECT_EQ(preset.GetRange(), (SRange{0, 0}));
    EXPECT_TRUE(preset.SetOriginal(5));
    EXPECT_FALSE(preset.SetOriginal(4));
    preset.ResetValueToOriginal();
    EXPECT_FALSE(preset.SetValue(6));
    EXPECT_FALSE(preset.SetValue(5));
    EXPECT_TRUE(preset.SetValue(0x0B));
    // The value is compared as a signed 16-bit number.
    EXPECT_TRUE(preset.IsValidValue(0x10008));

    VCPOptionEnumerated any(vcpC_PowerMode, kRwEnumerated, "");
    EXPECT_TRUE(any.IsValidValue(0));
    EXPECT_TRUE(any.IsValidValue(0x7FFF));
    EXPECT_TRUE(any.SetValue(1234));

    VCPOptionEnumerated writeOnly(vcpC_RestoreFactoryDefaults, kWriteOnly, "01");
    EXPECT_TRUE(writeOnly.SetValue(7));  // outside its set
    EXPECT_TRUE(writeOnly.SetValue(7));  // and again, although it is current
    EXPECT_TRUE(writeOnly.SetOriginal(9));
    EXPECT_TRUE(writeOnly.HasOriginal());

    CLogCapture log;
    preset.SetMaximum(10);
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"\"Should not be called on a Non-Continuous value\""});
    EXPECT_EQ(preset.GetRange(), (SRange{0, 0}));
}

TEST(VCPOption, EnumeratedValuesWithUpperBitsSetAreSignExtended16Bit) {
    VCPOptionEnumerated option(vcpC_InputSource, kRwEnumerated, "");
    ASSERT_TRUE(option.SetOriginal(static_cast<int32_t>(0xFFFF8000u)));
    option.ResetValueToOriginal();
    EXPECT_EQ(option.GetValue(), -32768);
    EXPECT_EQ(option.GetOriginal(), -32768);
    EXPECT_TRUE(option.IsValue(0x8000));
    EXPECT_FALSE(option.IsValue(0x8001));
    EXPECT_FALSE(option.IsChanged());
    EXPECT_TRUE(option.SetValue(0x8001));
    EXPECT_TRUE(option.IsChanged());

    // A value with other upper bits stays as it is.
    ASSERT_TRUE(option.SetValue(0x00120005));
    EXPECT_EQ(option.GetValue(), 0x00120005);
    EXPECT_FALSE(option.IsValue(5));
}

TEST(VCPOption, ConstructorsAssertOnAMismatchedRecord) {
    CLogCapture log;
    VCPOptionEnumerated wrong(vcpC_Luminance, kRwContinuous, "01");
    VCPOptionEnumerated table(vcpC_AssetTag, CCodeInfo::Table(eAccessReadWrite, 16, 16), "");
    CCodeInfo unreadable = CCodeInfo::Continuous(eAccessWriteOnly);
    EXPECT_EQ(log.Asserts(),
              (std::vector<std::string>{"!Info().Continuous() && !Info().Table()",
                                        "!Info().Continuous() && !Info().Table()", "Readable()"}));
    EXPECT_EQ(unreadable.ReadSize(), 0u);
    VCPOptionSingleCode notContinuous(vcpC_PowerMode, kRwEnumerated);
    notContinuous.SetMaximum(5);
    EXPECT_EQ(log.Asserts().back(), "Info().Continuous()");
}

TEST(VCPOption, PrintDescribesTheOption) {
    VCPOptionSingleCode brightness(vcpC_Luminance, kRwContinuous);
    brightness.SetMaximum(100);
    brightness.SetOriginal(40);
    brightness.ResetValueToOriginal();
    brightness.SetValue(55);
    brightness.SetError("Send request no data");
    EXPECT_EQ(Printed(brightness),
              " Name = Luminance (0x10)\n"
              " Value = 55 (40)\n"
              " Readable/Writable, Continuous,\n"
              " Size: read 4, write 2\n"
              " Error \"Send request no data\"\n"
              " Max = 100\n");

    VCPOptionCodeWithEnumerationT<colorPresetCode> preset(vcpC_SelectColorPreset, kRwEnumerated, "04 05 0B");
    preset.SetOriginal(5);
    preset.ResetValueToOriginal();
    EXPECT_EQ(Printed(preset),
              " Name = Select Color Preset (0x14)\n"
              " Value = 5 (5)\n"
              " Readable/Writable, Non-Continuous,\n"
              " Size: read 4, write 2\n"
              " Enum Code = 5000k (4)\n"
              " **Selected Enum Code = 6500k (5)\n"
              " Enum Code = 5700k (11)\n");

    VCPOptionEnumerated reset(vcpC_RestoreFactoryDefaults, kWriteOnly, "");
    EXPECT_EQ(Printed(reset),
              " Name = Restore Factory Defaults (0x4)\n"
              " Value = 0 (0)\n"
              " Write Only, Non-Continuous,\n"
              " Size: read 0, write 2\n"
              " No defined value list\n");

    VCPOptionEnumerated plain(vcpC_PowerMode, CCodeInfo::NonContinuous(eAccessReadOnly), "01 04");
    EXPECT_NE(
        Printed(plain).find(" Read Only, Non-Continuous,\n Size: read 4, write 0\n Enum Code = 0x1 (1)\n"),
        std::string::npos)
        << Printed(plain);
}
