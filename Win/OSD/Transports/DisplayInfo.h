#pragma once
// What discovery knows of one monitor of the maker: its identity from the registry EDID, the
// operating system's monitor handle, and the display object that serves it once paired.

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "ByteBuffer.h"

class CDisplay;

struct SDisplayInfo {
    std::wstring deviceID;       // hardware id, backslash, driver key
    std::wstring monitorName;    // EDID monitor-name descriptor
    std::wstring serialNumber;   // EDID serial-number descriptor, or "Invalid SN"
    std::wstring supportedName;  // the product name of the resource group "2000"
    uint16_t productCode = 0;
    std::shared_ptr<CDisplay> display;
    HMONITOR monitor = nullptr;
    ByteBuffer edid;
    uint32_t physicalMonitorIndex = 0;
    // Keeps the discovery that made the record alive while a connector uses it.
    std::shared_ptr<void> owner;

    // The name the command-line tool lists the display by and the kept profiles name it by.
    const std::wstring& ModelName() const { return supportedName.empty() ? monitorName : supportedName; }

    bool HasRequiredFields() const {
        return !deviceID.empty() && !monitorName.empty() && !serialNumber.empty() && !supportedName.empty() &&
               monitor != nullptr && owner != nullptr;
    }
};
