// The reads that carry raw DDC/CI replies over I2C: the maker's table reads (capabilities and
// firmware version), the EDID in chunks under factory mode, and the MCCS capabilities read
// by offset. Every reply comes from the input.

#include <cstddef>
#include <cstdint>

#include "CapabilitiesReader.h"
#include "FuzzInput.h"
#include "I2CConnectorDP.h"
#include "VendorCommands.h"

namespace {

class CFeedI2CConnector : public CI2CConnectorDP {
public:
    explicit CFeedI2CConnector(CFuzzInput& input_I) : mInput(input_I) {}
    bool IsOpen() const override { return true; }
    ByteBuffer SendRequest(const ByteBuffer&, double, unsigned, int32_t) override { return mInput.Next(); }

private:
    CFuzzInput& mInput;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    CFuzzInput input(data_I, size_I);
    CFeedI2CConnector connector(input);
    connector.CapabilitiesString();
    connector.FWVersion();
    connector.ReadEDID(-1);
    ReadCapabilitiesByOffset(connector);
    return 0;
}
