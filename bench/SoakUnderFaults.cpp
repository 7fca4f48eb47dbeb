// Soak under faults: random settings operations through the settings delegate of every family
// preset, over a virtual display that drops, garbles, cuts short or refuses a share of its
// answers and now and then loses power. Now and then the desk moves in the middle of an
// operation: the display is unplugged, the computer sleeps, or the display is switched off and
// on (and answers nothing while it starts); the program then finds it again as a new display
// object, as its search after the change does. After every operation it checks:
//   - the operation ended, within the time its own transactions can take (virtual clock) and
//     within a few real seconds (a watchdog);
//   - a setter that reported success left the setting at the value asked for, and a change
//     reported as done reached the display (never while it was gone);
//   - after a change on the desk the display is found again and believed as it is;
//   - what the delegate believes each value to be is what the display holds, except for
//     values a failed operation touched or that a power cycle may have changed, until the
//     delegate reads them again;
//   - the display's saved values changed only on Save or a reset (or as its firmware forgets
//     them when switched off);
//   - memory in use does not grow.
// Prints operations, faults, failures reported and invariant violations; exits 1 on any
// violation.
//
//   vlr_soak [--operations N] [--rate R] [--seed S] [--preset KEY]

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "CVirtualDisplay.h"
#include "CVirtualDisplayConnector.h"
#include "DdcPackets.h"
#include "SoakWatchdog.h"
#include "UiDisplayDelegate.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

using namespace std::chrono_literals;

// The longest one transaction can take: the longest reply wait, the pause after every set,
// and the longest pause after a set (a factory reset's 5 s), plus a restored preset's settle.
constexpr std::chrono::microseconds kMaxPerTransaction = 250ms + 50ms + 5000ms + 1000ms;
// Pauses an operation can make besides its transactions: the restart after a factory reset,
// the pause after a save, the retry pause of a failed write.
constexpr std::chrono::microseconds kMaxOutsideTransactions = 10000ms + 200ms + 60ms;
constexpr auto kRealTimeLimit = std::chrono::seconds(10);

enum class EOperation { Setter, Save, Revert, ResetColor, FactoryReset, CustomColor, PowerCycle, Refresh };

const char* OperationName(EOperation operation_I) {
    switch (operation_I) {
        case EOperation::Setter: return "setter";
        case EOperation::Save: return "save";
        case EOperation::Revert: return "revert";
        case EOperation::ResetColor: return "reset colour";
        case EOperation::FactoryReset: return "factory reset";
        case EOperation::CustomColor: return "custom colour";
        case EOperation::PowerCycle: return "power cycle";
        case EOperation::Refresh: return "refresh";
    }
    return "?";
}

struct STotals {
    unsigned long operations = 0;
    unsigned long faults = 0;
    unsigned long failures = 0;
    unsigned long deskEvents = 0;
    unsigned long violations = 0;
};

enum class EDeskEvent { None, Unplug, Sleep, PowerCycle };

const char* DeskEventName(EDeskEvent event_I) {
    switch (event_I) {
        case EDeskEvent::Unplug: return "unplug";
        case EDeskEvent::Sleep: return "sleep";
        case EDeskEvent::PowerCycle: return "power cycle";
        case EDeskEvent::None: break;
    }
    return "none";
}

// How long a display switched on again answers nothing, and how long the program waits before
// it looks again for a display that did not answer.
constexpr std::chrono::milliseconds kStartingUp{2500};
constexpr std::chrono::milliseconds kLookAgainPause{3000};
constexpr int kLookAgainTimes = 3;

// The display's connector, with a change on the desk that happens just before a given request:
// unplugged, its handle dies (closed, nothing answers); asleep, the line stays open and the
// display answers nothing; switched off and on, the display drops what it did not keep and the
// handle dies.
class CDeskConnector : public CVirtualDisplayConnector {
public:
    using CVirtualDisplayConnector::CVirtualDisplayConnector;

