#pragma once
// The MPSSE commands of FTDI's engine that an I2C master uses (FTDI application note AN_108),
// and the pins it drives: the master builds its streams from them, the virtual engine reads
// them.

#include <cstdint>

namespace Mpsse {

constexpr uint8_t kBadCommand = 0xAA;  // echoed as FA AA: the engine answers
constexpr uint8_t kBadCommandEcho = 0xFA;
constexpr uint8_t kSetLowBits = 0x80;  // value, direction of ADBUS
constexpr uint8_t kBytesOutFallingMsb = 0x11;
constexpr uint8_t kBitsOutFallingMsb = 0x13;
constexpr uint8_t kBytesInRisingMsb = 0x20;
constexpr uint8_t kBitsInRisingMsb = 0x22;
constexpr uint8_t kSendImmediate = 0x87;
constexpr uint8_t kDisableClockDivide5 = 0x8A;
// Adaptive clocking: each clock waits until SCL, read back on GPIOL3 (ADBUS7, wired to SCL on
// the bridge), is high, so a display that holds SCL low to stretch the clock is waited for.
constexpr uint8_t kEnableAdaptiveClocking = 0x96;
constexpr uint8_t kDisableAdaptiveClocking = 0x97;
constexpr uint8_t kEnableThreePhaseClocking = 0x8C;
constexpr uint8_t kSetClockDivisor = 0x86;
constexpr uint8_t kLoopbackOff = 0x85;
// FT232H only: the pins of these masks (low byte, high byte) drive 0 and float for 1, as I2C
// lines must so that a display can hold SCL low to stretch the clock.
constexpr uint8_t kDriveOnlyZero = 0x9E;

// ADBUS pins: bit 0 SCL, bit 1 SDA out (bit 2, SDA in, is wired to it).
constexpr uint8_t kSclPin = 0x01;
constexpr uint8_t kSdaPin = 0x02;

}  // namespace Mpsse
