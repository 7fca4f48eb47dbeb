#pragma once
// DDC/CI framing, the one place that knows the bytes: the request packets (MCCS and the
// maker's vendor commands), the checks a reply must pass before it is believed, the replies
// that transports which do not carry raw bytes (graphics driver, HID) build from an API
// call's results, and the layout of the HID feature reports that carry packets. The virtual
// display answers with the same builders; tests keep literal bytes as the independent check.
//
// Multi-byte values are big-endian. Requests carry a checksum with seed 0 over every byte
// from the destination address on; a reply is valid when the XOR of seed 0x50 and all of its
// bytes, checksum included, is 0.

#include <cstddef>
#include <cstdint>
#include <string>

#include "ByteBuffer.h"
#include "ReplyError.h"

namespace Ddc {

constexpr uint8_t kDisplayAddress = 0x6E;
constexpr uint8_t kHostAddress = 0x51;
constexpr uint8_t kReplyChecksumSeed = 0x50;
constexpr uint8_t kLengthFlag = 0x80;
constexpr uint8_t kLengthMask = 0x7F;
// The length byte of a get reply: eight bytes follow.
constexpr uint8_t kGetReplyLength = kLengthFlag | 8;
// The null message, 6E 80 BE: "nothing to say".
constexpr uint8_t kNullMessageChecksum = 0xBE;
constexpr size_t kNullMessageSize = 3;

// Where a host request keeps its fields.
constexpr size_t kCommandByte = 3;
constexpr size_t kCodeByte = 4;
constexpr size_t kValueHighByte = 5;
constexpr size_t kValueLowByte = 6;

// Reply capacity every caller asks the connector for.
constexpr unsigned kReplySize = 38;

// The maker's vendor commands: opcode C0 with a command byte.
constexpr uint8_t kVendorOpcode = 0xC0;
constexpr uint8_t kFactoryModeCommand = 0xE1;
constexpr uint8_t kEdidChunkCommand = 0x66;
// The EDID chunk index that asks the serial firmware for its whole EDID in one answer.
constexpr uint8_t kWholeEdidIndex = 0xFF;
// An EDID chunk reply: 6E 92 <16 EDID bytes> 66 index chk.
constexpr int kEdidChunks = 16;
constexpr size_t kEdidChunkSize = 16;
constexpr uint8_t kEdidChunkReplyLength = kLengthFlag | (kEdidChunkSize + 2);
constexpr size_t kEdidChunkDataOffset = 2;
// A reply to a request with an offset (capabilities E3, vendor table E4):
// 6E 80|n opcode offset-high offset-low data chk.
constexpr size_t kOffsetReplyHeaderSize = 5;
// The first byte of the fixed factory-reset message, and its length.
constexpr uint8_t kScalerResetFirstByte = 0xEE;
constexpr size_t kScalerResetSize = 6;

}  // namespace Ddc

// XOR of the seed and every byte of the buffer.
uint8_t Checksum(const ByteBuffer& buffer_I, uint8_t seed_I);

// ---- requests ----
// 6E 51 82 01 code chk
ByteBuffer BuildGetVCPRequest(uint8_t vcpCode_I);
// 6E 51 84 03 code value-high value-low chk
ByteBuffer BuildSetVCPRequest(uint8_t vcpCode_I, uint16_t value_I);
// 6E 51 81 0C B2
ByteBuffer BuildSaveCurrentSettingsRequest();
// 6E 51 83 F3 offset-high offset-low chk (MCCS capabilities request)
ByteBuffer BuildCapabilitiesRequest(uint16_t offset_I);
// 6E 51 84 E2 table offset-high offset-low chk: the maker's table read (table F3 is the
// capabilities string, C9 the firmware version).
ByteBuffer BuildTableReadRequest(uint8_t table_I, uint16_t offset_I);
// 6E 51 84 C0 E1 00 flag chk
ByteBuffer BuildFactoryModeRequest(bool on_I);
// 6E 51 83 C0 66 index chk
ByteBuffer BuildEdidChunkRequest(uint8_t index_I);
// EE 05 11 00 00 EA: the maker's fixed factory-reset message, sent exactly as it stands.
ByteBuffer BuildScalerResetMessage();
// The request's total length as its length byte counts it (destination, source, length byte,
// the data it counts, checksum); 0 when fewer than three bytes are known.
size_t FramedRequestSize(const ByteBuffer& request_I);

// ---- replies, as a display sends them (checksum included) ----
// Appends a reply's checksum (seed 0x50).
ByteBuffer SealReply(ByteBuffer reply_I);
// 6E 80 BE: the display's "no data" reply.
ByteBuffer BuildNullMessage();
// 6E 88 02 result code 00 max-high max-low cur-high cur-low chk
ByteBuffer BuildGetReply(uint8_t result_I, uint8_t vcpCode_I, uint16_t maximum_I, uint16_t current_I);
// 6E 80|n opcode offset-high offset-low data chk
ByteBuffer BuildOffsetReply(uint8_t opcode_I, uint16_t offset_I, const ByteBuffer& data_I);
// 6E 92 <16 bytes> 66 index chk
ByteBuffer BuildEdidChunkReply(uint8_t index_I, const ByteBuffer& chunk_I);

