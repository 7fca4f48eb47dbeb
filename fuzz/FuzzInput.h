#pragma once
// The input of the transport fuzzers: a sequence of records, each a two-byte big-endian length
// (at most 1024) and that many bytes, which the fake device hands out one by one as its
// answers. When the input runs out, every further answer is empty. The seed generator writes
// the same format from the virtual display's own answers.

#include <cstddef>
#include <cstdint>

#include "ByteBuffer.h"
#include "VirtualClock.h"

class CFuzzInput {
public:
    static constexpr size_t kMaxRecord = 1024;

    CFuzzInput(const uint8_t* data_I, size_t size_I) : mData(data_I), mSize(size_I) {}

    // The next answer (empty once the input is used up).
    ByteBuffer Next() {
        if (mPosition + 2 > mSize) {
            mPosition = mSize;
            return {};
        }
        size_t length = (static_cast<size_t>(mData[mPosition]) << 8) | mData[mPosition + 1];
        mPosition += 2;
        if (length > kMaxRecord) {
            length = kMaxRecord;
        }
        if (length > mSize - mPosition) {
            length = mSize - mPosition;
        }
        ByteBuffer record(mData + mPosition, mData + mPosition + length);
        mPosition += length;
        return record;
    }
    uint8_t Byte() { return mPosition < mSize ? mData[mPosition++] : 0; }
    bool Empty() const { return mPosition >= mSize; }

private:
    const uint8_t* mData;
    size_t mSize;
    size_t mPosition = 0;
};

// Every pause of the protocol goes to a virtual clock, so a run never sleeps; its record of
// pauses is emptied on every input.
inline void UseVirtualClock() {
    static CVirtualClock clock;
    static CScopedClock scoped(clock);
    clock.ClearPauses();
}

// Appends one record in the input format (for the seed generator).
inline void AppendRecord(ByteBuffer& input_IO, const ByteBuffer& record_I) {
    const size_t length = record_I.size() < CFuzzInput::kMaxRecord ? record_I.size() : CFuzzInput::kMaxRecord;
    input_IO.push_back(static_cast<uint8_t>(length >> 8));
    input_IO.push_back(static_cast<uint8_t>(length & 0xFF));
    input_IO.insert(input_IO.end(), record_I.begin(), record_I.begin() + static_cast<std::ptrdiff_t>(length));
}
