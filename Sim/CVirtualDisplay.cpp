#include "CVirtualDisplay.h"

#include <algorithm>

#include "Clock.h"
#include "DdcPackets.h"
#include "VirtualEdid.h"
#include "codes.h"

namespace {

constexpr uint8_t kResultUnsupported = 0x01;
constexpr size_t kCapabilitiesChunk = 32;
constexpr size_t kDisplayInfoTextSize = 13;
constexpr size_t kTransactionLogLimit = 1 << 16;
constexpr size_t kTableReadChunk = 31;

bool IsGetReply(const ByteBuffer& reply_I) {
    return reply_I.size() == 11 && StartsWithGetReplyHeader(reply_I);
}

bool IsControlOf(uint8_t code_I, std::initializer_list<uint8_t> codes_I) {
    return std::find(codes_I.begin(), codes_I.end(), code_I) != codes_I.end();
}

uint16_t SerialNumberOf(const std::string& text_I) {
    uint16_t value = 0;
    for (char c : text_I) {
        value = static_cast<uint16_t>(value * 31 + static_cast<uint8_t>(c));
    }
    return value;
}

}  // namespace

CVirtualDisplay::CVirtualDisplay(SVirtualDisplayModel model_I) : mModel(std::move(model_I)) {
    mCapabilities = BuildCapabilitiesString(mModel);
    SVirtualEdidIdentity identity;
    identity.productCode = mModel.edidProductCode;
    identity.serialNumber = 0x10000u + SerialNumberOf(mModel.serialText);
    identity.serialText = mModel.serialText;
    identity.monitorName = mModel.monitorName;
    mEdid = BuildVirtualEdid(identity);
    for (const SVirtualControl& control : mModel.controls) {
        SControlState state;
        state.control = control;
        state.value = control.factoryValue;
        state.saved = control.factoryValue;
        mControls[control.code] = state;
    }
}

ByteBuffer CVirtualDisplay::Handle(const ByteBuffer& request_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    const SHostRequest decoded = DecodeHostRequest(request_I);
    const uint8_t opcode = decoded.command;
    const int vcpCode = request_I.size() > Ddc::kCodeByte &&
                                (opcode == ddcCC_GetVCPFeatureRequest || opcode == ddcCC_SetVCPFeatureRequest)
                            ? decoded.vcpCode
                            : kAnyCode;
    STransaction transaction;
    transaction.time = Clock::Get().Now();
    transaction.request = request_I;
    transaction.fault = mFaults.Next(opcode, vcpCode);
    if (transaction.fault != EFault::NoReply) {
        transaction.reply = ApplyFault(transaction.fault, Answer(request_I));
    }
    if (mTransactions.size() >= kTransactionLogLimit) {
        // A long demo run keeps the recent half of its log.
        mTransactions.erase(mTransactions.begin(), mTransactions.begin() + kTransactionLogLimit / 2);
    }
    mTransactions.push_back(transaction);
    return transaction.reply;
}

