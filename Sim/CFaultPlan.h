#pragma once
// Faults the virtual display injects into its answers, as real displays and cables produce
// them: for the next N matching requests ("failing N times before succeeding"), or at a rate
// drawn reproducibly from a seed.

#include <cstdint>
#include <deque>
#include <mutex>
#include <random>
#include <string>
#include <vector>

enum class EFault {
    None,
    NoReply,          // the request is lost: nothing is done, nothing is answered
    NullMessage,      // the display answers 6E 80 BE instead of its reply
    CorruptChecksum,  // the reply's checksum byte is wrong
    WrongEchoedCode,  // a get reply names another VCP code
    ErrorResultCode,  // a get reply carries a non-zero result code
    TruncatedReply,   // only the first half of the reply arrives
};

const char* FaultName(EFault fault_I);
// "no-reply", "null", "checksum", "wrong-code", "result-code", "truncated"; None when unknown.
EFault ParseFault(const std::string& name_I);

class CFaultPlan {
public:
    static constexpr int kAny = -1;

    // The next `times_I` requests with this opcode and VCP code (kAny for every one) fail.
    void FailNext(EFault fault_I, unsigned times_I = 1, int opcode_I = kAny, int vcpCode_I = kAny);
    // Every request fails with probability rate_I, with a fault drawn from faults_I.
    void SetRate(double rate_I, uint32_t seed_I, std::vector<EFault> faults_I = AllFaults());
    void Clear();

    // Decides the fate of one request (consumes a planned fault when one matches).
    EFault Next(uint8_t opcode_I, int vcpCode_I);

    static std::vector<EFault> AllFaults();

private:
    struct SRule {
        EFault fault;
        unsigned remaining;
        int opcode;
        int vcpCode;
    };

    std::mutex mMutex;
    std::deque<SRule> mRules;
    double mRate = 0.0;
    std::mt19937 mRandom{0};
    std::vector<EFault> mRateFaults;
};