    void Schedule(EDeskEvent event_I, unsigned beforeRequest_I) {
        mScheduled = event_I;
        mAt = beforeRequest_I;
        mRequests = 0;
    }
    // The event that happened during the operation (None when it made too few requests).
    EDeskEvent Happened() const { return mHappened; }
    const std::map<uint8_t, uint16_t>& SavedAtEvent() const { return mSavedAtEvent; }

    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override {
        if (mScheduled != EDeskEvent::None && mRequests++ == mAt) {
            mHappened = mScheduled;
            mScheduled = EDeskEvent::None;
            switch (mHappened) {
                case EDeskEvent::Unplug: Unplug(); break;
                case EDeskEvent::Sleep: Display()->AnswerNothingFor(std::chrono::hours(1)); break;
                case EDeskEvent::PowerCycle:
                    Display()->PowerCycle();
                    Display()->AnswerNothingFor(kStartingUp);
                    Unplug();
                    break;
                case EDeskEvent::None: break;
            }
            mSavedAtEvent = Display()->SavedValues();
        }
        return CVirtualDisplayConnector::SendRequest(toSend_I, delay_I, expectedSize_I, depth_I);
    }

private:
    EDeskEvent mScheduled = EDeskEvent::None;
    EDeskEvent mHappened = EDeskEvent::None;
    unsigned mAt = 0;
    unsigned mRequests = 0;
    std::map<uint8_t, uint16_t> mSavedAtEvent;
};

class CSoak {
public:
    CSoak(const SVirtualDisplayModel& model_I, CVirtualClock& clock_I, uint32_t seed_I, double rate_I)
        : mModel(model_I), mClock(clock_I), mRandom(seed_I), mRate(rate_I), mSeed(seed_I) {
        mDisplay = std::make_shared<CVirtualDisplay>(model_I);
        Connect();
    }

    bool Start() {
        if (!mDelegate->Initialize()) {
            std::printf("%s: does not initialise\n", mModel.key.c_str());
            return false;
        }
        Refresh();
        mDisplay->ClearTransactions();
        // Faults start once the display is known, as on a machine where it was found.
        mDisplay->Faults().SetRate(mRate, mSeed);
        return true;
    }

    void Run(unsigned long operations_I, std::atomic<unsigned long>& progress_IO, STotals& totals_IO) {
        size_t memoryAtTenth = 0;
        for (unsigned long i = 0; i < operations_I; ++i) {
            RunOne(totals_IO);
            ++progress_IO;
            if (i == operations_I / 10) {
                memoryAtTenth = AllocatedBytes();
            }
        }
        const size_t memoryAtEnd = AllocatedBytes();
        // Allow for the allocator's own slack; a leak per operation would be far more.
        if (operations_I >= 100 && memoryAtEnd > memoryAtTenth + 256 * 1024) {
            Violation(totals_IO, "memory grew from %zu to %zu bytes", memoryAtTenth, memoryAtEnd);
        }
    }

private:
    // A new connector and display object, as a search makes them.
    void Connect() {
        mConnector = std::make_shared<CDeskConnector>(mDisplay);
        mConnector->Open(0);
        mDelegate = std::make_unique<UiDisplayDelegate>(mConnector, mModel.edidProductCode);
    }

    // After the desk moved: the display wakes (or is plugged back in), the program searches
    // and, while the display does not answer yet, looks again a few times.
    void FindAgain(EDeskEvent event_I, STotals& totals_IO) {
        if (event_I == EDeskEvent::Sleep) {
            mDisplay->AnswerNothingFor(std::chrono::milliseconds(0));  // awake again
        }
        for (int attempt = 0; attempt <= kLookAgainTimes; ++attempt) {
            Connect();
            if (mDelegate->Initialize()) {
                Refresh();
                return;
            }
            mClock.Pause(kLookAgainPause);
        }
        Violation(totals_IO, "the display was not found again after %s", DeskEventName(event_I));
        Connect();
    }

    template <typename... Args>
    void Violation(STotals& totals_IO, const char* format_I, Args... args_I) {
        ++totals_IO.violations;
        std::printf("VIOLATION %s op %lu (%s): ", mModel.key.c_str(), totals_IO.operations, mLastOperation);
        std::printf(format_I, args_I...);
        std::printf("\n");
    }