// ---- checks ----
// Removes a reply's last byte (its checksum) and returns the checksum, seed 0x50, of the
// bytes that remain. An empty reply stays empty and gives 0x50.
uint8_t StripReplyChecksum(ByteBuffer& reply_IO);
// Exactly the null message.
bool IsNullMessage(const ByteBuffer& reply_I);
// The null message followed by anything.
bool StartsWithNullMessage(const ByteBuffer& reply_I);
// A byte of the null message (some transports hand its bytes back rotated).
bool IsNullMessageByte(uint8_t byte_I);
// The first three bytes of a get reply: 6E 88 02.
bool StartsWithGetReplyHeader(const ByteBuffer& reply_I);
// A reply to an offset request of this opcode and offset: a valid checksum over every byte,
// the display's address, the length flag, the opcode, the offset, and a length byte that counts
// no more bytes than arrived. dataSize_O is the number of data bytes it counts (after the
// header, before the checksum).
bool CheckOffsetReply(const ByteBuffer& reply_I, uint8_t opcode_I, uint16_t offset_I, size_t& dataSize_O);

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
// the kind of error ("Send request failed", "address is incorrect", ...), or None when the
// value was taken.
EReplyError CheckGetReply(const ByteBuffer& inBuffer, uint8_t requestedCode_I, bool continuous_I,
                          SGetReplyValue& value_O);
// Checks the answer to a set request whose checksum byte was already removed: anything of two
// bytes or more counts as taken.
EReplyError CheckSetReply(const ByteBuffer& inBuffer);

// ---- transports that carry out requests through an API call ----
// What a host request (6E 51 len command code [value-high value-low] chk) asks.
struct SHostRequest {
    uint8_t command = 0;
    uint8_t vcpCode = 0;    // 0 when the request is too short to carry one
    bool hasValue = false;  // the request is long enough to carry a set's value
    uint16_t value = 0;
};
SHostRequest DecodeHostRequest(const ByteBuffer& request_I);

// Whether the request is a host request they can decode (at least 4 bytes, 6E 51 first);
// asserts when it is not.
bool IsTranslatableRequest(const ByteBuffer& request_I);
// Asserts that a request's command has no API call; the caller answers with nothing.
void ReportUntranslatableCommand();
// The reply a display would have sent for a request that a transport carried out through an
// API call: a get reply (result and type 00) for command 01, the null message for 03 and 0C.
// Any other command asserts and yields the single checksum byte 50.
ByteBuffer BuildSimulatedReply(uint8_t command_I, uint8_t vcpCode_I, uint16_t current_I, uint16_t maximum_I);

// ---- DDC/CI packets inside HID feature reports ----
// A request goes out as E5 04 kind 00 00 <packet>; a status request as E5 04 00. The status
// report that answers carries the state at byte 4 and the display's reply from byte 6 on.
namespace HidVcp {

constexpr size_t kReportSize = 512;
constexpr uint8_t kReportId = 0xE5;
constexpr uint8_t kVcpChannel = 0x04;
constexpr size_t kKindByte = 2;
constexpr size_t kPacketStart = 5;
constexpr size_t kStatusByte = 4;
constexpr size_t kReplyLengthByte = 5;
constexpr size_t kReplyStart = 6;
// Where a get reply's maximum and current low bytes sit in a status report.
constexpr size_t kMaximumLowByte = kReplyStart + 7;
constexpr size_t kCurrentLowByte = kReplyStart + 9;

// Request kinds: a status request, a request that only changes state, one that expects data.
constexpr uint8_t kKindStatus = 0;
constexpr uint8_t kKindWithoutData = 2;
constexpr uint8_t kKindWithData = 3;

// Status states.
constexpr uint8_t kStatusDone = 0x00;
constexpr uint8_t kStatusBusy = 0x01;
constexpr uint8_t kStatusNoReply = 0x02;
constexpr uint8_t kStatusBusyAlternate = 0x05;

// E5 04 00
ByteBuffer BuildStatusRequest();
// E5 04 kind 00 00 <packet>
ByteBuffer WrapRequest(uint8_t kind_I, const ByteBuffer& packet_I);
// Starts with E5 04 and has a kind byte.
bool IsVcpReport(const ByteBuffer& report_I);
bool IsBusy(const ByteBuffer& status_I);
// Whether the status carries the display's get reply for this code.
bool CarriesGetReply(const ByteBuffer& status_I, uint8_t code_I);

}  // namespace HidVcp
