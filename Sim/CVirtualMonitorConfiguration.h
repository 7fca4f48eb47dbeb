#pragma once
// The graphics driver's Monitor Configuration API over virtual displays: monitor handles with
// their physical monitors, get and set VCP, the capabilities string by length and reply, and
// save current settings. Each call can be made to fail with a system error code on demand.
// Portable; the Windows build wraps it in functions with the API's own signatures.

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "CVirtualDisplay.h"

// The system error codes the API reports.
namespace McaError {
constexpr uint32_t kInvalidMonitorHandle = 1461;         // ERROR_INVALID_MONITOR_HANDLE
constexpr uint32_t kInsufficientBuffer = 122;            // ERROR_INSUFFICIENT_BUFFER
constexpr uint32_t kI2CErrorReceivingData = 0xC0262583;  // the display did not answer
constexpr uint32_t kVcpNotSupported = 0xC0262584;        // the display refused the code
constexpr uint32_t kInvalidData = 0xC0262585;            // the answer made no sense
constexpr uint32_t kInvalidCapabilitiesString = 0xC0262587;
constexpr uint32_t kInvalidMessageChecksum = 0xC026258B;
constexpr uint32_t kInvalidPhysicalMonitorHandle = 0xC026258C;
constexpr uint32_t kMonitorNoLongerExists = 0xC026258D;
}  // namespace McaError

enum class EMcaCall {
    GetNumberOfPhysicalMonitors,
    GetPhysicalMonitors,
    GetVCPFeature,
    SetVCPFeature,
    GetCapabilitiesStringLength,
    CapabilitiesRequest,
    SaveCurrentSettings,
};

class CVirtualMonitorConfiguration {
public:
    using Handle = uintptr_t;

    struct SPhysicalMonitor {
        Handle handle = 0;
        std::wstring description;
    };

    // A monitor handle whose physical monitors are these displays, in order.
    Handle AddMonitor(const std::vector<std::shared_ptr<CVirtualDisplay>>& displays_I);

    // Every call that reaches this display fails as when it does not answer on the bus (a
    // dock or converter that does not pass DDC/CI on).
    void SetUnreachable(const std::shared_ptr<CVirtualDisplay>& display_I);
    // It answers again (plugged back in, switched on).
    void SetReachable(const std::shared_ptr<CVirtualDisplay>& display_I);

    // The display sleeps and wakes, or is unplugged and plugged in again: the physical-monitor
    // handles given out for it die (every call on them fails as on Windows), and listing its
    // monitor's physical monitors again gives new ones.
    void Replug(const std::shared_ptr<CVirtualDisplay>& display_I);

    // The next `times_I` calls of this function fail with the error code.
    void FailNext(EMcaCall call_I, uint32_t errorCode_I, unsigned times_I = 1);
    size_t CallCount(EMcaCall call_I) const;

    // Each returns false and sets error_O on failure, as the API does.
    bool GetNumberOfPhysicalMonitors(Handle monitor_I, uint32_t& count_O, uint32_t& error_O);
    bool GetPhysicalMonitors(Handle monitor_I, uint32_t size_I, std::vector<SPhysicalMonitor>& monitors_O,
                             uint32_t& error_O);
    bool GetVCPFeature(Handle physical_I, uint8_t code_I, uint32_t& type_O, uint32_t& current_O,
                       uint32_t& maximum_O, uint32_t& error_O);
    bool SetVCPFeature(Handle physical_I, uint8_t code_I, uint32_t value_I, uint32_t& error_O);
    bool GetCapabilitiesStringLength(Handle physical_I, uint32_t& length_O, uint32_t& error_O);
    // Copies the string and its terminating NUL; length_I must hold both.
    bool CapabilitiesRequest(Handle physical_I, char* buffer_O, uint32_t length_I, uint32_t& error_O);
    bool SaveCurrentSettings(Handle physical_I, uint32_t& error_O);

    std::shared_ptr<CVirtualDisplay> DisplayOf(Handle physical_I) const;

private:
    bool Enter(EMcaCall call_I, uint32_t& error_O);
    std::shared_ptr<CVirtualDisplay> Find(Handle physical_I, uint32_t& error_O) const;
    // The physical monitors of a monitor handle (the caller holds the lock).
    const std::vector<Handle>* PhysicalOf(Handle monitor_I, uint32_t& error_O) const;
    // Sends a request and checks what came back; false with the API's error when it failed.
    bool Exchange(CVirtualDisplay& display_I, const ByteBuffer& request_I, ByteBuffer& reply_O,
                  uint32_t& error_O) const;

    mutable std::mutex mMutex;
    std::map<Handle, std::vector<Handle>> mMonitors;
    std::map<Handle, std::shared_ptr<CVirtualDisplay>> mPhysical;
    std::vector<std::shared_ptr<CVirtualDisplay>> mUnreachable;
    std::vector<Handle> mDeadHandles;
    std::map<EMcaCall, std::vector<uint32_t>> mPlannedFailures;
    std::map<EMcaCall, size_t> mCalls;
    Handle mNextHandle = 0x1000;
};
