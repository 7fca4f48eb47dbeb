// The HID report unwrapping: every status report the connector polls comes from the input.

#include <cstddef>
#include <cstdint>

#include "CVcpHIDConnector.h"
#include "FuzzInput.h"

namespace {

class CFeedHidConnector : public CVcpHIDConnector {
public:
    explicit CFeedHidConnector(CFuzzInput& input_I) : mInput(input_I) {}
    bool IsOpen() const override { return true; }
    bool OpenHIDDevice(const std::string&) override { return true; }
    bool CloseHIDDevice() override { return true; }
    bool SetFeature(const ByteBuffer&) override { return !mInput.Empty(); }
    bool GetFeature(ByteBuffer& report_IO) override {
        report_IO = mInput.Next();
        return !report_IO.empty();
    }

private:
    CFuzzInput& mInput;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    CFuzzInput input(data_I, size_I);
    CFeedHidConnector connector(input);
    connector.SendRequest(BuildGetVCPRequest(0x10), 0.07, 38, 0);
    connector.SendRequest(BuildSetVCPRequest(0x12, 40), 0.07, 38, 0);
    connector.SendRequest(BuildSaveCurrentSettingsRequest(), 0.07, 38, 0);
    connector.MonitorName();
    connector.SerialNumber(-1);
    connector.FWVersion();
    connector.CapabilitiesString();
    return 0;
}
