#include "ReplyError.h"

const char* ReplyErrorText(EReplyError error_I) {
    switch (error_I) {
        case EReplyError::None: return "";
        case EReplyError::SendRequestFailed: return "Send request failed";
        case EReplyError::NoData: return "Send request no data";
        case EReplyError::UnknownResponse: return "Send request unknown response";
        case EReplyError::AddressIncorrect: return "address is incorrect";
        case EReplyError::LengthIncorrect: return "length is incorrect";
        case EReplyError::ReplyCodeIncorrect: return "reply code is incorrect";
        case EReplyError::VcpCodeError: return "vcp code error";
        case EReplyError::NotOurQuery: return "it is NOT a response to our query";
        case EReplyError::BadCodeType: return "Bad code type";
        case EReplyError::DeviceNotOpen: return "Device not open";
        case EReplyError::TableCodesNotSupported: return "Table codes not supported";
        case EReplyError::Other: break;
    }
    return "error";
}
