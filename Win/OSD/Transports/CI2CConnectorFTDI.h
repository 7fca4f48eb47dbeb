#pragma once
// A display reached through an FTDI FT232H USB-to-I2C bridge: DDC/CI over the bridge's MPSSE
// engine driven as an I2C master. Only FT232H bridges that no other program holds are opened.

#include <memory>

#include "CDdcI2CConnector.h"
#include "Ftd2xxApi.h"
#include "MpsseI2CMaster.h"

class CI2CConnectorFTDI : public CDdcI2CConnector {
public:
    CI2CConnectorFTDI();
    ~CI2CConnectorFTDI() override;

    // Bridges the D2XX driver sees; 0 when the driver is not installed.
    static int DeviceCount();

    unsigned GetType() const override { return eConnectorFTDI; }
    using CDdcI2CConnector::Open;
    bool Open(int32_t deviceIndex_I) override;
    bool Close() override;
    // Closes the connector when the bridge went away during the request.
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;

private:
    class CChannel;
    FT_HANDLE mHandle = nullptr;
    bool mBitModeChanged = false;
    std::unique_ptr<CChannel> mChannel;
};
