#pragma once
// DDC/CI through the graphics driver: each request packet is decoded and carried out with the
// matching Monitor Configuration call, and the reply the display object expects is built from
// the call's results. Name, serial number and EDID come from discovery's record, so they cost
// no display traffic.

#include <string>
#include <vector>

#include "DisplayInfo.h"
#include "I2CConnectorDP.h"
#include "MonitorConfigurationApi.h"

class CWinI2CConnectorDP : public CI2CConnectorDP {
public:
    CWinI2CConnectorDP() = default;
    ~CWinI2CConnectorDP() override;

    using CI2CConnectorDP::Open;
    // Binds the connector to one discovered display and its physical monitor.
    bool Open(const SDisplayInfo& displayInfo_I);
    bool Close() override;
    bool IsOpen() const override;
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;
    std::string CapabilitiesString() override;
    std::string MonitorName() override;
    std::string SerialNumber(int32_t sid_I) override;
    SFirmwareVersion FWVersion() override;
    ByteBuffer ReadEDID(int32_t sid_I) override;

    bool GetVCPFeature(uint8_t code_I, DWORD& current_O, DWORD& maximum_O);
    bool SetVCPFeature(uint8_t code_I, DWORD value_I);

    const std::string& LastCapabilitiesError() const { return mLastCapabilitiesError; }

private:
    // The handle of the record's physical monitor; null past the end of the array.
    HANDLE PhysicalHandle() const;
    void ReleasePhysicalMonitors();
    // Called at once after a failed API call: reads and returns its error, logs it in
    // hexadecimal, and closes the connector when the handle has died.
    DWORD Failed(const char* call_I);

    SDisplayInfo mDisplayInfo;
    std::vector<Dxva2::PHYSICAL_MONITOR> mPhysicalMonitors;
    std::string mLastCapabilitiesError;
};
