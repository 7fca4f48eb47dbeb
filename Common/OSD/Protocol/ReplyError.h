#pragma once
// What can go wrong with one VCP transaction, as one kind with one text. Options carry the
// text (it is what the trace and the error box show); callers branch on the kind.

#include <cstdint>

enum class EReplyError : uint8_t {
    None,
    SendRequestFailed,  // nothing, or almost nothing, came back
    NoData,             // the null message
    UnknownResponse,    // too short to be a get reply
    AddressIncorrect,
    LengthIncorrect,
    ReplyCodeIncorrect,
    VcpCodeError,  // the display refused the code
    NotOurQuery,   // a reply for another code
    BadCodeType,
    DeviceNotOpen,
    TableCodesNotSupported,
    Other,  // a text of its own
};

// The text an option keeps for the kind; empty for None.
const char* ReplyErrorText(EReplyError error_I);