ByteBuffer CVirtualDisplay::Answer(const ByteBuffer& request_I) {
    if (Clock::Get().Now() < mBusyUntil) {
        return {};  // still working on a slow command
    }
    if (request_I == BuildScalerResetMessage()) {
        RestoreDefaults(false, true);
        BeBusyFor(kBusyAfterFactoryDefaults);
        // Acknowledged as a get reply of Restore Factory Defaults.
        return BuildGetReply(0x00, vcpC_RestoreFactoryDefaults, 0x0001, 0x0001);
    }
    // A request the firmware cannot read is ignored: wrong addresses, a length byte that
    // does not match, a bad checksum.
    if (request_I.size() < 5 || request_I[0] != Ddc::kDisplayAddress || request_I[1] != Ddc::kHostAddress ||
        (request_I[2] & Ddc::kLengthFlag) == 0 || FramedRequestSize(request_I) != request_I.size() ||
        Checksum(request_I, 0) != 0) {
        return {};
    }
    const SHostRequest request = DecodeHostRequest(request_I);
    switch (request.command) {
        case ddcCC_GetVCPFeatureRequest:
            return request_I.size() == 6 ? AnswerGet(request.vcpCode) : ByteBuffer{};
        case ddcCC_SetVCPFeatureRequest:
            if (request_I.size() != 8) {
                return {};
            }
            if (request.vcpCode == kSaveThroughDriverCode) {
                StoreCurrentValues();
                return BuildNullMessage();
            }
            ApplySet(request.vcpCode, request.value);
            return BuildNullMessage();
        case ddcCC_SaveCurrentSettingsRequest: StoreCurrentValues(); return BuildNullMessage();
        case ddcCC_CapabilitiesRequest:
            return request_I.size() == 7
                       ? AnswerCapabilities(static_cast<uint16_t>((request_I[4] << 8) | request_I[5]))
                       : ByteBuffer{};
        case Ddc::kVendorOpcode: return AnswerVendor(request_I);
        case ddcCC_TableReadRequest:
            return request_I.size() == 8
                       ? AnswerTableRead(request_I[4],
                                         static_cast<uint16_t>((request_I[5] << 8) | request_I[6]))
                       : ByteBuffer{};
        default: return BuildNullMessage();
    }
}

ByteBuffer CVirtualDisplay::AnswerGet(uint8_t code_I) const {
    if (code_I == vcpC_DisplayFirmwareLevel) {
        const SFirmwareVersion& fw = mModel.firmware;
        return BuildGetReply(0x00, code_I, fw.major, static_cast<uint16_t>((fw.minor << 8) | fw.build));
    }
    if (code_I == vcpC_DisplayInfo) {
        return AnswerDisplayInformation();
    }
    auto it = mControls.find(code_I);
    if (it == mControls.end() || it->second.control.access == EControlAccess::WriteOnly) {
        return BuildGetReply(kResultUnsupported, code_I, 0, 0);
    }
    const SControlState& state = it->second;
    // Enumerated controls report no maximum: the four value bytes hold the value alone.
    const uint16_t maximum = state.control.continuous ? state.control.maximum : 0;
    return BuildGetReply(0x00, code_I, maximum, state.value);
}

void CVirtualDisplay::StoreCurrentValues() {
    for (auto& entry : mControls) {
        entry.second.saved = entry.second.value;
    }
}

void CVirtualDisplay::ApplySet(uint8_t code_I, uint16_t value_I) {
    auto it = mControls.find(code_I);
    if (it == mControls.end() || it->second.control.access == EControlAccess::ReadOnly) {
        return;  // firmware ignores what it cannot do
    }
    SControlState& state = it->second;
    switch (code_I) {
        case vcpC_RestoreFactoryDefaults:
            if (value_I != 0) {
                RestoreDefaults(false, true);
                BeBusyFor(kBusyAfterFactoryDefaults);
            }
            return;
        case vcpC_RestoreFactoryColorDefaults:
            if (value_I != 0) {
                RestoreDefaults(true, false);
                BeBusyFor(kBusyAfterFactoryDefaults);
            }
            return;
        case vcpC_RestoreFactoryLuminanceAndContrastDefaults:
            for (auto& entry : mControls) {
                if (IsControlOf(entry.first, {vcpC_Luminance, vcpC_BacklightControl, vcpC_BacklightLevelWhite,
                                              vcpC_Contrast})) {
                    entry.second.value = entry.second.control.factoryValue;
                }
            }
            return;
        default: break;
    }
    if (state.control.continuous) {
        if (value_I > state.control.maximum) {
            return;
        }
    } else if (!state.control.allowed.empty() &&
               std::find(state.control.allowed.begin(), state.control.allowed.end(), value_I) ==
                   state.control.allowed.end()) {
        return;
    }
    state.value = value_I;
    if (code_I == vcpC_DisplayPresets) {
        BeBusyFor(kBusyAfterDisplayPreset);
    } else if (code_I == vcpC_UniformityCompensation) {
        BeBusyFor(kBusyAfterUniformity);
    }
}

