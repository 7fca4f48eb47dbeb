#pragma once
// A serial port whose every read delivers what a function gives: for the serial connector's
// tests and its fuzzer, where the line's bytes come from a script or the fuzzer's input. It is
// always open and takes every write whole.

#include <functional>
#include <utility>

#include "SerialPort.h"

class CScriptedSerialPort : public ISerialPort {
public:
    // read_I(maxBytes) gives one read's bytes; more than maxBytes are cut to it.
    explicit CScriptedSerialPort(std::function<ByteBuffer(size_t)> read_I) : mRead(std::move(read_I)) {}

    bool Open(const std::string&) override { return true; }
    void Close() override {}
    bool IsOpen() const override { return true; }
    void ClearErrors() override {}
    bool Purge() override { return true; }
    bool Write(const ByteBuffer& bytes_I, size_t& written_O) override {
        written_O = bytes_I.size();
        return true;
    }
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override {
        ++mReads;
        data_O = mRead(maxBytes_I);
        if (data_O.size() > maxBytes_I) {
            data_O.resize(maxBytes_I);
        }
        return true;
    }
    uint32_t LastError() const override { return 0; }

    unsigned Reads() const { return mReads; }

private:
    std::function<ByteBuffer(size_t)> mRead;
    unsigned mReads = 0;
};
