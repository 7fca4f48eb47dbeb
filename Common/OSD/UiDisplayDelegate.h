#pragma once
// The settings delegate: the display object the dialogs talk to. It turns user-level settings
// (brightness, gamma, colour temperature, fan speed, battery mode and the rest) into VCP
// reads and writes on itself, choosing code and value by product family, and answers the
// dialogs' questions (what the display offers, what is unsaved, whether a picture is too dark).
//
// Besides the display's own values it keeps one setting of its own, twice (current and
// saved): the colour setting mode of displays whose firmware does not report it.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "CDisplay.h"
#include "CustomColor.h"
#include "SettingCodes.h"

enum EFanSpeed : int32_t { eFanSpeed_LowSpeed = 0, eFanSpeed_Auto = 1 };

// Kinds of settings whose change raises power consumption, as the power warning lists them.
enum EPowerKind : uint32_t { ePowerKindColorTemperature = 0, ePowerKindBrightness = 1 };

// What the dialogs need to show one setting.
struct SSettingState {
    bool supported = false;
    bool writable = false;
    bool valid = false;           // the value was read from the display
    SRange range;                 // continuous settings
    std::vector<SEntry> entries;  // the choices the display offers, in dialog order
    int32_t value = 0;            // current value; for choices the value of an entry (-1: none)

    // Whether the display offers the value: one of the choices, or within the range.
    bool Offers(int32_t value_I) const;
};

class UiDisplayDelegate : public CDisplay {
public:
    UiDisplayDelegate(std::shared_ptr<Connector> connector_I, uint16_t edidNumber_I);

    bool Save() override;
    bool Revert() override;
    void ResetData(bool allOptions_I) override;

    bool FactoryReset();
    bool ResetColor();

    bool SetBrightness(int32_t value_I);
    bool SetContrast(int32_t value_I);
    // The fine gamma scale (value = gamma x 10).
    bool SetGammaValue(int32_t value_I);
    // One of the gamma choices 0, 1, 2 (1.9, 2.2, 2.4) as the family encodes them.
    bool SetGamma(int32_t choice_I);
    bool SetSharpness(int32_t value_I);
    bool SetUniformityCompensation(int32_t value_I);
    bool SetDynamicContrast(int32_t on_I);
    bool SetEnergySmart(int32_t on_I);
    bool SetLCDConditioning(int32_t value_I);
    bool SetAutoPowerDown(int32_t on_I);
    bool SetPowerLEDBrightness(int32_t value_I);
    bool SetScanMode(int32_t value_I);
    bool SetFanSpeed(int32_t fanSpeed_I);
    bool SetBatteryMode(int32_t choice_I);
    bool SetOSDLanguage(int32_t value_I);

    bool SetColorSettingMode(int32_t mode_I);
    int32_t ColorSettingMode();
    bool SetColorTemperature(int32_t value_I);
    bool SetColorSpace(int32_t value_I);
    bool SetAspectRatio(int32_t value_I);

    // Everything the dialogs show of one setting, and the matching write.
    SSettingState GetSetting(ESetting setting_I);
    bool SetSetting(ESetting setting_I, int32_t value_I);

    // The custom colour as shown after "RGB:" ("100, 95, 90"); empty when it cannot be read.
    std::string CustomColorText();
    // "3.1.2"; empty when the display did not say.
    std::string FirmwareVersionText();

    bool HasUnsavedChanges() const;
    // Changed settings that raise power consumption: colour temperature raised to a higher
    // kelvin value, brightness raised.
    std::vector<uint32_t> PowerIncreasingChanges() const;
    // The power warning's first sentence: the unsaved changes make the display draw more power.
    bool IncreasesPowerUse() const { return !PowerIncreasingChanges().empty(); }
    // The online help page of the display's family.
    const char* HelpPageName() const { return mTraits.helpPage; }
    // Whether the picture at this brightness and contrast may be too dark to read.
    bool IsPictureTooDark(int32_t brightness_I, int32_t contrast_I);

    CColor GetCustomRGBColorMod(uint32_t type_I, bool readMode_I);
    bool SetCustomRGBColorMod(uint32_t type_I, const CColor& color_I);
    bool IsColorTooDark(const CColor& color_I, uint32_t type_I) const;

private:
    // The scope of one delegate operation's failure: the outermost scope clears the last
    // failure's detail, so that an error box never shows an older failure.
    class CFailureScope {
    public:
        explicit CFailureScope(UiDisplayDelegate& delegate_I);
        ~CFailureScope();
        CFailureScope(const CFailureScope&) = delete;
        CFailureScope& operator=(const CFailureScope&) = delete;

    private:
        UiDisplayDelegate& mDelegate;
    };

    bool Write(uint8_t vcpCode_I, int32_t value_I);
    uint8_t CodeOf(ESetting setting_I) const { return mTraits.SettingCode(setting_I); }
    // On the families that switch colour modes with display presets, selects the mode's preset.
    bool SelectModePreset(int32_t mode_I);
    SSettingState ContinuousState(uint8_t vcpCode_I);
    SSettingState ChoiceState(uint8_t vcpCode_I, std::span<const SEntry> labels_I);
    SSettingState GammaState();
    SSettingState ColorModeState();

    int mOperationDepth = 0;
    int32_t mColorMode = eColorModeTemperature;
    int32_t mSavedColorMode = eColorModeTemperature;
};
