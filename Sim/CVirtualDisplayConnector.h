#pragma once
// A connector that carries raw DDC/CI bytes to a virtual display in the same process, the way
// the serial and I2C-bridge transports carry them to a real one: the request is written as it
// stands, the reply wait is paused on the process clock, and the display's answer is returned
// as it came. Capabilities are read by offset, the EDID by the maker's vendor command and the
// firmware version from VCP 0xC9.

#include <memory>

#include "CVirtualDisplay.h"
#include "Connector.h"

class CVirtualDisplayConnector : public Connector {
public:
    explicit CVirtualDisplayConnector(std::shared_ptr<CVirtualDisplay> display_I,
                                      unsigned type_I = eConnectorSerial);

    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return mType; }
    bool Open(const std::string& name_I) override;
    bool Open(int32_t deviceIndex_I) override;
    bool Close() override;
    bool IsOpen() const override { return mOpen; }
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;
    std::string CapabilitiesString() override;
    SFirmwareVersion FWVersion() override;
    ByteBuffer ReadEDID(int32_t sid_I) override;

    const std::shared_ptr<CVirtualDisplay>& Display() const { return mDisplay; }
    // Unplugs the cable: every later request goes unanswered and the connector reports closed.
    void Unplug() { mOpen = false; }

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    unsigned mType;
    bool mOpen = false;
};
