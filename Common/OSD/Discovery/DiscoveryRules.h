#pragma once
// The decisions of display discovery that need no operating system (with the route plan,
// RoutePlan.h): which connector a model is expected on when no serial number pairs
// it, how ids read from the system are taken apart, the on-screen-menu language values, and
// the text shown when the graphics driver cannot reach a display. The Windows discovery asks
// these; tests check them natively.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Connector.h"

// How discovery pairs monitors with control channels.
enum EConnectionMode : uint32_t {
    eConnectionHidOnly = 0,
    eConnectionDisplayPortOnly = 1,
    eConnectionLegacyOnly = 2,  // serial-number pairing over serial ports and bridges
    eConnectionAll = 3,         // HID, then the graphics driver, then legacy pairing
};

namespace Discovery {

// "No connector type": the value the legacy rule starts from.
constexpr unsigned kNoConnectorType = 5;

// With matching by model: any HID control interface serves these models.
bool HidServesByModel(uint16_t productCode_I);
// With matching by model: the connector type a model is reached over when its serial number
// pairs with nothing (kNoConnectorType when none is expected).
unsigned ExpectedLegacyConnectorType(uint16_t productCode_I);

// Connector serial numbers equal record serial numbers byte for byte; an empty one never
// pairs.
bool SameSerialNumber(const std::string& connector_I, const std::string& record_I);

// Pairs a display with one of count_I candidate channels in two passes: first the free one
// that reports the display's own serial number (so that two displays of one family each get
// their own), then, when byModel_I, the first free one. The index of the one chosen; none when
// no candidate fits. Windows and Linux discovery pair HID interfaces this way, Linux also its
// serial ports.
std::optional<size_t> PairBySerialThenByModel(size_t count_I, const std::function<bool(size_t)>& free_I,
                                              const std::function<std::string(size_t)>& serialOf_I,
                                              const std::string& displaySerial_I, bool byModel_I);

// The seven characters "VLR" and the product code's digits that follow the first backslash
// that starts "\VLR" in a hardware id; empty when there is none.
std::string ShortNameFromHardwareId(const std::string& hardwareId_I);
// The product code: up to four hexadecimal digits after "\VLR"; 0 when there are none (so
// that no resource names it), with a log line.
uint16_t ProductCodeFromDeviceId(const std::string& deviceId_I);
// Device ids compare exactly, else without regard to case.
bool SameDeviceId(const std::string& left_I, const std::string& right_I);

// Serial ports that can lead to a display's controller.
enum class EPortKind { NotSupported, FtdiVirtualComPort, SiliconLabsBridge };
EPortKind ClassifyPortHardwareId(const std::string& hardwareId_I);

// The MCCS OSD-language value for an interface language number; -1 when it has none.
int OsdLanguageValue(int uiLanguage_I);

// Whether the system manufacturer the BIOS reports is the maker itself.
bool IsMakersOwnComputer(const std::string& systemManufacturer_I);

// The text shown when a display could not be reached through the graphics driver.
std::string DisplayPortErrorText(uint16_t productCode_I, const std::string& supportedName_I,
                                 const std::string& connectorError_I);

}  // namespace Discovery
