#include <gtest/gtest.h>

#include <sstream>

#include "CEdidBuilder.h"
#include "EdidText.h"
#include "LogCapture.h"
#include "TestData.h"

namespace {

// A SOURCES.tsv text column as the extraction must yield it: the first descriptor of the
// tag, "<empty:...>" as nothing, the "[no LF, n chars]" mark dropped, the text cut at its
// first byte that is not printable ASCII, trailing blanks removed.
std::string ExpectedText(std::string column) {
    column = column.substr(0, column.find(" | "));
    if (column.rfind("<empty:", 0) == 0) {
        return {};
    }
    size_t mark = column.find(" [no LF,");
    if (mark != std::string::npos) {
        column.erase(mark);
    }
    size_t escape = column.find("\\x");
    if (escape != std::string::npos) {
        column.erase(escape);  // the descriptor holds a non-printable byte here
    }
    size_t end = column.find_last_not_of(" \t");
    return end == std::string::npos ? std::string() : column.substr(0, end + 1);
}

struct SEdidSource {
    std::string file;
    std::string serial;
    std::string name;
};

std::vector<SEdidSource> ReadSources() {
    std::istringstream in(TestData::ReadText("edid/SOURCES.tsv"));
    std::vector<SEdidSource> sources;
    std::string line;
    std::getline(in, line);  // column names
    while (std::getline(in, line)) {
        std::vector<std::string> columns;
        std::istringstream fields(line);
        std::string field;
        while (std::getline(fields, field, '\t')) {
            columns.push_back(field);
        }
        if (columns.size() >= 6) {
            sources.push_back({columns[0], columns[4], columns[5]});
        }
    }
    return sources;
}

}  // namespace

TEST(EdidText, EveryRealBlobGivesExactlyTheListedTexts) {
    std::vector<SEdidSource> sources = ReadSources();
    ASSERT_GE(sources.size(), 100u);
    size_t withoutSerial = 0;
    for (const SEdidSource& source : sources) {
        SCOPED_TRACE(source.file);
        ByteBuffer edid = TestData::ReadBytes("edid/" + source.file);
        ASSERT_GE(edid.size(), 128u);
        EXPECT_EQ(Edid::DescriptorText(edid, Edid::kTagSerialNumber), ExpectedText(source.serial));
        // SOURCES.tsv lists the descriptors of the base block; the search covers the whole
        // buffer, so a name that only an extension block carries is found there.
        const std::string name =
            source.file == "ed_elo-4600L-hdmi_ELO_4600.bin" ? "ELO ET4600L" : ExpectedText(source.name);
        EXPECT_EQ(Edid::DescriptorText(edid, Edid::kTagMonitorName), name);
        withoutSerial += source.serial.empty();
    }
    EXPECT_GT(withoutSerial, 10u);
}

