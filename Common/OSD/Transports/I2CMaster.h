#pragma once
// An I2C bus master as the DDC/CI-over-I2C connector needs it. Addresses are 7-bit.

#include <cstddef>
#include <cstdint>

#include "ByteBuffer.h"

class II2CMaster {
public:
    virtual ~II2CMaster() = default;
    // Start, the address for writing, the bytes, stop. False when the address or a byte is
    // not acknowledged.
    virtual bool Write(uint8_t address7_I, const ByteBuffer& bytes_I) = 0;
    // Start, the address for reading, count_I bytes (each acknowledged but the last), stop.
    // False when the address is not acknowledged.
    virtual bool Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) = 0;
};
