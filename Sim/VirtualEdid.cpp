#include "VirtualEdid.h"

#include <algorithm>

namespace {

constexpr size_t kBlockSize = 128;

// Manufacturer id: three letters of five bits each, 'A' = 1, big-endian.
constexpr uint16_t PackManufacturer(char a, char b, char c) {
    return static_cast<uint16_t>(((a - 'A' + 1) << 10) | ((b - 'A' + 1) << 5) | (c - 'A' + 1));
}

// An 18-byte display descriptor holding up to 13 characters, ended by 0x0A and padded with
// blanks when shorter.
void PutTextDescriptor(ByteBuffer& edid, size_t offset, uint8_t tag, const std::string& text) {
    const uint8_t header[5] = {0x00, 0x00, 0x00, tag, 0x00};
    std::copy(std::begin(header), std::end(header), edid.begin() + static_cast<std::ptrdiff_t>(offset));
    const size_t length = std::min<size_t>(text.size(), 13);
    for (size_t i = 0; i < 13; ++i) {
        uint8_t byte = 0x20;
        if (i < length) {
            byte = static_cast<uint8_t>(text[i]);
        } else if (i == length) {
            byte = 0x0A;
        }
        edid[offset + 5 + i] = byte;
    }
}

void SealBlock(ByteBuffer& edid, size_t block) {
    uint8_t sum = 0;
    for (size_t i = block * kBlockSize; i < (block + 1) * kBlockSize - 1; ++i) {
        sum = static_cast<uint8_t>(sum + edid[i]);
    }
    edid[(block + 1) * kBlockSize - 1] = static_cast<uint8_t>(0x100 - sum);
}

}  // namespace

ByteBuffer BuildVirtualEdid(const SVirtualEdidIdentity& identity_I) {
    ByteBuffer edid(2 * kBlockSize, 0x00);
    const uint8_t header[8] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    std::copy(std::begin(header), std::end(header), edid.begin());
    const uint16_t manufacturer = PackManufacturer('V', 'L', 'R');
    edid[8] = static_cast<uint8_t>(manufacturer >> 8);
    edid[9] = static_cast<uint8_t>(manufacturer & 0xFF);
    edid[10] = static_cast<uint8_t>(identity_I.productCode & 0xFF);
    edid[11] = static_cast<uint8_t>(identity_I.productCode >> 8);
    for (int i = 0; i < 4; ++i) {
        edid[12 + i] = static_cast<uint8_t>(identity_I.serialNumber >> (8 * i));
    }
    edid[16] = identity_I.week;
    edid[17] = static_cast<uint8_t>(identity_I.year - 1990);
    edid[18] = 1;  // EDID 1.4
    edid[19] = 4;
    edid[20] = 0xA5;  // digital, 8 bits per colour, DisplayPort
    edid[21] = 53;    // 53 x 30 cm
    edid[22] = 30;
    edid[23] = 0x78;  // gamma 2.2
    edid[24] = 0x0A;  // RGB 4:4:4, sRGB default, preferred timing native
    const uint8_t chromaticity[10] = {0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54};
    std::copy(std::begin(chromaticity), std::end(chromaticity), edid.begin() + 25);
    for (size_t i = 38; i < 54; ++i) {
        edid[i] = 0x01;  // no standard timings
    }
    // Preferred timing 1920x1080 at 60 Hz.
    const uint8_t timing[18] = {0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                                0x2C, 0x45, 0x00, 0x13, 0x2B, 0x21, 0x00, 0x00, 0x1E};
    std::copy(std::begin(timing), std::end(timing), edid.begin() + 54);
    PutTextDescriptor(edid, 72, 0xFF, identity_I.serialText);
    PutTextDescriptor(edid, 90, 0xFC, identity_I.monitorName);
    // Range limits: 50-75 Hz vertical, 30-83 kHz horizontal, 170 MHz.
    const uint8_t limits[18] = {0x00, 0x00, 0x00, 0xFD, 0x00, 0x32, 0x4B, 0x1E, 0x53,
                                0x11, 0x00, 0x0A, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20};
    std::copy(std::begin(limits), std::end(limits), edid.begin() + 108);
    edid[126] = 1;  // one extension block
    SealBlock(edid, 0);

    // CTA-861 extension with no data blocks and no further timings.
    edid[128] = 0x02;
    edid[129] = 0x03;
    edid[130] = 0x04;
    edid[131] = 0x00;
    SealBlock(edid, 1);
    return edid;
}