    EOperation Pick() {
        // Out of a thousand: the operation below each bound, the rest factory resets.
        static constexpr std::pair<int, EOperation> kBounds[] = {
            {700, EOperation::Setter},      {780, EOperation::Save},    {860, EOperation::Revert},
            {900, EOperation::CustomColor}, {940, EOperation::Refresh}, {960, EOperation::PowerCycle},
            {985, EOperation::ResetColor},
        };
        const int roll = static_cast<int>(mRandom() % 1000);
        for (const auto& [bound, operation] : kBounds) {
            if (roll < bound) {
                return operation;
            }
        }
        return EOperation::FactoryReset;
    }

    void Refresh() {
        mDelegate->ResetData(true);
        for (const auto& entry : mDelegate->Options()) {
            mDelegate->GetVCPValue(entry.first, false);
        }
        // Values that could not be read stay unknown; known ones are fresh.
        mSuspect.clear();
    }

    // A random user-level change; returns the result and what it asked for.
    // sentCode_O: the code a success must have sent a set of (0 when no change was asked).
    bool RunSetter(ESetting& setting_O, int32_t& value_O, bool& checkable_O, uint8_t& sentCode_O) {
        sentCode_O = 0;
        setting_O = static_cast<ESetting>(mRandom() % kSettingCount);
        const SSettingState state = mDelegate->GetSetting(setting_O);
        checkable_O = false;
        if (!state.supported) {
            value_O = 0;
            return mDelegate->SetSetting(setting_O, value_O);
        }
        if (!state.entries.empty()) {
            value_O = state.entries[mRandom() % state.entries.size()].value;
        } else if (state.range.maximum > state.range.minimum) {
            value_O = state.range.minimum +
                      static_cast<int32_t>(
                          mRandom() % static_cast<uint32_t>(state.range.maximum - state.range.minimum + 1));
        } else {
            value_O = static_cast<int32_t>(mRandom() % 2);
        }
        if (mRandom() % 25 == 0) {
            value_O = 0x7F;  // not a value the setting offers
        }
        const uint8_t code = mDelegate->Traits().SettingCode(setting_O);
        VCPOptionPtr option = code != 0 ? mDelegate->Option(code) : nullptr;
        // A set of a value the setting offers, on a setting that was read: when nothing went
        // wrong on the wire, success must mean the display has it. (A set the display object
        // skips, for a value not read or refused, counts as done by design.)
        const bool offered =
            state.entries.empty()
                ? state.range.maximum > state.range.minimum && value_O >= state.range.minimum &&
                      value_O <= state.range.maximum
                : std::any_of(state.entries.begin(), state.entries.end(),
                              [&](const SEntry& entry_I) { return entry_I.value == value_O; });
        // (The colour mode is valid as the delegate's own when the display's preset was not read.)
        checkable_O = state.writable && state.valid && offered && option && option->HasOriginal() &&
                      !option->Info().WriteOnly();
        if (checkable_O && value_O != state.value && setting_O != ESetting::FanSpeed) {
            sentCode_O = code;
        }
        const bool result = mDelegate->SetSetting(setting_O, value_O);
        if (setting_O == ESetting::FanSpeed) {
            value_O = value_O == eFanSpeed_Auto ? eFanSpeed_Auto : eFanSpeed_LowSpeed;  // any other is low
        }
        return result;
    }

