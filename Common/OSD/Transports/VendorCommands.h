#pragma once
// The maker's vendor commands over DDC/CI as transactions: factory mode (C0 E1) and the EDID
// read in sixteen 16-byte chunks (C0 66), which needs factory mode. Used by every transport
// that carries raw DDC/CI bytes to the display's controller; the packets are DdcPackets'.

#include <cstdint>
#include <string>

#include "ByteBuffer.h"
#include "DdcPackets.h"

class Connector;

// Switches factory mode; the display answers with the null message.
bool SetFactoryMode(Connector& connector_I, bool on_I);

// The 256-byte EDID read chunk by chunk between factory mode on and off. timerLabel_I names
// the connector in the timing line.
ByteBuffer ReadEdidByVendorCommand(Connector& connector_I, const char* timerLabel_I);
