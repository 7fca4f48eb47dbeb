// The serial connector's reads: every block the port delivers comes from the input.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "FuzzInput.h"
#include "WinUSBConnector.h"

namespace {

class CFeedSerialPort : public ISerialPort {
public:
    explicit CFeedSerialPort(CFuzzInput& input_I) : mInput(input_I) {}
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
        data_O = mInput.Next();
        if (data_O.size() > maxBytes_I) {
            data_O.resize(maxBytes_I);
        }
        return true;
    }
    uint32_t LastError() const override { return 0; }

private:
    CFuzzInput& mInput;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    CFuzzInput input(data_I, size_I);
    CWinUSBConnector connector(std::make_unique<CFeedSerialPort>(input));
    connector.Open("COM5");
    connector.CapabilitiesString();
    connector.ReadEDID(-1);
    connector.MonitorName();
    connector.FWVersion();
    connector.SaveSettingsToScalar();
    return 0;
}
