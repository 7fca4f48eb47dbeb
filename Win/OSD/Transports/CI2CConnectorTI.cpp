#include "CI2CConnectorTI.h"

#include "DebugLog.h"
#include "SystemLibrary.h"
#include "VendorCommands.h"

int CI2CConnectorTI::DeviceCount() {
    // Only looked for, never loaded: running a third-party library's code to learn nothing
    // would be a risk without a use.
    if (!IsTrustedLibraryInstalled(L"TUSB3x10_I2C_API.dll", ELibraryLocation::SystemThenApplicationDir)) {
        DLog("CI2CConnectorTI: TUSB3x10_I2C_API.dll is not installed; no TI devices\n");
        return 0;
    }
    DLog(
        "CI2CConnectorTI: TUSB3x10_I2C_API.dll is installed, but its interface is not publicly documented; "
        "no TI devices are reported\n");
    return 0;
}

bool CI2CConnectorTI::Open(int32_t deviceIndex_I) {
    DLog("CI2CConnectorTI::Open: device %i cannot be opened: the TUSB3x10 I2C interface is not known\n",
         deviceIndex_I);
    return false;
}

ByteBuffer CI2CConnectorTI::ReadEDID(int32_t) {
    return IsOpen() ? ReadEdidByVendorCommand(*this, "CI2CConnectorTI::ReadEDID") : ByteBuffer();
}