TEST(EdidText, DescriptorRulesAtTheirEdges) {
    // Serial "ABC123", its 0x0A and padding blanks.
    ByteBuffer edid(128, 0x11);
    const uint8_t serial[] = {0x00, 0x00, 0x00, 0xFF, 0x00, 'A', 'B', 'C', '1',
                              '2',  '3',  0x0A, ' ',  ' ',  ' ', ' ', ' ', ' '};
    std::copy(std::begin(serial), std::end(serial), edid.begin() + 72);
    EXPECT_EQ(Edid::DescriptorText(edid, 0xFF), "ABC123");
    EXPECT_EQ(Edid::DescriptorText(edid, 0xFC), "");

    // A full 13-character field runs on into printable bytes that follow it.
    const uint8_t name[] = {0x00, 0x00, 0x00, 0xFC, 0x00, 'C', 'a', 'n', 'v',
                            'a',  's',  ' ',  '2',  '2',  ' ', 'P', 'r', 'o'};
    std::copy(std::begin(name), std::end(name), edid.begin() + 90);
    edid[108] = 'X';
    edid[109] = 0x05;
    EXPECT_EQ(Edid::DescriptorText(edid, 0xFC), "Canvas 22 ProX");

    // The first match wins, also against an extension block.
    ByteBuffer twoBlocks = edid;
    twoBlocks.resize(256, 0x11);
    const uint8_t other[] = {0x00, 0x00, 0x00, 0xFF, 0x00, 'Z', 'Z', 0x0A};
    std::copy(std::begin(other), std::end(other), twoBlocks.begin() + 140);
    EXPECT_EQ(Edid::DescriptorText(twoBlocks, 0xFF), "ABC123");

    // A text that ends with the buffer, and a header at the very end.
    ByteBuffer shortBuffer = {0x00, 0x00, 0xFF, 0x00, 'S', 'N', '1'};
    EXPECT_EQ(Edid::DescriptorText(shortBuffer, 0xFF), "SN1");
    ByteBuffer headerOnly = {0x00, 0x00, 0xFF, 0x00};
    EXPECT_EQ(Edid::DescriptorText(headerOnly, 0xFF), "");
    EXPECT_EQ(Edid::DescriptorText(ByteBuffer{}, 0xFF), "");
    const ByteBuffer real = TestData::ReadBytes("edid/lhw_std128_ACI_E330_A1CAE1.bin");
    EXPECT_EQ(Edid::ProductCode(real), 0xE330);
    // A truncated EDID: the code needs both its bytes (10 and 11).
    EXPECT_EQ(Edid::ProductCode(ByteBuffer(real.begin(), real.begin() + 12)), 0xE330);
    EXPECT_EQ(Edid::ProductCode(ByteBuffer(real.begin(), real.begin() + 11)), 0);
}

TEST(CEdidBuilder, ShippedTableAndFamilies) {
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    ASSERT_NE(pEdidBldr, nullptr);
    EXPECT_EQ(pEdidBldr, CEdidBuilder::Instance());
    EXPECT_EQ(pEdidBldr->FamilyOf(MakeTabletId(0x032B)), (std::vector<uint16_t>{0x1043, 0x1048}));
    EXPECT_EQ(pEdidBldr->FamilyOf(MakeTabletId(0x037C)), (std::vector<uint16_t>{0x1060, 0x1063}));
    EXPECT_EQ(pEdidBldr->FamilyOf(MakeTabletId(0x03A6)), (std::vector<uint16_t>{0x1070}));
    EXPECT_TRUE(pEdidBldr->FamilyOf(MakeTabletId(0x034F)).empty());
    EXPECT_TRUE(pEdidBldr->IsInFamily(MakeTabletId(0x032A), 0x1049));
    EXPECT_FALSE(pEdidBldr->IsInFamily(MakeTabletId(0x032A), 0x1043));
    EXPECT_FALSE(pEdidBldr->IsInFamily(MakeTabletId(0x034F), 0x1043));
    // The vendor id is part of the identity.
    EXPECT_FALSE(pEdidBldr->IsInFamily(0x0000032A, 0x1049));
}

TEST(CEdidBuilder, LookupByEDIDNamesTheTabletAndEntersUnknownCodes) {
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    CLogCapture log;
    EXPECT_EQ(pEdidBldr->LookupByEDID("VLR1070"), static_cast<int32_t>(MakeTabletId(0x03A6)));
    EXPECT_TRUE(log.Contains("LookupByEDID: found tablet: 4208 to match EDID: VLR1070\n"));

    EXPECT_EQ(pEdidBldr->LookupByEDID("DEL4016"), -1);
    EXPECT_TRUE(log.Contains("LookupByEDID: WARNING - found NO tablet to match EDID: DEL4016\n"));

    EXPECT_EQ(pEdidBldr->LookupByEDID("VLR0000"), 0);
    // The unknown code now has a row of its own, with tablet 0.
    EXPECT_EQ(pEdidBldr->FamilyOf(0), std::vector<uint16_t>{0x0000});

    // Not hexadecimal: logged, and looked up as code 0.
    EXPECT_EQ(pEdidBldr->LookupByEDID("VLRzz"), 0);
    EXPECT_TRUE(log.Contains("HexStringToInteger:"));

    log.Clear();
    pEdidBldr->Add(MakeTabletId(0x0001), 0xFFFF);
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"edid_I < 0xFFFF"});
}
