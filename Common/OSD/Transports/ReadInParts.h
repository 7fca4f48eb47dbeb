#pragma once
// The one multi-part read of the transports: capabilities and vendor tables come in fragments
// asked for by offset. The transport says how a fragment is asked for and how its reply is
// checked and cut; the loop here advances the offset, asks again for a fragment that failed
// its checks, stops at the end, at the size limit or after too many fragments, and gives up
// on a fragment that keeps failing.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>

#include "ByteBuffer.h"

namespace Ddc {
// MCCS: at most 32 data bytes in one capabilities fragment.
constexpr size_t kMaxFragmentData = 32;
}  // namespace Ddc

// The most a multi-part read collects (capabilities strings and tables alike).
constexpr size_t kMaxReadInPartsSize = 0x8000;

// One fragment as the transport read it.
struct SPart {
    enum class EKind {
        Data,  // data to keep; the offset moves on by `advance`
        End,   // the end of the text or table: the read is complete
        Bad,   // the reply failed its checks: ask again, or give up
    };
    EKind kind = EKind::Bad;
    ByteBuffer data;
    size_t advance = 0;  // usually data.size(); some transports count bytes they do not keep

    static SPart Taken(ByteBuffer data_I) {
        const size_t size = data_I.size();
        return {EKind::Data, std::move(data_I), size};
    }
    static SPart End() { return {EKind::End, {}, 0}; }
    static SPart Bad() { return {EKind::Bad, {}, 0}; }
};

struct SReadInParts {
    // Asks for the fragment at the offset and checks and cuts its reply.
    std::function<SPart(uint16_t offset)> readPart;
    int attemptsPerPart = 1;
    size_t maxParts = std::numeric_limits<size_t>::max();
    // Told of each bad fragment (attempt counts from 1) and of giving up; may be empty.
    std::function<void(uint16_t offset, int attempt)> onBadPart;
    std::function<void(uint16_t offset)> onGiveUp;
};

struct SPartsRead {
    ByteBuffer data;
    bool gaveUp = false;  // a fragment failed every attempt: data holds what came before it
};

SPartsRead ReadInParts(const SReadInParts& read_I);
