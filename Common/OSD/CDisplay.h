#pragma once
// One physical display that answers DDC/CI. Discovery creates it over an open connector with
// the display's EDID product code; Initialize reads the display's name and capabilities and
// builds the option map; afterwards options are read and written one transaction at a time.
//
// Every operation blocks for the transport's waits and the pauses the firmware needs after a
// write; all of them go through the process clock. The object takes no lock: one thread at a
// time uses a display.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CVCPOption.h"
#include "CapabilitiesCache.h"
#include "CapabilitiesParser.h"
#include "CodeInfo.h"
#include "Connector.h"
#include "DisplayTraits.h"
#include "FirmwareVersion.h"

struct SMCCSVersion {
    uint32_t major = 0;
    uint8_t minor = 0;

    bool IsValid() const { return major != 0 || minor != 0; }
    // "2.2" -> 2.2; anything unreadable gives the invalid version.
    static SMCCSVersion Parse(const std::string& text_I);
};

// What a get returns: the option's range and current value after an optional read.
struct SVCPValue {
    bool valid = false;  // the code has an option and its last read succeeded
    int32_t value = 0;
    SRange range;
    std::string error;
    EReplyError errorKind = EReplyError::None;
};

class CDisplay {
public:
    CDisplay(std::shared_ptr<Connector> connector_I, uint16_t edidNumber_I);
    virtual ~CDisplay();
    CDisplay(const CDisplay&) = delete;
    CDisplay& operator=(const CDisplay&) = delete;

    // Reads name and capabilities from the connector, or uses capsStr_I when it is not empty
    // (the connector is then asked for nothing). False when the display cannot be used. With a
    // capabilities cache and a complete identity the firmware version is read first, and the
    // cache's string for this display and firmware stands in for the read.
    bool Initialize(const std::string& capsStr_I = std::string());
    // Where Initialize may find the capabilities, and who this display is (from discovery).
    void UseCapabilitiesCache(std::shared_ptr<CCapabilitiesCache> cache_I, SDisplayIdentity identity_I) {
        mCapabilitiesCache = std::move(cache_I);
        mIdentity = std::move(identity_I);
    }
    const SDisplayIdentity& Identity() const { return mIdentity; }
    // Whether the last Initialize took its capabilities from the cache.
    bool CapabilitiesFromCache() const { return mCapabilitiesFromCache; }

    // Makes the display keep every changed setting; true without a connector.
    virtual bool Save();
    // Writes every changed setting back to the value the display had when first read.
    virtual bool Revert();
    // Forgets what was read, so the next get reads the display again. Display Presets (0xF0)
    // are kept unless allOptions_I is set.
    virtual void ResetData(bool allOptions_I);
    // The same for one option.
    void ResetOptionData(uint32_t vcpCode_I);

    // One get transaction; the result (value or error text) lands in the option.
    bool ReadVCPValue_(const VCPOptionPtr& option_I);
    // One set transaction with the option's current value, then the firmware's pause.
    bool WriteVCPValue_(const VCPOptionPtr& option_I);

    bool SetVCPValue(uint32_t vcpCode_I, int32_t value_I);
    // SetVCPValue until the display reads back the value; retryCount_I + 1 attempts at most.
    bool SetVCPValueVerify(uint32_t vcpCode_I, int32_t value_I, int retryCount_I);
    SVCPValue GetVCPValue(uint32_t vcpCode_I, bool forceRead_I);
    // Puts an option back to the value the display had when first read.
    bool RestoreOriginal(uint32_t vcpCode_I);
    // Forgets the options, commands and capabilities (also done on destruction).
    void ClearData();

    // What went wrong in the last failed set, e.g. "Contrast: Send request failed"; empty
    // when nothing has failed.
    const std::string& LastFailure() const { return mLastFailure; }
    void ClearLastFailure() { mLastFailure.clear(); }

    // Displays whose colour adjustments take raw values rather than percentages.
    bool AllowsRawColorValues() const { return mAllowRawColorValues; }
    void SetAllowRawColorValues(bool allow_I) { mAllowRawColorValues = allow_I; }

    uint16_t EDIDNumber() const { return mEDIDNumber; }
    // What this display does differently, worked out when it was made.
    const SDisplayTraits& Traits() const { return mTraits; }
    const std::shared_ptr<Connector>& GetConnector() const { return mConnector; }
    const std::string& MonitorName() const { return mMonitorName; }
    void SetMonitorName(const std::string& name_I) { mMonitorName = name_I; }
    // The product name the interface shows (UTF-8), set by discovery.
    const std::string& SupportedName() const { return mSupportedName; }
    void SetSupportedName(const std::string& name_I) { mSupportedName = name_I; }
    const CapabilitiesMap& Capabilities() const { return mCapabilities; }
    const std::string& Protocol() const { return mProtocol; }
    const std::string& DisplayType() const { return mType; }
    const SMCCSVersion& MCCSVersion() const { return mMCCSVersion; }
    const SFirmwareVersion& FirmwareVersion() const { return mFirmwareVersion; }
    // The firmware version, asked of the display unless already known; zero when it does not say.
    const SFirmwareVersion& ReadFirmwareVersion();
    const VCPOptionsMap& Options() const { return mVCPOptionsMap; }
    VCPOptionPtr Option(uint32_t vcpCode_I) const;
    bool HasOption(uint32_t vcpCode_I) const { return Option(vcpCode_I) != nullptr; }
    const std::vector<uint32_t>& Commands() const { return mCommands; }
    const CodeInfoTable& CodeInformation() const { return mCodeInfo; }

protected:
    // The write with one retry after 60 ms that SetVCPValue, RestoreOriginal and Revert share;
    // Revert names an assertion that a first failure reports. True when the option ends
    // without an error.
    bool WriteWithRetry(const VCPOptionPtr& option_I, const char* firstFailureAssert_I = nullptr);
    // Parses the capabilities and builds the option map and commands; fail_I writes a
    // failure's line (Initialize's own) and returns false.
    bool InitializeFrom(const std::string& capsStr, bool (*fail_I)(const char*));
    // The per-model corrections of the option map.
    void ApplyModelCorrections();
    void NoteFailure(const VCPOptionPtr& option_I);
    // A failure that is not one option's error: "<what>: <why>".
    void NoteFailure(const std::string& what_I, const std::string& why_I);
    static void ResetOneOption(VCPOptionBase& option_I);

    std::shared_ptr<Connector> mConnector;
    uint16_t mEDIDNumber;
    SDisplayTraits mTraits;
    std::string mMonitorName;
    std::string mSupportedName;
    CapabilitiesMap mCapabilities;
    std::string mProtocol;
    std::string mType;
    SMCCSVersion mMCCSVersion;
    CodeInfoTable mCodeInfo;
    VCPOptionsMap mVCPOptionsMap;
    std::vector<uint32_t> mCommands;
    SFirmwareVersion mFirmwareVersion;
    std::string mLastFailure;
    bool mAllowRawColorValues = false;
    std::shared_ptr<CCapabilitiesCache> mCapabilitiesCache;
    SDisplayIdentity mIdentity;
    bool mCapabilitiesFromCache = false;
};
