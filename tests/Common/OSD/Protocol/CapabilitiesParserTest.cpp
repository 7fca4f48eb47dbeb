#include <gtest/gtest.h>

#include "CapabilitiesParser.h"
#include "DisplayTraits.h"
#include "LogCapture.h"
#include "TestData.h"

namespace {

constexpr uint16_t kOtherDisplay = 0x1070;        // family 0x03A6
constexpr uint16_t kProDisplay = 0x1060;          // family 0x037C: continuous gamma
constexpr uint16_t kEarlySerialDisplay = 0x1040;  // family 0x0304: 0xE4 is a colour preset

VCPOptionsMap MapOf(const std::string& vcp, uint16_t edid = kOtherDisplay) {
    const SCodeVariants variants = DisplayTraitsFor(edid).codeVariants;
    return CreateVCPCodeMap(variants, vcp, BuildCodeInfoTable(variants));
}

std::vector<uint8_t> CodesOf(const VCPOptionsMap& map) {
    std::vector<uint8_t> codes;
    for (const auto& entry : map) {
        codes.push_back(entry.first);
    }
    return codes;
}

template <typename E>
const VCPOptionCodeWithEnumerationT<E>* AsEnum(const VCPOptionsMap& map, uint8_t code) {
    auto it = map.find(code);
    return it == map.end() ? nullptr
                           : dynamic_cast<const VCPOptionCodeWithEnumerationT<E>*>(it->second.get());
}

}  // namespace

TEST(ParseCapabilitiesString, SplitsTheOuterLevelAndKeepsNestedGroups) {
    CLogCapture log;
    CapabilitiesMap caps = ParseCapabilitiesString("(prot(monitor)vcp(10 14(05 08)))");
    EXPECT_EQ(caps, (CapabilitiesMap{{"prot", "monitor"}, {"vcp", "10 14(05 08)"}}));
    EXPECT_TRUE(log.Asserts().empty());

    // Keys are taken exactly as they stand.
    caps = ParseCapabilitiesString("(prot(monitor) type(lcd))");
    EXPECT_EQ(caps, (CapabilitiesMap{{"prot", "monitor"}, {" type", "lcd"}}));

    // Empty keys or values are dropped, without complaint.
    caps = ParseCapabilitiesString("((a)(b))");
    EXPECT_TRUE(caps.empty());
    caps = ParseCapabilitiesString("(vcp()model(x))");
    EXPECT_EQ(caps, (CapabilitiesMap{{"model", "x"}}));
    EXPECT_TRUE(log.Asserts().empty());

    // A later key replaces an earlier one; three levels keep their parentheses.
    caps = ParseCapabilitiesString("(a(1)a(2)vcp(F7(01(01) 02)))");
    EXPECT_EQ(caps, (CapabilitiesMap{{"a", "2"}, {"vcp", "F7(01(01) 02)"}}));
}

TEST(ParseCapabilitiesString, UnbalancedTextAssertsAndStillYieldsWhatItHolds) {
    CLogCapture log;
    CapabilitiesMap caps = ParseCapabilitiesString("prot(monitor)type(lcd)");
    // Without the outer parenthesis keys and values trade places.
    EXPECT_EQ(caps, (CapabilitiesMap{{"monitor", "prot"}, {"lcd", "type"}}));
    EXPECT_FALSE(log.Asserts().empty());
    for (const std::string& condition : log.Asserts()) {
        EXPECT_EQ(condition, "parens != 0");
    }

    log.Clear();
    caps = ParseCapabilitiesString("(prot(monitor)vcp(10 12");
    EXPECT_EQ(caps, (CapabilitiesMap{{"prot", "monitor"}}));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"parens == 0"});
}

