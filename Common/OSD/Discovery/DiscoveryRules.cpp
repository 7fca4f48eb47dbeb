#include "DiscoveryRules.h"

#include <algorithm>
#include <cctype>

#include "DebugLog.h"
#include "ProductFamilies.h"
#include "StringUtilities.h"

namespace Discovery {

namespace {

constexpr char kMakerTag[] = "\\VLR";
constexpr size_t kMakerTagSize = sizeof(kMakerTag) - 1;
constexpr size_t kShortNameSize = 7;
constexpr size_t kProductCodeDigits = 4;

std::string Lower(std::string text_I) {
    std::transform(text_I.begin(), text_I.end(), text_I.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text_I;
}

bool ContainsNoCase(const std::string& text_I, const std::string& part_I) {
    return Lower(text_I).find(Lower(part_I)) != std::string::npos;
}

struct SOsdLanguage {
    int uiLanguage;
    int value;
};

// Interface language number -> MCCS OSD language (0xCC).
constexpr SOsdLanguage kOsdLanguages[] = {
    {0, 0x02}, {1, 0x0D}, {2, 0x01},  {3, 0x26},  {4, 0x03},  {5, 0x04},  {6, 0x06},  {7, 0x07},
    {8, 0x05}, {9, 0x0A}, {10, 0x08}, {12, 0x14}, {13, 0x09}, {15, 0x1E}, {19, 0x02},
};

}  // namespace

bool HidServesByModel(uint16_t productCode_I) {
    return FamilyRowOf(productCode_I).hidPairedByModel;
}

unsigned ExpectedLegacyConnectorType(uint16_t productCode_I) {
    switch (FamilyRowOf(productCode_I).legacyRoute) {
        case ELegacyRoute::SerialPort: return eConnectorSerial;
        case ELegacyRoute::FtdiBridge: return eConnectorFTDI;
        case ELegacyRoute::TiBridge: return eConnectorTI;
        case ELegacyRoute::None: break;
    }
    return kNoConnectorType;
}

bool SameSerialNumber(const std::string& connector_I, const std::string& record_I) {
    return !connector_I.empty() && connector_I == record_I;
}

std::optional<size_t> PairBySerialThenByModel(size_t count_I, const std::function<bool(size_t)>& free_I,
                                              const std::function<std::string(size_t)>& serialOf_I,
                                              const std::string& displaySerial_I, bool byModel_I) {
    for (int pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < count_I; ++i) {
            if (!free_I(i)) {
                continue;
            }
            if (pass == 0 ? SameSerialNumber(serialOf_I(i), displaySerial_I) : byModel_I) {
                return i;
            }
        }
    }
    return std::nullopt;
}

std::string ShortNameFromHardwareId(const std::string& hardwareId_I) {
    if (hardwareId_I.size() < kMakerTagSize) {
        return {};
    }
    for (size_t at = hardwareId_I.find('\\'); at != std::string::npos; at = hardwareId_I.find('\\', at + 1)) {
        if (hardwareId_I.compare(at, kMakerTagSize, kMakerTag) == 0) {
            return hardwareId_I.substr(at + 1, kShortNameSize);
        }
    }
    return {};
}

uint16_t ProductCodeFromDeviceId(const std::string& deviceId_I) {
    const size_t at = deviceId_I.find(kMakerTag);
    if (at == std::string::npos) {
        return 0;
    }
    std::string digits = deviceId_I.substr(at + kMakerTagSize, kProductCodeDigits);
    const size_t hexEnd =
        std::find_if(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c) == 0; }) -
        digits.begin();
    digits.resize(hexEnd);
    uint32_t code = 0;
    if (digits.empty() || !ParseHex32(digits, code)) {
        DLog("Discovery: no product code in device id %s\n", deviceId_I.c_str());
        return 0;
    }
    return static_cast<uint16_t>(code);
}

bool SameDeviceId(const std::string& left_I, const std::string& right_I) {
    return left_I == right_I || (left_I.size() == right_I.size() && Lower(left_I) == Lower(right_I));
}

EPortKind ClassifyPortHardwareId(const std::string& hardwareId_I) {
    if (ContainsNoCase(hardwareId_I, "FTDIBUS\\COMPORT&VID_0403&PID_6014")) {
        return EPortKind::FtdiVirtualComPort;
    }
    if (ContainsNoCase(hardwareId_I, "USB\\VID_10C4&PID_EA60")) {
        return EPortKind::SiliconLabsBridge;
    }
    return EPortKind::NotSupported;
}

int OsdLanguageValue(int uiLanguage_I) {
    for (const SOsdLanguage& row : kOsdLanguages) {
        if (row.uiLanguage == uiLanguage_I) {
            return row.value;
        }
    }
    return -1;
}

bool IsMakersOwnComputer(const std::string& systemManufacturer_I) {
    return systemManufacturer_I == "Velor Co.,Ltd";
}

std::string DisplayPortErrorText(uint16_t productCode_I, const std::string& supportedName_I,
                                 const std::string& connectorError_I) {
    // The blank before " [" doubles up; that is the text users and support know.
    return StringPrintf("Display: VLR%02X  [%s]\n    Could not connect through Display Port API\n    %s",
                        productCode_I, supportedName_I.c_str(), connectorError_I.c_str());
}

}  // namespace Discovery
