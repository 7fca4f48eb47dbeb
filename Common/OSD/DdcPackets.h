#pragma once
// DDC/CI framing: the request packets the display object sends, the checks a get reply
// must pass before its value is believed, and the replies that transports which do not
// carry raw bytes (graphics driver, HID) build from an API call's results.
//
// Multi-byte values are big-endian. Requests carry a checksum with seed 0 over every byte
// from the destination address on; a reply is valid when the XOR of seed 0x50 and all of its
// bytes, checksum included, is 0.

#include <cstdint>
#include <string>

#include "ByteBuffer.h"

namespace Ddc {

constexpr uint8_t kDisplayAddress = 0x6E;
constexpr uint8_t kHostAddress = 0x51;
constexpr uint8_t kReplyChecksumSeed = 0x50;
constexpr uint8_t kLengthFlag = 0x80;

// Reply capacity every caller asks the connector for.
constexpr unsigned kReplySize = 38;

// Waits between writing a request and reading its reply, fitted to the display firmware.
constexpr double kGetWaitSeconds = 0.07;
constexpr double kSetWaitSeconds = 0.07;
constexpr double kSetLuminanceWaitSeconds = 0.13;
constexpr double kSetDisplayScalingWaitSeconds = 0.25;
constexpr double kSaveWaitSeconds = 0.22;
constexpr double kScalerResetWaitSeconds = 0.07;

// The wait after a set request of this code.
double SetRequestWaitSeconds(uint8_t vcpCode_I);

}  // namespace Ddc

// XOR of the seed and every byte of the buffer.
uint8_t Checksum(const ByteBuffer& buffer_I, uint8_t seed_I);

// 6E 51 82 01 code chk
ByteBuffer BuildGetVCPRequest(uint8_t vcpCode_I);
// 6E 51 84 03 code value-high value-low chk
ByteBuffer BuildSetVCPRequest(uint8_t vcpCode_I, uint16_t value_I);
// 6E 51 81 0C B2
ByteBuffer BuildSaveCurrentSettingsRequest();
// 6E 51 83 F3 offset-high offset-low chk (MCCS capabilities request)
ByteBuffer BuildCapabilitiesRequest(uint16_t offset_I);
// EE 05 11 00 00 EA: the maker's fixed factory-reset message, sent exactly as it stands.
ByteBuffer BuildScalerResetMessage();
// 6E 80 BE: the display's "no data" reply.
ByteBuffer BuildNullMessage();

// Removes a reply's last byte (its checksum) and returns the checksum, seed 0x50, of the
// bytes that remain. An empty reply stays empty and gives 0x50.
uint8_t StripReplyChecksum(ByteBuffer& reply_IO);

// The fields of a get-VCP reply that passed the checks.
struct SGetReplyValue {
    uint8_t type = 0;
    uint16_t maximum = 0;
    uint16_t current = 0;
    // Bytes 6 to 9 joined, high byte first (with the Input Source layout for 0x60): the value
    // of a non-continuous option.
    int32_t nonContinuous = 0;
};

// Checks a get reply whose checksum byte was already removed, in the firmware's order. Returns
// the error text for the option ("Send request failed", "address is incorrect", ...), or an
// empty text when the value was taken.
std::string CheckGetReply(const ByteBuffer& inBuffer, uint8_t requestedCode_I, bool continuous_I,
                          SGetReplyValue& value_O);

// For transports that carry out requests through an API call: whether the request is a host
// request they can decode (at least 4 bytes, 6E 51 first); asserts when it is not.
bool IsTranslatableRequest(const ByteBuffer& request_I);
// Asserts that a request's command has no API call; the caller answers with nothing.
void ReportUntranslatableCommand();

// The reply a display would have sent for a request that a transport carried out through an
// API call: a get reply (result and type 00) for command 01, the null message for 03 and 0C.
// Any other command asserts and yields the single checksum byte 50.
ByteBuffer BuildSimulatedReply(uint8_t command_I, uint8_t vcpCode_I, uint16_t current_I, uint16_t maximum_I);
