#include "CVirtualMpsseEngine.h"

#include <algorithm>

#include "MpsseOpcodes.h"

namespace {

using namespace Mpsse;

// One block read from the bus serves every byte clocked in until the stop.
constexpr size_t kReadBlock = 512;

// The bytes a command takes after its opcode; -1 for a length-prefixed byte transfer.
int ArgumentsOf(uint8_t opcode_I) {
    switch (opcode_I) {
        case kSetLowBits: return 2;
        case kBytesOutFallingMsb: return -1;
        case kBitsOutFallingMsb: return 2;
        case kBytesInRisingMsb: return 2;
        case kBitsInRisingMsb: return 1;
        case kSetClockDivisor: return 2;
        case kDriveOnlyZero: return 2;
        default: return 0;  // 0x87, 0x8A, 0x8C, 0x85, 0x96, 0x97 and unknown opcodes
    }
}

}  // namespace

CVirtualMpsseEngine::CVirtualMpsseEngine(std::shared_ptr<CVirtualDisplay> display_I)
    : mBus(std::move(display_I)) {}

void CVirtualMpsseEngine::Reset() {
    mOut.clear();
    mPending.clear();
    mScl = mSda = true;
    mInTransfer = mAddressed = mReading = false;
    mOpenDrainPins = 0;
    mAdaptiveClocking = false;
}

ByteBuffer CVirtualMpsseEngine::Read(size_t count_I) {
    const size_t count = std::min(count_I, mOut.size());
    ByteBuffer bytes(mOut.begin(), mOut.begin() + static_cast<std::ptrdiff_t>(count));
    mOut.erase(mOut.begin(), mOut.begin() + static_cast<std::ptrdiff_t>(count));
    return bytes;
}

void CVirtualMpsseEngine::Write(const ByteBuffer& commands_I) {
    mPending.insert(mPending.end(), commands_I.begin(), commands_I.end());
    size_t at = 0;
    while (at < mPending.size()) {
        const uint8_t opcode = mPending[at];
        const int arguments = ArgumentsOf(opcode);
        size_t size = 1 + static_cast<size_t>(std::max(arguments, 0));
        if (arguments < 0) {
            if (at + 3 > mPending.size()) {
                break;
            }
            size = 3 + static_cast<size_t>(mPending[at + 1] | (mPending[at + 2] << 8)) + 1;
        }
        if (at + size > mPending.size()) {
            break;
        }
        switch (opcode) {
            case kBadCommand: mOut.insert(mOut.end(), {kBadCommandEcho, kBadCommand}); break;
            case kSetLowBits: SetPins(mPending[at + 1]); break;
            case kDriveOnlyZero: mOpenDrainPins = mPending[at + 1]; break;
            case kEnableAdaptiveClocking: mAdaptiveClocking = true; break;
            case kDisableAdaptiveClocking: mAdaptiveClocking = false; break;
            case kBytesOutFallingMsb:
                for (size_t i = at + 3; i < at + size; ++i) {
                    ClockByteOut(mPending[i]);
                }
                break;
            case kBitsInRisingMsb: AcknowledgeBit(); break;
            case kBytesInRisingMsb:
                for (size_t i = 0; i <= static_cast<size_t>(mPending[at + 1] | (mPending[at + 2] << 8));
                     ++i) {
                    ClockByteIn();
                }
                break;
            default: break;  // clock set-up, the host's own ACK/NACK bits, send immediate
        }
        at += size;
    }
    mPending.erase(mPending.begin(), mPending.begin() + static_cast<std::ptrdiff_t>(at));
}

void CVirtualMpsseEngine::SetPins(uint8_t value_I) {
    const bool scl = (value_I & kSclPin) != 0;
    const bool sda = (value_I & kSdaPin) != 0;
    if (scl && mScl && mSda && !sda) {
        // SDA falls while SCL is high: start (a repeated start ends the previous transfer).
        Finish();
        mInTransfer = true;
        mBytesThisTransfer = 0;
        mAddressed = false;
        mAcknowledged = true;
        mWritten.clear();
        mReadData.clear();
        mReadIndex = 0;
    } else if (scl && mScl && !mSda && sda) {
        Finish();  // SDA rises while SCL is high: stop
    }
    mScl = scl;
    mSda = sda;
}

void CVirtualMpsseEngine::ClockByteOut(uint8_t byte_I) {
    if (!mInTransfer) {
        mAcknowledged = false;
        return;
    }
    const bool survives = ByteSurvivesStretching();
    ++mBytesThisTransfer;
    if (!survives) {
        mAcknowledged = false;
        return;
    }
    if (!mAddressed) {
        mAddressed = true;
        mAddress7 = static_cast<uint8_t>(byte_I >> 1);
        mReading = (byte_I & 0x01) != 0;
        // The controller answers at 0x37 (and the scaler at 0x77), the EDID at 0x50.
        mAcknowledged = mBus.HasDisplay() && (mAddress7 == 0x37 || mAddress7 == 0x50 || mAddress7 == 0x77);
        return;
    }
    mWritten.push_back(byte_I);
}

void CVirtualMpsseEngine::AcknowledgeBit() {
    mOut.push_back(mAcknowledged ? 0x00 : 0x01);
}

bool CVirtualMpsseEngine::ByteSurvivesStretching() const {
    if (!mDisplayStretchesClock) {
        return true;
    }
    if ((mOpenDrainPins & kSclPin) == 0) {
        return false;  // the bridge drives SCL high while the display holds it low
    }
    // The display stretches after each byte: the first one of a transfer comes before any.
    return mAdaptiveClocking || mBytesThisTransfer == 0;
}

void CVirtualMpsseEngine::ClockByteIn() {
    const bool survives = ByteSurvivesStretching();
    ++mBytesThisTransfer;
    if (mReadData.empty()) {
        if (!mInTransfer || !mReading || !mBus.Read(mAddress7, kReadBlock, mReadData)) {
            mReadData.assign(kReadBlock, 0xFF);  // nobody drives the line
        }
        mReadIndex = 0;
    }
    const uint8_t byte = mReadIndex < mReadData.size() ? mReadData[mReadIndex++] : 0xFF;
    // Bits clocked while the display held SCL low were never driven: they read as ones.
    mOut.push_back(survives ? byte : static_cast<uint8_t>(byte | 0xF0));
}

void CVirtualMpsseEngine::Finish() {
    if (mInTransfer && mAddressed && !mReading && mAcknowledged) {
        mBus.Write(mAddress7, mWritten);
    }
    mInTransfer = false;
    mWritten.clear();
}