    void RunOne(STotals& totals_IO) {
        ++totals_IO.operations;
        const EOperation operation = Pick();
        mLastOperation = OperationName(operation);
        auto savedBefore = mDisplay->SavedValues();
        const auto started = Clock::Get().Now();
        mDisplay->ClearTransactions();
        mClock.ClearPauses();  // the clock's record of pauses is not the program's memory
        if (mRandom() % 100 < 3) {
            const auto event = static_cast<EDeskEvent>(1 + mRandom() % 3);
            mConnector->Schedule(event, static_cast<unsigned>(mRandom() % 4));
        }

        bool succeeded = true;
        ESetting setting = ESetting::Brightness;
        int32_t value = 0;
        bool checkable = false;
        uint8_t sentCode = 0;
        switch (operation) {
            case EOperation::Setter: succeeded = RunSetter(setting, value, checkable, sentCode); break;
            case EOperation::Save: succeeded = mDelegate->Save(); break;
            case EOperation::Revert: succeeded = mDelegate->Revert(); break;
            case EOperation::ResetColor: succeeded = mDelegate->ResetColor(); break;
            case EOperation::FactoryReset: succeeded = mDelegate->FactoryReset(); break;
            case EOperation::CustomColor: {
                const auto level = [this] { return static_cast<uint8_t>(mRandom() % 101); };
                succeeded = mDelegate->SetCustomRGBColorMod(eColorModGain,
                                                            CColor::FromRGB(level(), level(), level()));
                break;
            }
            case EOperation::PowerCycle:
                mDisplay->PowerCycle();
                savedBefore = mDisplay->SavedValues();  // the first models forget even these
                break;
            case EOperation::Refresh: Refresh(); break;
        }

        const EDeskEvent deskEvent = mConnector->Happened();
        mConnector->Schedule(EDeskEvent::None, 0);
        if (deskEvent != EDeskEvent::None) {
            ++totals_IO.deskEvents;
            mLastOperation = DeskEventName(deskEvent);  // a violation names what the desk did
            if (deskEvent == EDeskEvent::PowerCycle) {
                savedBefore = mConnector->SavedAtEvent();  // what the firmware kept is the start
            }
        }
        const std::vector<STransaction> transactions = mDisplay->Transactions();
        std::set<uint8_t> touched;
        // Codes whose last exchange in this operation was faulted: the delegate could not
        // confirm them (a display-scaling set counts as answered even when it was lost).
        std::set<uint8_t> unconfirmed;
        for (const STransaction& transaction : transactions) {
            totals_IO.faults += transaction.fault != EFault::None ? 1 : 0;
            const SHostRequest request = DecodeHostRequest(transaction.request);
            if (request.command == ddcCC_GetVCPFeatureRequest ||
                request.command == ddcCC_SetVCPFeatureRequest) {
                touched.insert(request.vcpCode);
                if (transaction.fault != EFault::None) {
                    unconfirmed.insert(request.vcpCode);
                } else {
                    unconfirmed.erase(request.vcpCode);
                }
            }
        }

        // Bounded by what its own transactions can take.
        const auto elapsed = Clock::Get().Now() - started;
        const auto bound =
            kMaxPerTransaction * static_cast<long>(transactions.size()) + kMaxOutsideTransactions;
        if (elapsed > bound) {
            Violation(totals_IO, "took %lld ms for %zu transactions",
                      static_cast<long long>(elapsed.count() / 1000), transactions.size());
        }

        const bool resetsEverything =
            operation == EOperation::FactoryReset || operation == EOperation::ResetColor;
        if (!succeeded) {
            ++totals_IO.failures;
            // The failure said so: these values may differ until they are read again (all of
            // them when a reset failed: the display may have carried it out).
            mSuspect.insert(touched.begin(), touched.end());
            if (resetsEverything) {
                for (const auto& entry : mDelegate->Options()) {
                    mSuspect.insert(entry.first);
                }
            }
        } else if (operation == EOperation::PowerCycle) {
            for (const auto& entry : mDelegate->Options()) {
                mSuspect.insert(entry.first);
            }
        } else if (operation != EOperation::Refresh && operation != EOperation::Save) {
            for (uint8_t code : touched) {
                if (unconfirmed.count(code) != 0) {
                    mSuspect.insert(code);
                } else {
                    mSuspect.erase(code);
                }
            }
        }

        // A reported success of a change, faults or not, sent the change.
        if (succeeded && sentCode != 0 &&
            std::none_of(transactions.begin(), transactions.end(), [&](const STransaction& t_I) {
                const SHostRequest request = DecodeHostRequest(t_I.request);
                return request.command == ddcCC_SetVCPFeatureRequest && request.vcpCode == sentCode;
            })) {
            Violation(totals_IO, "setting %d reported success for %d but no set of 0x%02X was sent",
                      static_cast<int>(setting), value, sentCode);
        }

        // A reported success, with nothing injected, left the setting at the value asked for.
        const bool faulted = std::any_of(transactions.begin(), transactions.end(),
                                         [](const STransaction& t_I) { return t_I.fault != EFault::None; });
        if (succeeded && checkable && !faulted) {
            const SSettingState after = mDelegate->GetSetting(setting);
            if (after.valid && after.value != value) {
                Violation(totals_IO, "setting %d reported success for %d but holds %d",
                          static_cast<int>(setting), value, after.value);
            }
        }

        // The desk moved: every value may differ until the display is found again and read.
        if (deskEvent != EDeskEvent::None) {
            FindAgain(deskEvent, totals_IO);
        }

        // What the delegate believes is what the display holds.
        for (const auto& [code, option] : mDelegate->Options()) {
            if (!option || !option->HasOriginal() || !option->Info().Writable() ||
                !option->Info().Readable() || !mDisplay->Supports(code) || mSuspect.count(code) != 0) {
                continue;
            }
            const uint16_t believed = static_cast<uint16_t>(option->GetValue() & 0xFFFF);
            if (believed != mDisplay->Value(code)) {
                Violation(totals_IO, "0x%02X believed %u, display holds %u", code, believed,
                          mDisplay->Value(code));
                mSuspect.insert(code);  // one report per divergence
            }
        }

        // Saved values change only on Save or a reset.
        const bool storing = operation == EOperation::Save || operation == EOperation::FactoryReset;
        if (!storing && mDisplay->SavedValues() != savedBefore) {
            Violation(totals_IO, "saved values changed");
        }
    }

