// The serial connector's reads: every block the port delivers comes from the input.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "FuzzInput.h"
#include "ScriptedSerialPort.h"
#include "WinUSBConnector.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    CFuzzInput input(data_I, size_I);
    CWinUSBConnector connector(
        std::make_unique<CScriptedSerialPort>([&input](size_t) { return input.Next(); }));
    connector.Open("COM5");
    connector.CapabilitiesString();
    connector.ReadEDID(-1);
    connector.MonitorName();
    connector.FWVersion();
    connector.SaveSettingsToScalar();
    return 0;
}
