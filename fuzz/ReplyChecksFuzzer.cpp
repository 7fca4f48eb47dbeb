// Every reply check of the packet module on raw bytes, and a display object whose every
// exchange is answered from the input: gets, sets, save, revert and the factory reset.

#include <cstddef>
#include <cstdint>

#include "DdcPackets.h"
#include "FuzzInput.h"
#include "UiDisplayDelegate.h"

namespace {

// A connector that answers every request with the next record of the input.
class CFeedConnector : public Connector {
public:
    explicit CFeedConnector(CFuzzInput& input_I) : mInput(input_I) {}
    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return eConnectorSerial; }
    bool Open(const std::string&) override { return true; }
    bool Open(int32_t) override { return true; }
    bool IsOpen() const override { return !mInput.Empty(); }
    ByteBuffer SendRequest(const ByteBuffer&, double, unsigned, int32_t) override { return mInput.Next(); }
    std::string CapabilitiesString() override { return {}; }
    SFirmwareVersion FWVersion() override { return ReadFirmwareVersionByGet("CFeedConnector"); }
    ByteBuffer ReadEDID(int32_t) override { return mInput.Next(); }

private:
    CFuzzInput& mInput;
};

const char kCapabilities[] =
    "(prot(monitor)type(lcd)model(fuzz)cmds(01 02 03 0C F3)vcp(04 08 10 12 14(04 05 08 0B) 16 18 1A 60 72(01 "
    "02 "
    "03) 86(01 02 05) 87 E0(00 01 02) EA F0(07 08 09) F3(00 01) F4(00 02 03))mccs_ver(2.2))";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    CFuzzInput input(data_I, size_I);
    const uint8_t code = input.Byte();
    const bool continuous = (input.Byte() & 1) != 0;
    ByteBuffer reply = input.Next();
    SGetReplyValue value;
    CheckGetReply(reply, code, continuous, value);
    CheckSetReply(reply);
    size_t dataSize = 0;
    CheckOffsetReply(reply, code, static_cast<uint16_t>(code * 7), dataSize);
    IsNullMessage(reply);
    StartsWithNullMessage(reply);
    StartsWithGetReplyHeader(reply);
    DecodeHostRequest(reply);
    FramedRequestSize(reply);
    StripReplyChecksum(reply);
    CheckGetReply(reply, code, continuous, value);

    auto connector = std::make_shared<CFeedConnector>(input);
    UiDisplayDelegate display(connector, 0x1052);
    if (!display.Initialize(kCapabilities)) {
        return 0;
    }
    display.FirmwareVersionText();
    while (!input.Empty()) {
        switch (input.Byte() % 8) {
            case 0: display.SetBrightness(input.Byte()); break;
            case 1: display.SetColorTemperature(input.Byte()); break;
            case 2: display.SetGamma(input.Byte() % 3); break;
            case 3: display.Save(); break;
            case 4: display.Revert(); break;
            case 5: display.GetVCPValue(input.Byte(), true); break;
            case 6: display.SetVCPValueVerify(vcpC_Contrast, input.Byte(), 1); break;
            default: display.FactoryReset(); break;
        }
    }
    connector->ScalarReset();
    return 0;
}