    const SVirtualDisplayModel& mModel;
    CVirtualClock& mClock;
    std::mt19937 mRandom;
    double mRate;
    uint32_t mSeed;
    std::shared_ptr<CVirtualDisplay> mDisplay;
    std::shared_ptr<CDeskConnector> mConnector;
    std::unique_ptr<UiDisplayDelegate> mDelegate;
    std::set<uint8_t> mSuspect;
    const char* mLastOperation = "";
};

}  // namespace

int main(int argc, char** argv) {
    unsigned long operations = 10000;
    double rate = 0.10;
    uint32_t seed = 1;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--operations") == 0 && hasValue) {
            operations = std::strtoul(argv[++i], nullptr, 10);
        } else if (std::strcmp(argv[i], "--rate") == 0 && hasValue) {
            rate = std::strtod(argv[++i], nullptr);
        } else if (std::strcmp(argv[i], "--seed") == 0 && hasValue) {
            seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 10));
        } else if (std::strcmp(argv[i], "--preset") == 0 && hasValue) {
            only = argv[++i];
        } else {
            std::fprintf(stderr, "usage: vlr_soak [--operations N] [--rate R] [--seed S] [--preset KEY]\n");
            return 2;
        }
    }

    CVirtualClock clock;
    CScopedClock scoped(clock);
    std::atomic<unsigned long> progress{0};
    CSoakWatchdog watchdog(progress, kRealTimeLimit, "an operation");

    STotals all;
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        if (!only.empty() && model.key != only) {
            continue;
        }
        STotals totals;
        CSoak soak(model, clock, seed, rate);
        if (!soak.Start()) {
            ++totals.violations;
        } else {
            soak.Run(operations, progress, totals);
        }
        std::printf(
            "%-16s operations %lu, faults injected %lu, failures reported %lu, desk events %lu, "
            "violations %lu\n",
            model.key.c_str(), totals.operations, totals.faults, totals.failures, totals.deskEvents,
            totals.violations);
        all.operations += totals.operations;
        all.faults += totals.faults;
        all.failures += totals.failures;
        all.deskEvents += totals.deskEvents;
        all.violations += totals.violations;
    }
    std::printf(
        "all              operations %lu, faults injected %lu, failures reported %lu, desk events %lu, "
        "violations %lu\n",
        all.operations, all.faults, all.failures, all.deskEvents, all.violations);
    return all.violations == 0 ? 0 : 1;
}
