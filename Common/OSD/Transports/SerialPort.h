#pragma once
// The serial port as the serial connector needs it: the few operating-system calls behind one
// small interface, so the connector's logic is the same over a Windows COM port, a POSIX
// terminal or a port simulated in-process.

#include <cstdint>
#include <string>

#include "ByteBuffer.h"

class ISerialPort {
public:
    virtual ~ISerialPort() = default;
    // Opens the port by name and sets 9600 baud 8N1, reads that return at once with what has
    // arrived (waiting at most 10 ms for a first byte), the event mask and a purge. False,
    // with the port closed again, when any step fails.
    virtual bool Open(const std::string& name_I) = 0;
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Clears the port's error state.
    virtual void ClearErrors() = 0;
    // Abandons and clears both directions.
    virtual bool Purge() = 0;
    // One write of all the bytes; written_O tells how many went out.
    virtual bool Write(const ByteBuffer& bytes_I, size_t& written_O) = 0;
    // One read of at most maxBytes_I; data_O holds what arrived (possibly nothing).
    virtual bool Read(size_t maxBytes_I, ByteBuffer& data_O) = 0;
    // The system error code of the last failed call.
    virtual uint32_t LastError() const = 0;
    // The last failure says the device itself went away (its USB bridge unplugged or switched
    // off): the open port is dead for good.
    virtual bool DeviceGone() const = 0;
};
