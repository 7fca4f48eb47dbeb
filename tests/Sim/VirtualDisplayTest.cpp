#include <gtest/gtest.h>

#include "CEdidBuilder.h"
#include "CapabilitiesParser.h"
#include "DdcPackets.h"
#include "DisplayTraits.h"
#include "EdidText.h"
#include "LogCapture.h"
#include "TestData.h"
#include "VendorCommands.h"
#include "VirtualBench.h"

using namespace std::chrono_literals;

namespace {

ByteBuffer Get(CVirtualDisplay& display, uint8_t code) {
    return display.Handle(BuildGetVCPRequest(code));
}

ByteBuffer Set(CVirtualDisplay& display, uint8_t code, uint16_t value) {
    return display.Handle(BuildSetVCPRequest(code, value));
}

uint16_t CurrentIn(const ByteBuffer& reply) {
    return static_cast<uint16_t>((reply[8] << 8) | reply[9]);
}

}  // namespace

TEST(VirtualDisplay, PresetsCoverEveryFamilyWithConsistentCapabilities) {
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    std::vector<uint16_t> productIds;
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SCOPED_TRACE(model.key);
        EXPECT_TRUE(pEdidBldr->IsInProductFamily(model.tabletProductId, model.edidProductCode));
        EXPECT_LE(model.monitorName.size(), 13u);
        EXPECT_LE(model.serialText.size(), 13u);
        EXPECT_EQ(model.monitorName.find("Velor"), std::string::npos);
        productIds.push_back(model.tabletProductId);
        EXPECT_EQ(FindVirtualDisplayPreset(model.key), &model);

        // The string parses cleanly, and every code the firmware implements is listed.
        CLogCapture log;
        CVirtualDisplay display(model);
        CapabilitiesMap caps = ParseCapabilitiesString(display.CapabilitiesString());
        EXPECT_TRUE(log.Asserts().empty());
        const SCodeVariants variants = DisplayTraitsFor(model.edidProductCode).codeVariants;
        VCPOptionsMap options = CreateVCPCodeMap(variants, caps["vcp"], BuildCodeInfoTable(variants));
        for (const SVirtualControl& control : model.controls) {
            if (control.code != vcpC_DisplayInfo) {
                EXPECT_TRUE(options.count(control.code)) << std::hex << int(control.code);
            }
        }
    }
    // One preset per family of the EDID-to-tablet table.
    std::sort(productIds.begin(), productIds.end());
    EXPECT_EQ(std::adjacent_find(productIds.begin(), productIds.end()), productIds.end());
    EXPECT_EQ(productIds.size(), 19u);
    EXPECT_EQ(FindVirtualDisplayPreset("no-such-display"), nullptr);

    // A second product code of a family reports itself.
    std::optional<SVirtualDisplayModel> twin = VirtualDisplayPresetForProductCode(0x1048);
    ASSERT_TRUE(twin.has_value());
    EXPECT_EQ(twin->key, "canvas-13-hd");
    EXPECT_EQ(twin->edidProductCode, 0x1048);
    EXPECT_FALSE(VirtualDisplayPresetForProductCode(0x2222).has_value());
}