ByteBuffer CVirtualDisplay::AnswerCapabilities(uint16_t offset_I) const {
    ByteBuffer data;
    if (offset_I < mCapabilities.size()) {
        const size_t count = std::min(kCapabilitiesChunk, mCapabilities.size() - offset_I);
        data.assign(mCapabilities.begin() + offset_I, mCapabilities.begin() + offset_I + count);
    }
    return BuildOffsetReply(ddcCC_CapabilitiesReplyCode, offset_I, data);
}

ByteBuffer CVirtualDisplay::AnswerVendor(const ByteBuffer& request_I) {
    const uint8_t command = request_I[4];
    if (command == Ddc::kFactoryModeCommand && request_I.size() == 8) {
        mFactoryMode = request_I[6] != 0;
        return BuildNullMessage();
    }
    if (command == Ddc::kEdidChunkCommand && request_I.size() == 7 && request_I[5] == Ddc::kWholeEdidIndex) {
        // The serial firmware sends its whole EDID in one answer.
        return SealReply(mEdid);
    }
    if (command == Ddc::kEdidChunkCommand && request_I.size() == 7 && mFactoryMode &&
        request_I[5] < Ddc::kEdidChunks) {
        // Past the end of a 128-byte EDID the chunks read as zeros, as an erased EEPROM does.
        const size_t start = static_cast<size_t>(request_I[5]) * Ddc::kEdidChunkSize;
        ByteBuffer chunk(Ddc::kEdidChunkSize, 0x00);
        if (start < mEdid.size()) {
            std::copy_n(mEdid.begin() + static_cast<std::ptrdiff_t>(start),
                        std::min(Ddc::kEdidChunkSize, mEdid.size() - start), chunk.begin());
        }
        return BuildEdidChunkReply(request_I[5], chunk);
    }
    return BuildNullMessage();
}

// The maker's table read (6E 51 84 E2 <table> <offset> chk), answered like the MCCS
// capabilities reply but with opcode E4 and at most 31 data bytes, so that a reply fits 37
// bytes; past the end of the table the null message. Table F3 is the capabilities string,
// table C9 the firmware version (major, minor, build).
ByteBuffer CVirtualDisplay::AnswerTableRead(uint8_t table_I, uint16_t offset_I) const {
    ByteBuffer table;
    if (table_I == ddcCC_CapabilitiesRequest) {
        table.assign(mCapabilities.begin(), mCapabilities.end());
    } else if (table_I == vcpC_DisplayFirmwareLevel) {
        table = {mModel.firmware.major, mModel.firmware.minor, mModel.firmware.build};
    }
    if (offset_I >= table.size()) {
        return BuildNullMessage();
    }
    const size_t count = std::min(kTableReadChunk, table.size() - offset_I);
    return BuildOffsetReply(
        ddcCC_TableReadReplyCode, offset_I,
        ByteBuffer(table.begin() + offset_I, table.begin() + static_cast<std::ptrdiff_t>(offset_I + count)));
}

// The display information record, a get reply of 0xF2 carrying: bytes 6-7 the EDID product
// code, 8-10 the firmware version, 11-16 reserved, 17-29 the monitor name and 30-42 the
// serial number (NUL-padded).
ByteBuffer CVirtualDisplay::AnswerDisplayInformation() const {
    ByteBuffer reply{Ddc::kDisplayAddress, 0x00, ddcCC_VCPReplyCode, 0x00, vcpC_DisplayInfo, 0x00};
    reply.push_back(static_cast<uint8_t>(mModel.edidProductCode >> 8));
    reply.push_back(static_cast<uint8_t>(mModel.edidProductCode & 0xFF));
    reply.push_back(mModel.firmware.major);
    reply.push_back(mModel.firmware.minor);
    reply.push_back(mModel.firmware.build);
    reply.resize(17, 0x00);
    for (const std::string* text : {&mModel.monitorName, &mModel.serialText}) {
        std::string field = text->substr(0, kDisplayInfoTextSize);
        field.resize(kDisplayInfoTextSize, '\0');
        reply.insert(reply.end(), field.begin(), field.end());
    }
    reply[1] = static_cast<uint8_t>(Ddc::kLengthFlag | (reply.size() - 2));
    return SealReply(reply);
}

