#pragma once
// A serial port whose every read delivers what a function gives: for the serial connector's
// tests and its fuzzer, where the line's bytes come from a script or the fuzzer's input. It is
// open until closed and takes every write whole; its reads can be made to fail as a port whose
// USB bridge was pulled out.

#include <functional>
#include <utility>

#include "SerialPort.h"

class CScriptedSerialPort : public ISerialPort {
public:
    // read_I(maxBytes) gives one read's bytes; more than maxBytes are cut to it.
    explicit CScriptedSerialPort(std::function<ByteBuffer(size_t)> read_I) : mRead(std::move(read_I)) {}

    bool Open(const std::string&) override { return mOpen = true; }
    void Close() override { mOpen = false; }
    bool IsOpen() const override { return mOpen; }
    void ClearErrors() override {}
    bool Purge() override { return true; }
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override {
        written_O = bytes_I.size();
        return true;
    }
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override {
        ++mReads;
        if (mGone) {
            data_O.clear();
            return false;
        }
        data_O = mRead(maxBytes_I);
        if (data_O.size() > maxBytes_I) {
            data_O.resize(maxBytes_I);
        }
        return true;
    }
    uint32_t LastError() const override { return mGone ? 22 : 0; }
    bool DeviceGone() const override { return mGone; }

    unsigned Reads() const { return mReads; }
    // From now on every read fails, and the port says its device is gone.
    void Unplug() { mGone = true; }

private:
    std::function<ByteBuffer(size_t)> mRead;
    unsigned mReads = 0;
    bool mOpen = true;
    bool mGone = false;
};
