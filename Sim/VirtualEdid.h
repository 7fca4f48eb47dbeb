#pragma once
// A valid 256-byte EDID (base block and one CTA-861 extension) for a virtual display: the
// maker's manufacturer id "VLR", the product code, and serial-number and monitor-name
// descriptors with the given texts.

#include <cstdint>
#include <string>

#include "ByteBuffer.h"

struct SVirtualEdidIdentity {
    uint16_t productCode = 0;
    uint32_t serialNumber = 0;  // the numeric serial of bytes 12-15
    std::string serialText;     // descriptor 0xFF, at most 13 characters
    std::string monitorName;    // descriptor 0xFC, at most 13 characters
    uint8_t week = 1;
    uint16_t year = 2024;
};

ByteBuffer BuildVirtualEdid(const SVirtualEdidIdentity& identity_I);
