#pragma once
// An I2C bus with a virtual display on it: its DDC/CI controller at 0x37 and its EDID at 0x50.
// Reads deliver exactly the bytes asked for, as a bus does (past the reply: 0xFF). NACKs and
// short reads can be injected.

#include <memory>

#include "CVirtualDisplay.h"
#include "I2CMaster.h"

class CVirtualI2CBus : public II2CMaster {
public:
    bool HasDisplay() const { return mDisplay != nullptr; }
    explicit CVirtualI2CBus(std::shared_ptr<CVirtualDisplay> display_I);

    bool Write(uint8_t address7_I, const ByteBuffer& bytes_I) override;
    bool Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) override;

    // The next `times_I` writes or reads are not acknowledged.
    void NackNextWrites(unsigned times_I) { mNackWrites = times_I; }
    void NackNextReads(unsigned times_I) { mNackReads = times_I; }
    // The next read ends after this many bytes.
    void ShortenNextRead(size_t bytes_I) { mShortRead = bytes_I; }

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    ByteBuffer mReply;
    size_t mEdidOffset = 0;
    unsigned mNackWrites = 0;
    unsigned mNackReads = 0;
    size_t mShortRead = SIZE_MAX;
};
