#pragma once
// Makes virtual HID devices the process's HID devices for the lifetime of the object: device
// paths open as handles to them, and the feature-report requests reach them.

#include <map>
#include <memory>
#include <string>

#include "CEdidBuilder.h"
#include "CVirtualHidDevice.h"
#include "HidApi.h"

class CSimulatedHidApi {
public:
    CSimulatedHidApi();
    ~CSimulatedHidApi();
    CSimulatedHidApi(const CSimulatedHidApi&) = delete;
    CSimulatedHidApi& operator=(const CSimulatedHidApi&) = delete;

    // A device at this path; an exclusive one refuses to open (another program holds it). A
    // null device opens but refuses every feature report (a collection without them).
    void AddDevice(const std::string& path_I, std::shared_ptr<CVirtualHidDevice> device_I,
                   bool exclusive_I = false, uint16_t vendorId_I = kVelorUsbVendorId,
                   uint16_t productId_I = 0);
    // How the device at this path differs from a plain one: opening it for reading or writing
    // fails with this error (5: Windows keeps the collection; 32: the tablet service holds it)
    // while access 0 works; its collection declares feature reports of this length.
    void SetDeviceTraits(const std::string& path_I, uint32_t readWriteError_I,
                         unsigned featureReportLength_I);
    // A device whose firmware has stopped: feature-report requests stay pending until cancelled.
    void SetHung(const std::string& path_I, bool hung_I);
    // The device is unplugged: it no longer opens (file not found), and a handle still open
    // fails every request with "device not connected" (1167), as Windows does; false plugs it
    // back in.
    void SetUnplugged(const std::string& path_I, bool unplugged_I);

    // The table of simulated functions (the discovery table opens HID paths with it too).
    static const SHidApi& Table();

    struct SCounters {
        unsigned opens = 0;
        unsigned closes = 0;
        unsigned setFeatures = 0;
        unsigned getFeatures = 0;
        unsigned lastReportLength = 0;
        unsigned lastOpenAccess = 0;
        unsigned lastOpenFlags = 0;
        unsigned cancels = 0;
    };
    static SCounters Counters();
};
