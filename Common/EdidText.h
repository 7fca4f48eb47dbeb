#pragma once
// Texts of the EDID display descriptors: the serial number (tag 0xFF) and the product name
// (tag 0xFC). The whole buffer is searched, extension blocks included, for the descriptor
// header 00 00 <tag> 00; the first match wins.

#include <cstdint>
#include <string>

#include "ByteBuffer.h"

namespace Edid {

constexpr uint8_t kTagSerialNumber = 0xFF;
constexpr uint8_t kTagMonitorName = 0xFC;

// The printable ASCII run after the header, trailing white space removed; empty when the
// buffer holds no such descriptor.
std::string DescriptorText(const ByteBuffer& edid_I, uint8_t tag_I);

// The product code at bytes 10-11 (little-endian); 0 for a buffer shorter than 12 bytes.
uint16_t ProductCode(const ByteBuffer& edid_I);

// The three-letter manufacturer id at bytes 8-9 ("VLR"); empty for a buffer too short.
std::string ManufacturerId(const ByteBuffer& edid_I);

}  // namespace Edid
