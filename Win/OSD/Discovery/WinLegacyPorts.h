#pragma once
// The legacy route's channels on Windows: the serial ports that can lead to a display's
// controller (an FTDI virtual COM port or a Silicon Labs bridge, by hardware id) and the FTDI
// and TI USB-to-I2C bridges, each opened and added to the search's list. Every system call
// goes through the discovery system table.

#include <windows.h>
// windows.h first: setupapi.h needs its types.
#include <setupapi.h>

#include <memory>
#include <string>
#include <vector>

#include "Connector.h"

namespace WinLegacyPorts {

// What a port that cannot lead to a display is called in place of its hardware id.
constexpr char kNotSupported[] = "Not Supported";

// Every port and bridge, opened, appended to the list.
void Find(std::vector<std::shared_ptr<Connector>>& connectors_IO);
// One serial port by its place in the port interface list: its hardware id, kNotSupported for
// a port that cannot lead to a display, empty past the end.
std::string NextDeviceId(HDEVINFO ports_I, DWORD index_I, SP_DEVINFO_DATA& device_O);
// The port's COM name from its device key, opened and appended; nothing when it does not open.
void AddPort(HDEVINFO ports_I, SP_DEVINFO_DATA& device_I,
             std::vector<std::shared_ptr<Connector>>& connectors_IO);

}  // namespace WinLegacyPorts
