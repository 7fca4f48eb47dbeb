#pragma once
// The FTDI D2XX driver of the simulated machine: its FT232H bridges, each an MPSSE engine in
// front of its display's DDC bus; a bridge whose display is unplugged answers as a pulled-out
// device does.

#include "Ftd2xxApi.h"

const SFtd2xxApi& SimulatedFtdiDriver();
