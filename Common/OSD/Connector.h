#pragma once
// The control channel between one display object and one physical display. The display object
// frames DDC/CI requests; a connector carries them over its transport and returns the
// display's reply bytes. Shared here: cutting a raw capabilities reply down to the balanced
// string, the factory-reset and save-settings commands, and the monitor name and serial
// number taken from a cached EDID.
//
// No operation throws: failures are an empty buffer or string, an all-zero version record or
// false. Operations a transport does not support assert and answer with the empty result.

#include <cstdint>
#include <mutex>
#include <string>

#include "ByteBuffer.h"
#include "DebugLog.h"
#include "DisplayWaits.h"
#include "FirmwareVersion.h"

enum EConnectorType : unsigned {
    eConnectorSerial = 0,
    eConnectorFTDI = 1,
    eConnectorTI = 2,
    eConnectorDisplayPort = 3,
    eConnectorHID = 4,
};

// The route's name as the interface and the tool show it: "graphics driver", "HID", "serial",
// "FTDI", "TI"; "?" for anything else.
const char* ConnectorTypeName(unsigned type_I);

class Connector {
public:
    Connector() = default;
    virtual ~Connector();
    Connector(const Connector&) = delete;
    Connector& operator=(const Connector&) = delete;

    virtual bool IsUsable() const = 0;
    virtual unsigned GetType() const = 0;
    // By name: a serial port name, or a HID device path.
    virtual bool Open(const std::string& name_I) = 0;
    // By index: the n-th device of a USB-to-I2C bridge.
    virtual bool Open(int32_t deviceIndex_I) = 0;
    virtual bool Close();
    virtual bool IsOpen() const = 0;
    // Writes one request, waits delay_I seconds, reads up to expectedSize_I reply bytes.
    // Empty on failure. depth_I is a retry depth for transports that retry; callers pass 0.
    virtual ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                                   int32_t depth_I) = 0;
    // The MCCS capabilities string, already cut to its balanced parentheses.
    virtual std::string CapabilitiesString() = 0;
    virtual std::string MonitorName();
    virtual std::string SerialNumber(int32_t sid_I);
    // Reads the display's EDID now, unless it is held already, for MonitorName and SerialNumber
    // of the display itself; true when there is one.
    bool LoadEDID() { return FillEDIDCache(-1); }
    virtual SFirmwareVersion FWVersion() = 0;
    // sid_I selects a sub-display where a transport has several; -1 is the display itself.
    virtual ByteBuffer ReadEDID(int32_t sid_I) = 0;

    // One exchange with the display at a time: whoever talks through the connector (the
    // interface thread, a worker, the command-line tool) holds this for the whole exchange, so
    // that requests and replies of two threads never interleave. Nested holds are allowed.
    std::unique_lock<std::recursive_mutex> Exclusive() {
        return std::unique_lock<std::recursive_mutex>(mAccess);
    }

    // The waits of the display this connector serves (its family's row); the standard ones
    // until a display object says otherwise.
    void UseWaits(const SDisplayWaits& waits_I) { mWaits = waits_I; }
    const SDisplayWaits& Waits() const { return mWaits; }

    // Restores factory defaults through the maker's fixed reset message.
    bool ScalarReset();
    // Makes the display store its current settings.
    bool SaveSettingsToScalar();
    // Cuts a raw capabilities reply after the parenthesis that balances the first one.
    static std::string TrimCapabilitiesString(const ByteBuffer& capsStr_I);

protected:
    // The firmware version as a get of VCP 0xC9 answers it, for connectors that carry raw
    // DDC/CI; className_I names the connector in the failure line.
    SFirmwareVersion ReadFirmwareVersionByGet(const char* className_I);

    // The EDID as last read; filled on demand and emptied by Close.
    ByteBuffer mEDIDCache;

private:
    std::recursive_mutex mAccess;
    SDisplayWaits mWaits;
    struct SFixedCommand {
        ByteBuffer request;
        std::chrono::microseconds wait;
        const char* name;
        const char* writeTitle;
        const char* readTitle;
        size_t minimumReplySize;
        ELogLevel failureLevel;
    };
    // Sends the reset or the save; returns the reply without its checksum byte, or nothing
    // when the reply is too short. A checksum mismatch is only logged.
    ByteBuffer SendFixedCommand(const SFixedCommand& command_I);
    bool FillEDIDCache(int32_t sid_I);
};
