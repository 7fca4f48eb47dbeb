#pragma once
// The unit every packet, EDID block and HID report travels in.

#include <cstdint>
#include <vector>

using ByteBuffer = std::vector<uint8_t>;
