#pragma once
// A software model of a pen display's controller that answers raw DDC/CI request bytes as the
// display firmware does: get and set VCP, capabilities by offset, save current settings,
// factory and colour defaults, the maker's factory-mode, EDID-chunk, table-read and
// scaler-reset commands, the firmware level (0xC9) and the display information record (0xF2). It keeps
// current and saved values (saved ones survive a power cycle), needs time after slow
// commands as the firmware does, injects faults on demand and logs every transaction with
// the time on the process clock.

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "ByteBuffer.h"
#include "CFaultPlan.h"
#include "VirtualDisplayModel.h"

struct STransaction {
    std::chrono::microseconds time{0};
    ByteBuffer request;
    ByteBuffer reply;
    EFault fault = EFault::None;
};

class CVirtualDisplay {
public:
    explicit CVirtualDisplay(SVirtualDisplayModel model_I);

    // The display's answer to one request exactly as written on the wire; empty when it
    // answers nothing.
    ByteBuffer Handle(const ByteBuffer& request_I);

    const SVirtualDisplayModel& Model() const { return mModel; }
    const std::string& CapabilitiesString() const { return mCapabilities; }
    const ByteBuffer& Edid() const { return mEdid; }
    // Replaces the EDID the display reports (a captured one, of any length).
    void SetEdid(ByteBuffer edid_I) { mEdid = std::move(edid_I); }

    bool Supports(uint8_t code_I) const;
    // The current and the stored value of a control (0 for an unknown code).
    uint16_t Value(uint8_t code_I) const;
    uint16_t SavedValue(uint8_t code_I) const;
    // Changes a value as the display's own menu would (no check, no transaction).
    void SetValueFromMenu(uint8_t code_I, uint16_t value_I);
    // Off and on again: unsaved values are lost (and saved ones too on firmware that forgets
    // its settings when off), factory mode ends.
    void PowerCycle();
    // Answers nothing for this long from now, as firmware that is still starting.
    void AnswerNothingFor(std::chrono::milliseconds duration_I);
    // The stored value of every control, and putting them back (as after a power cycle): what
    // the demo keeps between runs. Unknown codes are ignored.
    std::map<uint8_t, uint16_t> SavedValues() const;
    void RestoreSavedValues(const std::map<uint8_t, uint16_t>& saved_I);
    bool InFactoryMode() const;

    CFaultPlan& Faults() { return mFaults; }

    std::vector<STransaction> Transactions() const;
    void ClearTransactions();
    // How many requests with this opcode (and VCP code, unless kAnyCode) arrived.
    size_t CountRequests(uint8_t opcode_I, int vcpCode_I = kAnyCode) const;
    static constexpr int kAnyCode = -1;

    // How long the firmware stays deaf after a slow command (it answers nothing meanwhile).
    static constexpr std::chrono::milliseconds kBusyAfterFactoryDefaults{4000};
    static constexpr std::chrono::milliseconds kBusyAfterDisplayPreset{1800};
    static constexpr std::chrono::milliseconds kBusyAfterUniformity{800};
    // Through the graphics driver the firmware is told to store with a set of this
    // (otherwise read-only) code, since the driver passes no save command on.
    static constexpr uint8_t kSaveThroughDriverCode = 0xB2;

private:
    struct SControlState {
        SVirtualControl control;
        uint16_t value = 0;
        uint16_t saved = 0;
    };

    ByteBuffer Answer(const ByteBuffer& request_I);
    ByteBuffer AnswerGet(uint8_t code_I) const;
    void ApplySet(uint8_t code_I, uint16_t value_I);
    void StoreCurrentValues();
    ByteBuffer AnswerCapabilities(uint16_t offset_I) const;
    ByteBuffer AnswerVendor(const ByteBuffer& request_I);
    ByteBuffer AnswerTableRead(uint8_t table_I, uint16_t offset_I) const;
    ByteBuffer AnswerDisplayInformation() const;
    void RestoreDefaults(bool colourOnly_I, bool store_I);
    void BeBusyFor(std::chrono::milliseconds duration_I);
    static ByteBuffer ApplyFault(EFault fault_I, ByteBuffer reply_I);

    SVirtualDisplayModel mModel;
    std::string mCapabilities;
    ByteBuffer mEdid;
    std::map<uint8_t, SControlState> mControls;
    bool mFactoryMode = false;
    std::chrono::microseconds mBusyUntil{0};
    CFaultPlan mFaults;
    mutable std::mutex mMutex;
    std::vector<STransaction> mTransactions;
};