void CVirtualDisplay::RestoreDefaults(bool colourOnly_I, bool store_I) {
    for (auto& entry : mControls) {
        SControlState& state = entry.second;
        if (state.control.access == EControlAccess::ReadOnly || (colourOnly_I && !state.control.colour)) {
            continue;
        }
        state.value = state.control.factoryValue;
        if (store_I) {
            state.saved = state.value;
        }
    }
}

void CVirtualDisplay::BeBusyFor(std::chrono::milliseconds duration_I) {
    mBusyUntil = Clock::Get().Now() + duration_I;
}

ByteBuffer CVirtualDisplay::ApplyFault(EFault fault_I, ByteBuffer reply_I) {
    switch (fault_I) {
        case EFault::NullMessage: return BuildNullMessage();
        case EFault::CorruptChecksum:
            if (!reply_I.empty()) {
                reply_I.back() ^= 0x5A;
            }
            return reply_I;
        case EFault::WrongEchoedCode:
            if (IsGetReply(reply_I)) {
                reply_I[4] ^= 0x01;
                reply_I.pop_back();
                reply_I = SealReply(reply_I);
            }
            return reply_I;
        case EFault::ErrorResultCode:
            if (IsGetReply(reply_I)) {
                reply_I[3] = kResultUnsupported;
                reply_I.pop_back();
                reply_I = SealReply(reply_I);
            }
            return reply_I;
        case EFault::TruncatedReply: reply_I.resize(reply_I.size() / 2); return reply_I;
        default: return reply_I;
    }
}

bool CVirtualDisplay::Supports(uint8_t code_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mControls.count(code_I) != 0;
}

uint16_t CVirtualDisplay::Value(uint8_t code_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mControls.find(code_I);
    return it == mControls.end() ? 0 : it->second.value;
}

uint16_t CVirtualDisplay::SavedValue(uint8_t code_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mControls.find(code_I);
    return it == mControls.end() ? 0 : it->second.saved;
}

void CVirtualDisplay::SetValueFromMenu(uint8_t code_I, uint16_t value_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mControls.find(code_I);
    if (it != mControls.end()) {
        it->second.value = value_I;
    }
}

void CVirtualDisplay::PowerCycle() {
    std::lock_guard<std::mutex> lock(mMutex);
    for (auto& entry : mControls) {
        if (mModel.forgetsSettingsWhenOff) {
            entry.second.saved = entry.second.control.factoryValue;
        }
        entry.second.value = entry.second.saved;
    }
    mFactoryMode = false;
    mBusyUntil = std::chrono::microseconds{0};
}

void CVirtualDisplay::AnswerNothingFor(std::chrono::milliseconds duration_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    BeBusyFor(duration_I);
}

std::map<uint8_t, uint16_t> CVirtualDisplay::SavedValues() const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::map<uint8_t, uint16_t> saved;
    for (const auto& entry : mControls) {
        saved[entry.first] = entry.second.saved;
    }
    return saved;
}

void CVirtualDisplay::RestoreSavedValues(const std::map<uint8_t, uint16_t>& saved_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    for (const auto& [code, value] : saved_I) {
        auto it = mControls.find(code);
        if (it != mControls.end()) {
            it->second.saved = value;
            it->second.value = value;
        }
    }
}

bool CVirtualDisplay::InFactoryMode() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mFactoryMode;
}

std::vector<STransaction> CVirtualDisplay::Transactions() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mTransactions;
}

void CVirtualDisplay::ClearTransactions() {
    std::lock_guard<std::mutex> lock(mMutex);
    mTransactions.clear();
}

size_t CVirtualDisplay::CountRequests(uint8_t opcode_I, int vcpCode_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    size_t count = 0;
    for (const STransaction& transaction : mTransactions) {
        const ByteBuffer& request = transaction.request;
        if (request.size() > 4 && request[3] == opcode_I &&
            (vcpCode_I == kAnyCode || request[4] == vcpCode_I)) {
            ++count;
        }
    }
    return count;
}