TEST(CreateVCPCodeMap, EntriesOptionSetsAndFlattening) {
    CLogCapture log;
    VCPOptionsMap map = MapOf("14(05 08 0B)");
    ASSERT_NE(AsEnum<colorPresetCode>(map, 0x14), nullptr);
    EXPECT_EQ(AsEnum<colorPresetCode>(map, 0x14)->OptionSet(), (std::vector<uint32_t>{5, 8, 11}));

    // A nested group is flattened: its values go, its blanks stay.
    map = MapOf("14(05 (08) 0B)");
    EXPECT_EQ(AsEnum<colorPresetCode>(map, 0x14)->OptionSet(), (std::vector<uint32_t>{5, 11}));

    // The last entry ends with the text; unknown codes are dropped silently.
    log.Clear();
    map = MapOf("10 12");
    EXPECT_EQ(CodesOf(map), (std::vector<uint8_t>{0x10, 0x12}));
    map = MapOf("FD 10 F7(42 FF) 0x12 012");
    EXPECT_EQ(CodesOf(map), (std::vector<uint8_t>{0x10, 0x12}));
    EXPECT_FALSE(log.Contains("FD"));

    // A duplicate replaces the earlier entry.
    map = MapOf("14(05) 14(08 0B)");
    EXPECT_EQ(AsEnum<colorPresetCode>(map, 0x14)->OptionSet(), (std::vector<uint32_t>{8, 11}));

    // A doubled blank ends an empty entry, which asserts and is dropped.
    log.Clear();
    map = MapOf("10  12 ");
    EXPECT_EQ(CodesOf(map), (std::vector<uint8_t>{0x10, 0x12}));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"!key.empty()"});
}

TEST(CreateVCPCodeMap, OptionClassesByCodeAndModel) {
    CLogCapture log;
    VCPOptionsMap map = MapOf(
        "04 10 60(0F 11) 72(00 01 02) 86(01 02) DF E0(00 01) E2(01 07) E3(00 03) E4 EF(00 03) "
        "F0(00 05) F2 F3 F4(02 03)");
    EXPECT_EQ(CodesOf(map), (std::vector<uint8_t>{0x04, 0x10, 0x60, 0x72, 0x86, 0xDF, 0xE0, 0xE2, 0xE3, 0xE4,
                                                  0xEF, 0xF0, 0xF3, 0xF4}));
    EXPECT_NE(dynamic_cast<VCPOptionSingleCode*>(map.at(0x10).get()), nullptr);
    EXPECT_NE(AsEnum<uint32_t>(map, 0x60), nullptr);
    EXPECT_NE(AsEnum<gammaCode>(map, 0x72), nullptr);
    EXPECT_NE(AsEnum<displayScalingCode>(map, 0x86), nullptr);
    EXPECT_NE(AsEnum<displayScalingCode>(map, 0xE2), nullptr);
    EXPECT_NE(AsEnum<uniformityCompCode>(map, 0xE0), nullptr);
    EXPECT_NE(AsEnum<colorSpaceCode>(map, 0xE3), nullptr);
    EXPECT_NE(AsEnum<ledBrightnessCode>(map, 0xEF), nullptr);
    EXPECT_NE(AsEnum<displayPresetCode>(map, 0xF0), nullptr);
    EXPECT_NE(AsEnum<uint32_t>(map, 0xF4), nullptr);
    // 0xE4 is the continuous red offset on most displays, even with an option set.
    EXPECT_NE(dynamic_cast<VCPOptionSingleCode*>(map.at(0xE4).get()), nullptr);
    EXPECT_TRUE(log.Contains("Single Option Luminance\n"));
    EXPECT_TRUE(log.Contains("Enumerated Option Input Source: Option Set 0F 11\n"));
    EXPECT_TRUE(log.Contains("Enumerated Option Fan Speed: Option Set <all>\n"));
    EXPECT_TRUE(log.Contains("Table Option Display Info <Not Implemented>\n"));
    EXPECT_TRUE(log.Asserts().empty());

    // On the early serial models 0xE4 carries colour presets.
    map = MapOf("E4(04 05 08)", kEarlySerialDisplay);
    ASSERT_NE(AsEnum<colorPresetCode>(map, 0xE4), nullptr);
    EXPECT_EQ(AsEnum<colorPresetCode>(map, 0xE4)->OptionSet(), (std::vector<uint32_t>{4, 5, 8}));

    // A special code without its option set asserts, and the option is made all the same.
    log.Clear();
    map = MapOf("14 F0");
    EXPECT_NE(AsEnum<colorPresetCode>(map, 0x14), nullptr);
    EXPECT_NE(AsEnum<displayPresetCode>(map, 0xF0), nullptr);
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{"!optionSet.empty()", "!optionSet.empty()"}));
}

