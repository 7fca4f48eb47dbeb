#pragma once
// The capabilities strings of the displays this user has seen, kept between runs so that a
// second start does not read them again: most of a display's initialisation is that read, and
// it gives the same string every time for the same display and firmware.
//
// An entry is found only by the whole identity: the EDID's manufacturer, product code and
// serial number, the route, and the firmware version the display reports now. The file is
// checked, never trusted: an entry whose check value does not match its text is not used, and
// a file that is not the cache is read as empty and replaced at the next store. Writes go to a
// file beside it that is then moved over, so a crash never leaves half a file. One object may
// be used from several threads.
//
//   {"capabilities-cache": 1, "entries": [{"manufacturer": "VLR", "product": 4660,
//     "serial": "...", "route": "HID", "firmware": "1.2.3", "name": "...",
//     "capabilities": "(prot(monitor)...)", "check": "<64-bit hash, hex>"}, ...]}

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "FirmwareVersion.h"

// Who a display is, as far as its capabilities go.
struct SDisplayIdentity {
    std::string manufacturer;  // the EDID's three letters ("VLR")
    uint16_t productCode = 0;  // the EDID's product code
    std::string serial;        // the EDID's serial number text
    std::string route;         // the connector's kind ("HID", "graphics driver", ...)

    // Without all four the display cannot be told from another: nothing is cached for it.
    bool IsComplete() const {
        return !manufacturer.empty() && productCode != 0 && !serial.empty() && !route.empty();
    }
};

class CCapabilitiesCache {
public:
    explicit CCapabilitiesCache(std::string file_I) : mFile(std::move(file_I)) {}

    struct SEntry {
        std::string capabilities;  // as the display sent it, cut to its balanced parentheses
        std::string monitorName;   // what the connector read as the display's name
    };
    // The entry of exactly this display and firmware; none when there is none or it is damaged.
    std::optional<SEntry> Find(const SDisplayIdentity& identity_I, const SFirmwareVersion& firmware_I);
    // Replaces the display's entry (an entry of an older firmware included).
    void Store(const SDisplayIdentity& identity_I, const SFirmwareVersion& firmware_I, const SEntry& entry_I);
    // Drops the display's entry (its string did not make a usable display).
    void Forget(const SDisplayIdentity& identity_I);

    const std::string& File() const { return mFile; }

    // Where the program keeps it: the local application data folder on Windows, the XDG cache
    // folder elsewhere ("capabilities.json", the demo's "demo-capabilities.json"); empty when
    // neither is known. $VLR_CAPABILITIES_CACHE names another file.
    static std::string DefaultFile(bool demo_I);

private:
    std::string mFile;
    std::mutex mMutex;
};