TEST(VirtualDisplay, AnswersGetAndSetAsFirmwareDoes) {
    SVirtualBench bench("canvas-22-pro");
    CVirtualDisplay& display = *bench.display;

    ByteBuffer reply = Get(display, vcpC_Luminance);
    EXPECT_EQ(reply, BuildSimulatedReply(0x01, vcpC_Luminance, 70, 100));
    // Enumerated codes report their value alone in the four value bytes.
    EXPECT_EQ(Get(display, vcpC_SelectColorPreset), BuildSimulatedReply(0x01, vcpC_SelectColorPreset, 5, 0));
    // Firmware level: major in the maximum, minor and build in the current value.
    EXPECT_EQ(Get(display, vcpC_DisplayFirmwareLevel), BuildSimulatedReply(0x01, 0xC9, 0x0102, 0x0003));

    // An unknown or write-only code answers with a non-zero result code.
    for (uint8_t code : {uint8_t(0x99), uint8_t(vcpC_RestoreFactoryDefaults)}) {
        reply = Get(display, code);
        ASSERT_EQ(reply.size(), 11u);
        EXPECT_EQ(reply[3], 0x01);
        EXPECT_EQ(Checksum(reply, 0x50), 0);
    }

    // Sets are acknowledged with the null message; what the firmware cannot do is ignored.
    EXPECT_EQ(Set(display, vcpC_Contrast, 42), (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(display.Value(vcpC_Contrast), 42);
    Set(display, vcpC_Contrast, 101);
    Set(display, vcpC_SelectColorPreset, 0x07);
    Set(display, vcpC_DisplayFirmwareLevel, 9);
    Set(display, 0x99, 1);
    EXPECT_EQ(display.Value(vcpC_Contrast), 42);
    EXPECT_EQ(display.Value(vcpC_SelectColorPreset), 5);

    // Requests it cannot read go unanswered.
    ByteBuffer badChecksum = BuildGetVCPRequest(vcpC_Contrast);
    badChecksum.back() ^= 1;
    EXPECT_TRUE(display.Handle(badChecksum).empty());
    EXPECT_TRUE(display.Handle({0x6F, 0x51, 0x82, 0x01, 0x12, 0xAF}).empty());
    EXPECT_TRUE(display.Handle({}).empty());
    EXPECT_TRUE(display.Handle({0x6E, 0x51, 0x83, 0x01, 0x12, 0xB1}).empty());  // length byte off by one
}

TEST(VirtualDisplay, SavedValuesSurviveAPowerCycleAndUnsavedOnesDoNot) {
    SVirtualBench bench("studio-32");
    CVirtualDisplay& display = *bench.display;
    Set(display, vcpC_Contrast, 30);
    Set(display, vcpC_Sharpness, 4);
    EXPECT_EQ(display.Handle(BuildSaveCurrentSettingsRequest()), (ByteBuffer{0x6E, 0x80, 0xBE}));
    Set(display, vcpC_Contrast, 80);
    display.PowerCycle();
    EXPECT_EQ(display.Value(vcpC_Contrast), 30);
    EXPECT_EQ(display.Value(vcpC_Sharpness), 4);
    EXPECT_EQ(display.SavedValue(vcpC_Contrast), 30);

    // Switched on again, the firmware is deaf while it starts.
    display.AnswerNothingFor(std::chrono::milliseconds(2500));
    EXPECT_TRUE(Get(display, vcpC_Contrast).empty());
    bench.clock.Pause(std::chrono::milliseconds(2500));
    EXPECT_EQ(CurrentIn(Get(display, vcpC_Contrast)), 30);
}

TEST(VirtualDisplay, TheFirstModelsForgetEvenSavedValuesWhenSwitchedOff) {
    SVirtualBench bench("canvas-12");
    CVirtualDisplay& display = *bench.display;
    Set(display, vcpC_Contrast, 30);
    EXPECT_EQ(display.Handle(BuildSaveCurrentSettingsRequest()), (ByteBuffer{0x6E, 0x80, 0xBE}));
    display.PowerCycle();
    EXPECT_EQ(display.Value(vcpC_Contrast), 50);  // the factory value
    EXPECT_EQ(display.SavedValue(vcpC_Contrast), 50);
}

TEST(VirtualDisplay, FactoryAndColourDefaultsAndTheScalerReset) {
    SVirtualBench bench("canvas-27-pro");
    CVirtualDisplay& display = *bench.display;
    Set(display, vcpC_Contrast, 10);
    Set(display, vcpC_VideoGainRed, 20);
    Set(display, vcpC_ColorSpace, 3);

    // Colour defaults touch colour only, and the firmware is deaf while it works.
    Set(display, vcpC_RestoreFactoryColorDefaults, 1);
    EXPECT_EQ(display.Value(vcpC_VideoGainRed), 100);
    EXPECT_EQ(display.Value(vcpC_ColorSpace), 0);
    EXPECT_EQ(display.Value(vcpC_Contrast), 10);
    EXPECT_TRUE(Get(display, vcpC_Contrast).empty());
    bench.clock.Pause(CVirtualDisplay::kBusyAfterFactoryDefaults);
    EXPECT_EQ(CurrentIn(Get(display, vcpC_Contrast)), 10);

    // Factory defaults restore and store everything.
    Set(display, vcpC_RestoreFactoryDefaults, 1);
    EXPECT_EQ(display.Value(vcpC_Contrast), 50);
    bench.clock.Pause(CVirtualDisplay::kBusyAfterFactoryDefaults);
    Set(display, vcpC_Contrast, 11);
    display.PowerCycle();
    EXPECT_EQ(display.Value(vcpC_Contrast), 50);

    // The scaler reset is answered in a form the reset check accepts.
    Set(display, vcpC_Contrast, 12);
    ByteBuffer reply = display.Handle(BuildScalerResetMessage());
    ASSERT_GE(reply.size(), 4u);
    EXPECT_EQ(ByteBuffer(reply.begin(), reply.begin() + 3), (ByteBuffer{0x6E, 0x88, 0x02}));
    EXPECT_EQ(display.Value(vcpC_Contrast), 50);
    bench.clock.Pause(CVirtualDisplay::kBusyAfterFactoryDefaults);
    EXPECT_TRUE(bench.connector->ScalarReset());
}

TEST(VirtualDisplay, CapabilitiesComeInChunksOfAtMost32Bytes) {
    SVirtualBench bench("slate-16-pro");
    CVirtualDisplay& display = *bench.display;
    const std::string& caps = display.CapabilitiesString();
    std::string collected;
    uint16_t offset = 0;
    for (int guard = 0; guard < 100; ++guard) {
        ByteBuffer reply = display.Handle(BuildCapabilitiesRequest(offset));
        ASSERT_GE(reply.size(), 6u);
        EXPECT_EQ(Checksum(reply, 0x50), 0);
        EXPECT_EQ(reply[2], 0xE3);
        EXPECT_EQ((reply[3] << 8) | reply[4], offset);
        const size_t count = (reply[1] & 0x7F) - 3u;
        ASSERT_EQ(reply.size(), count + 6);
        EXPECT_LE(count, 32u);
        if (count == 0) {
            break;
        }
        collected.append(reply.begin() + 5, reply.begin() + 5 + static_cast<std::ptrdiff_t>(count));
        offset = static_cast<uint16_t>(offset + count);
    }
    EXPECT_EQ(collected, caps);
    EXPECT_EQ(bench.connector->CapabilitiesString(), caps);

    // A lost chunk is asked for again.
    display.Faults().FailNext(EFault::CorruptChecksum, 1, ddcCC_CapabilitiesRequest);
    display.Faults().FailNext(EFault::NoReply, 1, ddcCC_CapabilitiesRequest);
    EXPECT_EQ(bench.connector->CapabilitiesString(), caps);
}

TEST(VirtualDisplay, EdidIsValidAndReadOnlyInFactoryMode) {
    SVirtualBench bench("canvas-22-pro");
    CVirtualDisplay& display = *bench.display;
    const ByteBuffer& edid = display.Edid();
    ASSERT_EQ(edid.size(), 256u);
    EXPECT_EQ(ByteBuffer(edid.begin(), edid.begin() + 8),
              (ByteBuffer{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}));
    for (size_t block = 0; block < 2; ++block) {
        uint8_t sum = 0;
        for (size_t i = 0; i < 128; ++i) {
            sum = static_cast<uint8_t>(sum + edid[block * 128 + i]);
        }
        EXPECT_EQ(sum, 0) << "block " << block;
    }
    EXPECT_EQ(edid[8], 0x59);  // "VLR"
    EXPECT_EQ(edid[9], 0x92);
    EXPECT_EQ(Edid::ProductCode(edid), 0x1060);
    EXPECT_EQ(Edid::DescriptorText(edid, Edid::kTagMonitorName), "Canvas 22 Pro");
    EXPECT_EQ(Edid::DescriptorText(edid, Edid::kTagSerialNumber), display.Model().serialText);

    // Outside factory mode the EDID command gets the null message.
    EXPECT_EQ(display.Handle(BuildEdidChunkRequest(0)), (ByteBuffer{0x6E, 0x80, 0xBE}));
    CLogCapture log;
    EXPECT_EQ(ReadEdidByVendorCommand(*bench.connector, "test"), edid);
    EXPECT_TRUE(log.Asserts().empty());
    EXPECT_FALSE(display.InFactoryMode());
    EXPECT_EQ(bench.connector->MonitorName(), "Canvas 22 Pro");
    EXPECT_EQ(bench.connector->SerialNumber(-1), display.Model().serialText);

    // A corrupt factory-mode answer and a corrupt chunk are reported; the chunk is still used.
    display.Faults().FailNext(EFault::CorruptChecksum, 2, 0xC0);
    log.Clear();
    ByteBuffer again = ReadEdidByVendorCommand(*bench.connector, "test");
    EXPECT_EQ(log.Asserts(),
              (std::vector<std::string>{"Checksum(inBuffer, 0x50) == 0", "ReadEDID read checksum mismatch"}));
    EXPECT_TRUE(log.Contains("ReadEDID:Read checksum failed\n"));
    EXPECT_EQ(again, edid);
}

TEST(VirtualDisplay, DisplayInformationRecordCarriesNameAndSerial) {
    SVirtualBench bench("studio-24");
    ByteBuffer reply = Get(*bench.display, vcpC_DisplayInfo);
    ASSERT_EQ(reply.size(), 44u);
    EXPECT_EQ(Checksum(reply, 0x50), 0);
    EXPECT_EQ(reply[1], 0x80 | 41);
    EXPECT_EQ(std::string(reply.begin() + 17, reply.begin() + 26), "Studio 24");
    EXPECT_EQ(reply[26], 0x00);
    EXPECT_EQ(std::string(reply.begin() + 30, reply.begin() + 42), bench.display->Model().serialText);
}

TEST(VirtualDisplay, SlowCommandsKeepTheFirmwareBusy) {
    SVirtualBench bench("slate-13");
    CVirtualDisplay& display = *bench.display;
    Set(display, vcpC_DisplayPresets, 8);
    EXPECT_TRUE(Get(display, vcpC_Contrast).empty());
    bench.clock.Pause(CVirtualDisplay::kBusyAfterDisplayPreset - 1ms);
    EXPECT_TRUE(Get(display, vcpC_Contrast).empty());
    bench.clock.Pause(1ms);
    EXPECT_FALSE(Get(display, vcpC_Contrast).empty());
}

TEST(VirtualDisplay, TransactionLogRecordsRequestReplyFaultAndTime) {
    SVirtualBench bench("studio-24");
    CVirtualDisplay& display = *bench.display;
    bench.clock.Pause(5ms);
    Get(display, vcpC_Contrast);
    display.Faults().FailNext(EFault::NullMessage);
    bench.clock.Pause(7ms);
    Set(display, vcpC_Contrast, 3);
    std::vector<STransaction> log = display.Transactions();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].time, 5ms);
    EXPECT_EQ(log[0].request, BuildGetVCPRequest(vcpC_Contrast));
    EXPECT_EQ(log[0].reply, BuildSimulatedReply(0x01, vcpC_Contrast, 50, 100));
    EXPECT_EQ(log[0].fault, EFault::None);
    EXPECT_EQ(log[1].time, 12ms);
    EXPECT_EQ(log[1].fault, EFault::NullMessage);
    // The set took effect; only its answer was replaced.
    EXPECT_EQ(display.Value(vcpC_Contrast), 3);
    EXPECT_EQ(display.CountRequests(ddcCC_SetVCPFeatureRequest), 1u);
    EXPECT_EQ(display.CountRequests(ddcCC_GetVCPFeatureRequest, vcpC_Contrast), 1u);
    EXPECT_EQ(display.CountRequests(ddcCC_GetVCPFeatureRequest, vcpC_Luminance), 0u);
}

TEST(VirtualDisplay, EdidChunksStayInsideRealEdidsOfAnyLength) {
    SVirtualBench bench("canvas-22-pro");
    int shortOnes = 0;
    for (const std::string& name : TestData::List("edid", ".bin")) {
        const ByteBuffer blob = TestData::ReadBytes("edid/" + name);
        bench.display->SetEdid(blob);
        CLogCapture log;
        const ByteBuffer read = ReadEdidByVendorCommand(*bench.connector, "test");
        ASSERT_EQ(read.size(), 256u) << name;
        // The chunks cover the first 256 bytes; past the end of a 128-byte EDID they are zero.
        ByteBuffer expected(blob.begin(),
                            blob.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(256, blob.size())));
        expected.resize(256, 0x00);
        EXPECT_EQ(read, expected) << name;
        EXPECT_TRUE(log.Asserts().empty()) << name;
        shortOnes += blob.size() == 128 ? 1 : 0;
    }
    EXPECT_GT(shortOnes, 10);
}
