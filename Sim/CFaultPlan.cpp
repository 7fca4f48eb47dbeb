#include "CFaultPlan.h"

namespace {

struct SFaultName {
    EFault fault;
    const char* name;
};

constexpr SFaultName kFaultNames[] = {
    {EFault::None, "none"},
    {EFault::NoReply, "no-reply"},
    {EFault::NullMessage, "null"},
    {EFault::CorruptChecksum, "checksum"},
    {EFault::WrongEchoedCode, "wrong-code"},
    {EFault::ErrorResultCode, "result-code"},
    {EFault::TruncatedReply, "truncated"},
};

}  // namespace

const char* FaultName(EFault fault_I) {
    for (const SFaultName& entry : kFaultNames) {
        if (entry.fault == fault_I) {
            return entry.name;
        }
    }
    return "none";
}

EFault ParseFault(const std::string& name_I) {
    for (const SFaultName& entry : kFaultNames) {
        if (name_I == entry.name) {
            return entry.fault;
        }
    }
    return EFault::None;
}

std::vector<EFault> CFaultPlan::AllFaults() {
    return {EFault::NoReply,         EFault::NullMessage,     EFault::CorruptChecksum,
            EFault::WrongEchoedCode, EFault::ErrorResultCode, EFault::TruncatedReply};
}

void CFaultPlan::FailNext(EFault fault_I, unsigned times_I, int opcode_I, int vcpCode_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (times_I > 0 && fault_I != EFault::None) {
        mRules.push_back({fault_I, times_I, opcode_I, vcpCode_I});
    }
}

void CFaultPlan::SetRate(double rate_I, uint32_t seed_I, std::vector<EFault> faults_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    mRate = rate_I;
    mRandom.seed(seed_I);
    mRateFaults = std::move(faults_I);
}

void CFaultPlan::Clear() {
    std::lock_guard<std::mutex> lock(mMutex);
    mRules.clear();
    mRate = 0.0;
    mRateFaults.clear();
}

EFault CFaultPlan::Next(uint8_t opcode_I, int vcpCode_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    for (auto it = mRules.begin(); it != mRules.end(); ++it) {
        const bool opcodeMatches = it->opcode == kAny || it->opcode == opcode_I;
        const bool codeMatches = it->vcpCode == kAny || it->vcpCode == vcpCode_I;
        if (opcodeMatches && codeMatches) {
            EFault fault = it->fault;
            if (--it->remaining == 0) {
                mRules.erase(it);
            }
            return fault;
        }
    }
    if (mRate > 0.0 && !mRateFaults.empty()) {
        std::uniform_real_distribution<double> chance(0.0, 1.0);
        if (chance(mRandom) < mRate) {
            return mRateFaults[mRandom() % mRateFaults.size()];
        }
    }
    return EFault::None;
}