TEST(CreateVCPCodeMap, FineScaleGammaModelsGetAContinuousGammaWithoutAsserts) {
    CLogCapture log;
    VCPOptionsMap map = MapOf("10 72", kProDisplay);
    ASSERT_TRUE(map.count(0x72));
    EXPECT_NE(dynamic_cast<VCPOptionSingleCode*>(map.at(0x72).get()), nullptr);
    EXPECT_TRUE(log.Asserts().empty());

    // Elsewhere an empty gamma set asserts.
    map = MapOf("72", kOtherDisplay);
    EXPECT_NE(AsEnum<gammaCode>(map, 0x72), nullptr);
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"!optionSet.empty()"});
}

TEST(CreateVCPCodeMap, ANamedValueCodeTheTableCallsContinuousOrTableIsReportedButOnTheFineScaleGamma) {
    // A misconfigured table: the colour presets continuous, the colour space a table.
    SCodeVariants variants;
    CodeInfoTable table = BuildCodeInfoTable(variants);
    table[0x14] = CCodeInfo::Continuous(eAccessReadWrite);
    table[0xE3] = CCodeInfo::Table(eAccessReadWrite, 4, 2);
    table[0x72] = CCodeInfo::Continuous(eAccessReadWrite);
    CLogCapture log;
    VCPOptionsMap map = CreateVCPCodeMap(variants, "14(05 08) E3(00 01) 72(01 02)", table);
    EXPECT_EQ(CodesOf(map), (std::vector<uint8_t>{0x14, 0x72, 0xE3}));  // made all the same
    EXPECT_NE(AsEnum<colorPresetCode>(map, 0x14), nullptr);
    EXPECT_NE(AsEnum<gammaCode>(map, 0x72), nullptr);
    // The parser's report, then the enumerated option's own, for each.
    const std::string parser = "!codeInfo_I.at(code).Continuous() && !codeInfo_I.at(code).Table()";
    const std::string option = "!Info().Continuous() && !Info().Table()";
    EXPECT_EQ(log.Asserts(), (std::vector<std::string>{parser, option, parser, option, parser, option}));

    // Only gamma on the fine-scale models may be continuous.
    variants.fineScaleGamma = true;
    log.Clear();
    map = CreateVCPCodeMap(variants, "72", BuildCodeInfoTable(variants));
    EXPECT_NE(dynamic_cast<VCPOptionSingleCode*>(map.at(0x72).get()), nullptr);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(CreateCommandsVector, ReadsHexUntilTheFirstNonHexToken) {
    CLogCapture log;
    EXPECT_EQ(CreateCommandsVector("01 02 03 zz 07"), (std::vector<uint32_t>{1, 2, 3}));
    EXPECT_EQ(CreateCommandsVector("01 02 03 07 0C E3 F3 01 4"),
              (std::vector<uint32_t>{0x01, 0x02, 0x03, 0x07, 0x0C, 0xE3, 0xF3, 0x01, 0x04}));
    EXPECT_TRUE(CreateCommandsVector("").empty());
    EXPECT_TRUE(CreateCommandsVector("xyz").empty());
    EXPECT_TRUE(log.Contains("Commands src: 01 02 03 zz 07"));
    EXPECT_TRUE(log.Contains("Commands parsed: \n"));
    EXPECT_TRUE(log.Contains("ddcCC_CapabilitiesRequest (0xF3)\n"));
    EXPECT_TRUE(log.Contains("Code not found (0x4)\n"));
}

TEST(Capabilities, RealDellStringGivesTheOptionsItLists) {
    CLogCapture log;
    const std::string text = TestData::ReadText("caps/iss_dell_u3011.txt");
    CapabilitiesMap caps = ParseCapabilitiesString(text);
    EXPECT_EQ(caps.at("prot"), "monitor");
    EXPECT_EQ(caps.at("type"), "lcd");
    EXPECT_EQ(caps.at("model"), "U3011");
    EXPECT_EQ(caps.at("mccs_ver"), "2.1");
    EXPECT_EQ(caps.at("mswhql"), "1");
    EXPECT_EQ(CreateCommandsVector(caps.at("cmds")),
              (std::vector<uint32_t>{0x01, 0x02, 0x03, 0x07, 0x0C, 0xE3, 0xF3}));

    VCPOptionsMap map = MapOf(caps.at("vcp"));
    // FD is not a code the program knows.
    EXPECT_EQ(CodesOf(map),
              (std::vector<uint8_t>{0x02, 0x04, 0x05, 0x06, 0x08, 0x10, 0x12, 0x14, 0x16, 0x18, 0x1A, 0x52,
                                    0x60, 0xAC, 0xAE, 0xB2, 0xB6, 0xC6, 0xC8, 0xC9, 0xD6, 0xDC, 0xDF}));
    EXPECT_EQ(AsEnum<colorPresetCode>(map, 0x14)->OptionSet(), (std::vector<uint32_t>{1, 5, 8, 11, 12}));
    EXPECT_EQ(AsEnum<uint32_t>(map, 0x60)->OptionSet(),
              (std::vector<uint32_t>{1, 3, 4, 0x0C, 0x0F, 0x11, 0x12}));
    EXPECT_EQ(AsEnum<uint32_t>(map, 0xD6)->OptionSet(), (std::vector<uint32_t>{1, 4, 5}));
    EXPECT_TRUE(map.at(0x04)->Info().WriteOnly());
    EXPECT_FALSE(map.at(0xC9)->Info().Writable());
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(Capabilities, RealDeepNestingFlattensAndKeepsLaterCodes) {
    CLogCapture log;
    const std::string text = TestData::ReadText("caps/ddcutil_lenovo_legion_27u10_deep_nesting.txt");
    CapabilitiesMap caps = ParseCapabilitiesString(text);
    EXPECT_EQ(caps.at("model"), "Lenovo Legion 27U-10");
    EXPECT_EQ(caps.at("mccs_ver"), "2.2");
    VCPOptionsMap map = MapOf(caps.at("vcp"));
    // Codes after the three-level F7/F8/FA groups are still found (none of them is known
    // past F4, so F4 is the last), and the gamma set holds what the monitor said.
    EXPECT_EQ(AsEnum<uint32_t>(map, 0xF4)->OptionSet(), (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_EQ(AsEnum<gammaCode>(map, 0x72)->OptionSet(),
              (std::vector<uint32_t>{0x05, 0x78, 0xFB, 0x00, 0x50, 0x64, 0x78, 0x8C, 0xA0}));
    EXPECT_EQ(AsEnum<uint32_t>(map, 0xCC)->OptionSet(),
              (std::vector<uint32_t>{0x02, 0x03, 0x04, 0x05, 0x06, 0x09, 0x0A, 0x0D}));
    EXPECT_EQ(AsEnum<displayScalingCode>(map, 0x86)->OptionSet(), (std::vector<uint32_t>{2, 5}));
    EXPECT_EQ(AsEnum<ledBrightnessCode>(map, 0xEF)->OptionSet(), (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(map.count(0xF7), 0u);
    EXPECT_EQ(CodesOf(map).back(), 0xF4);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(Capabilities, RealStringWithoutModelKeyGluesTheModelToTheNextKey) {
    CLogCapture log;
    CapabilitiesMap caps =
        ParseCapabilitiesString(TestData::ReadText("caps/mccsrs_asus_vg278h_double_paren.txt"));
    // Doubled outer parentheses push everything one level down: the whole string is one value.
    EXPECT_EQ(caps.count("prot"), 0u);
    EXPECT_EQ(caps.count("model"), 0u);
    EXPECT_TRUE(log.Asserts().empty());

    caps = ParseCapabilitiesString(TestData::ReadText("caps/mccsrs_acer_model_acer.txt"));
    EXPECT_TRUE(caps.count("vcp"));
}
