#pragma once
// The USB serial ports under /sys/class/tty whose USB vendor and product ids are those the
// serial connector serves (FTDI's FT232H and Silicon Labs' bridge, as on Windows).

#include <string>
#include <vector>

#include "LinuxSystem.h"

struct SUsbSerialPort {
    std::string node;        // "/dev/ttyUSB0"
    std::string hardwareId;  // in the Windows form the port rules classify ("USB\VID_10C4&PID_EA60")
};

std::vector<SUsbSerialPort> FindUsbSerialPorts(ILinuxSystem& system_I,
                                               const std::string& sysfsTty_I = "/sys/class/tty");
