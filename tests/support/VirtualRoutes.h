#pragma once
// The portable connectors over virtual hardware, as each route carries DDC/CI: an I2C bridge's
// bus, a HID control interface. Header-only, for test programs that link the virtual display.

#include <memory>
#include <string>
#include <vector>

#include "CDdcI2CConnector.h"
#include "CVcpHIDConnector.h"
#include "CVirtualHidDevice.h"
#include "CVirtualI2CBus.h"

// A bridge connector whose master is a bus with a virtual display on it.
class CBusConnector : public CDdcI2CConnector {
public:
    explicit CBusConnector(std::shared_ptr<CVirtualDisplay> display) : mDisplay(std::move(display)) {}
    unsigned GetType() const override { return eConnectorFTDI; }
    bool Open(int32_t deviceIndex_I) override {
        auto bus = std::make_unique<CVirtualI2CBus>(mDisplay);
        this->bus = bus.get();
        SetMaster(std::move(bus));
        return deviceIndex_I == 0;
    }
    using CDdcI2CConnector::Open;
    CVirtualI2CBus* bus = nullptr;

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
};

// The common half over a virtual HID device; records every report it sets.
class CSimHidConnector : public CVcpHIDConnector {
public:
    explicit CSimHidConnector(std::shared_ptr<CVirtualHidDevice> device) : mDevice(std::move(device)) {}
    bool IsOpen() const override { return mOpen; }
    bool OpenHIDDevice(const std::string& path_I) override { return mOpen = !path_I.empty(); }
    bool CloseHIDDevice() override { return !(mOpen = false); }
    bool SetFeature(const ByteBuffer& report_I) override {
        reports.push_back(report_I);
        return mDevice->SetFeature(report_I);
    }
    bool GetFeature(ByteBuffer& report_IO) override { return mDevice->GetFeature(report_IO); }
    std::vector<ByteBuffer> reports;

private:
    std::shared_ptr<CVirtualHidDevice> mDevice;
    bool mOpen = false;
};
