#include "CVirtualSerialPort.h"

CVirtualSerialPort::CVirtualSerialPort(std::shared_ptr<CVirtualDisplay> display_I)
    : mDisplay(std::move(display_I)) {}

bool CVirtualSerialPort::Open(const std::string& name_I) {
    mOpen = mDisplay != nullptr && !name_I.empty() && !mUnplugged;
    mDead = false;
    mLastError = mOpen ? 0 : 2;  // ERROR_FILE_NOT_FOUND
    return mOpen;
}

bool CVirtualSerialPort::Purge() {
    mPending.clear();
    return mOpen;
}

bool CVirtualSerialPort::Write(const ByteBuffer& bytes_I, size_t& written_O) {
    written_O = 0;
    if (mWriteFailures != 0) {
        --mWriteFailures;
        mLastError = mWriteError;
        return false;
    }
    if (!mOpen) {
        mLastError = 6;  // ERROR_INVALID_HANDLE
        return false;
    }
    if (mDead) {
        mLastError = kBadCommand;
        return false;
    }
    written_O = bytes_I.size();
    ByteBuffer reply = mDisplay->Handle(bytes_I);
    if (!reply.empty()) {
        reply.pop_back();  // serial firmware sends no checksum
    }
    mPending.insert(mPending.end(), reply.begin(), reply.end());
    return true;
}

bool CVirtualSerialPort::Read(size_t maxBytes_I, ByteBuffer& data_O) {
    ++mReads;
    data_O.clear();
    if (!mOpen) {
        mLastError = 6;
        return false;
    }
    if (mDead) {
        mLastError = kBadCommand;
        return false;
    }
    while (!mPending.empty() && data_O.size() < maxBytes_I) {
        data_O.push_back(mPending.front());
        mPending.pop_front();
    }
    return true;
}

void CVirtualSerialPort::SetUnplugged(bool unplugged_I) {
    mUnplugged = unplugged_I;
    if (unplugged_I && mOpen) {
        mDead = true;
        mPending.clear();
    }
}
