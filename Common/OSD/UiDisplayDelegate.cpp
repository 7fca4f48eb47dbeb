#include "UiDisplayDelegate.h"

#include <algorithm>
#include <cmath>

#include "Assert.h"
#include "Clock.h"
#include "DebugLog.h"
#include "SettingTable.h"
#include "StringIds.h"
#include "StringUtilities.h"
#include "codes.h"

namespace {

// Battery mode choices and the 0xF4 values that carry them.

// The fine gamma scale runs from 0.5 to 4.0.
constexpr int32_t kFineGammaLowest = 5;
constexpr int32_t kFineGammaHighest = 40;

}  // namespace

UiDisplayDelegate::UiDisplayDelegate(std::shared_ptr<Connector> connector_I, uint16_t edidNumber_I)
    : CDisplay(std::move(connector_I), edidNumber_I) {}

UiDisplayDelegate::CFailureScope::CFailureScope(UiDisplayDelegate& delegate_I) : mDelegate(delegate_I) {
    if (mDelegate.mOperationDepth++ == 0) {
        mDelegate.ClearLastFailure();
    }
}

UiDisplayDelegate::CFailureScope::~CFailureScope() {
    --mDelegate.mOperationDepth;
}

bool UiDisplayDelegate::Write(uint8_t vcpCode_I, int32_t value_I) {
    CFailureScope scope(*this);
    if (vcpCode_I == 0 || !HasOption(vcpCode_I)) {
        NoteFailure(vcpCode_I == 0 ? std::string("Setting") : VCPCodeName(vcpCode_I),
                    "not offered by this display");
        return false;
    }
    // Deliberate: a set only goes out for an option whose value was read, so a setter reads
    // the option first rather than let the user's change be dropped.
    GetVCPValue(vcpCode_I, false);
    if (VCPOptionPtr option = Option(vcpCode_I); option && option->HasError()) {
        // That read failed, so nothing can be written: a failure, not a change already made.
        NoteFailure(option);
        option->ClearError();
        return false;
    }
    return SetVCPValue(vcpCode_I, value_I);
}

// ---- save, revert, reset ----

bool UiDisplayDelegate::Save() {
    CFailureScope scope(*this);
    mSavedColorMode = mColorMode;
    return CDisplay::Save();
}

bool UiDisplayDelegate::Revert() {
    CFailureScope scope(*this);
    const bool written = CDisplay::Revert();
    mColorMode = mSavedColorMode;
    return written;
}

void UiDisplayDelegate::ResetData(bool allOptions_I) {
    CDisplay::ResetData(allOptions_I);
    mColorMode = eColorModeTemperature;
    mSavedColorMode = eColorModeTemperature;
}

bool UiDisplayDelegate::FactoryReset() {
    CFailureScope scope(*this);
    if (!SetVCPValue(vcpC_RestoreFactoryDefaults, 1)) {
        return false;
    }
    if (mTraits.restartsAfterFactoryReset) {
        Clock::Pause(mTraits.waits.scalerRestart);
    }
    ResetData(true);
    return true;
}

bool UiDisplayDelegate::ResetColor() {
    CFailureScope scope(*this);
    const SVCPValue restore = GetVCPValue(vcpC_RestoreFactoryColorDefaults, true);
    if (!restore.valid) {
        NoteFailure(VCPCodeName(vcpC_RestoreFactoryColorDefaults),
                    restore.error.empty() ? "not supported by this display" : restore.error);
        // The line names SetResetColor on purpose: it is the trace's established wording.
        DLog("UiDisplayDelegate::SetResetColor - not supported\n");
        return false;
    }
    const bool written = SetVCPValue(vcpC_RestoreFactoryColorDefaults, 1);
    ResetData(true);
    if (!written) {
        VLR_ASSERT_FAIL("\"FAILED vcpC_RestoreFactoryColorDefaults - should have worked!\"");
        return false;
    }
    return true;
}

// ---- the setters whose mapping is fixed ----

bool UiDisplayDelegate::SetBrightness(int32_t value_I) {
    return Write(CodeOf(ESetting::Brightness), value_I);
}
bool UiDisplayDelegate::SetContrast(int32_t value_I) {
    return Write(CodeOf(ESetting::Contrast), value_I);
}

bool UiDisplayDelegate::SetGammaValue(int32_t value_I) {
    if (mTraits.gamma != EGammaScale::FineScale) {
        return false;
    }
    return Write(CodeOf(ESetting::Gamma), value_I);
}

bool UiDisplayDelegate::SetGamma(int32_t choice_I) {
    switch (mTraits.gamma) {
        case EGammaScale::TwoChoices:
            return (choice_I == 1 || choice_I == 2) && Write(CodeOf(ESetting::Gamma), choice_I);
        // The fine scale takes the value as it is.
        case EGammaScale::FineScale: return Write(CodeOf(ESetting::Gamma), choice_I);
        case EGammaScale::ThreeChoices:
            return choice_I >= 0 && choice_I <= 2 && Write(CodeOf(ESetting::Gamma), choice_I + 1);
        case EGammaScale::None: break;
    }
    return false;
}

bool UiDisplayDelegate::SetSharpness(int32_t value_I) {
    return Write(vcpC_Sharpness, value_I);
}
bool UiDisplayDelegate::SetUniformityCompensation(int32_t value_I) {
    return Write(vcpC_UniformityCompensation, value_I);
}

bool UiDisplayDelegate::SetDynamicContrast(int32_t on_I) {
    CFailureScope scope(*this);
    if (on_I != 0 && mTraits.dynamicContrastExcludesUniformity) {
        // Best effort: if uniformity stays on, the firmware refuses dynamic contrast and the
        // write below reports it.
        Write(vcpC_UniformityCompensation, 0);
    }
    return Write(vcpC_DynamicContrast, on_I);
}

bool UiDisplayDelegate::SetEnergySmart(int32_t on_I) {
    return Write(vcpC_EnergySmart, on_I);
}
bool UiDisplayDelegate::SetLCDConditioning(int32_t value_I) {
    return Write(vcpC_LCDConditioning, value_I);
}
bool UiDisplayDelegate::SetAutoPowerDown(int32_t on_I) {
    return Write(vcpC_AutoPowerDown, on_I);
}

bool UiDisplayDelegate::SetPowerLEDBrightness(int32_t value_I) {
    if (mTraits.fixedPowerLed) {
        return false;
    }
    return Write(vcpC_LedBrightness, value_I);
}

bool UiDisplayDelegate::SetScanMode(int32_t value_I) {
    if (CodeOf(ESetting::ScanMode) == 0 || (value_I != 0 && value_I != 1)) {
        return false;
    }
    return Write(vcpC_ScanMode, value_I);
}

bool UiDisplayDelegate::SetFanSpeed(int32_t fanSpeed_I) {
    VLR_ASSERT(fanSpeed_I >= EFanSpeed::eFanSpeed_LowSpeed && fanSpeed_I <= EFanSpeed::eFanSpeed_Auto);
    return Write(vcpC_FanSpeed, fanSpeed_I == eFanSpeed_Auto ? 1 : 0);
}

bool UiDisplayDelegate::SetBatteryMode(int32_t choice_I) {
    CFailureScope scope(*this);
    const SVCPValue current = GetVCPValue(vcpC_BatteryMode, false);
    if (!current.valid) {
        NoteFailure(VCPCodeName(vcpC_BatteryMode),
                    current.error.empty() ? "not readable on this display" : current.error);
        return false;
    }
    const std::optional<int32_t> wire = WireValueOf(ESetting::BatteryMode, choice_I);
    if (!wire) {
        NoteFailure(VCPCodeName(vcpC_BatteryMode), "no such choice");
        return false;
    }
    return Write(vcpC_BatteryMode, *wire);
}

bool UiDisplayDelegate::SetOSDLanguage(int32_t value_I) {
    return Write(vcpC_OSDLanguage, value_I);
}

// ---- colour setting ----

bool UiDisplayDelegate::SelectModePreset(int32_t mode_I) {
    const uint8_t code = CodeOf(ESetting::ColorSettingMode);
    if (code == 0 || !HasOption(code)) {
        return true;  // the mode is the delegate's own
    }
    return Write(code, DisplayPresetForColorMode(mode_I));
}

int32_t UiDisplayDelegate::ColorSettingMode() {
    const uint8_t code = CodeOf(ESetting::ColorSettingMode);
    if (code != 0 && HasOption(code)) {
        SVCPValue preset = GetVCPValue(code, false);
        if (preset.valid) {
            return ColorModeForDisplayPreset(preset.value);
        }
    }
    return mColorMode;
}

bool UiDisplayDelegate::SetColorSettingMode(int32_t mode_I) {
    CFailureScope scope(*this);
    if (mode_I != eColorModeTemperature && mode_I != eColorModeSpace && mode_I != eColorModeCustom) {
        return false;
    }
    if (!SelectModePreset(mode_I)) {
        return false;
    }
    if (mode_I == eColorModeCustom && mTraits.customColorExcludesUniformity &&
        HasOption(vcpC_UniformityCompensation) &&
        GetVCPValue(vcpC_UniformityCompensation, false).value != 0) {
        if (!Write(vcpC_UniformityCompensation, 0)) {
            return false;
        }
    }
    mColorMode = mode_I;
    return true;
}

bool UiDisplayDelegate::SetColorTemperature(int32_t value_I) {
    CFailureScope scope(*this);
    if (!SelectModePreset(eColorModeTemperature) || !Write(CodeOf(ESetting::ColorTemperature), value_I)) {
        return false;
    }
    mColorMode = eColorModeTemperature;
    return true;
}

bool UiDisplayDelegate::SetColorSpace(int32_t value_I) {
    CFailureScope scope(*this);
    if (!SelectModePreset(eColorModeSpace) || !Write(CodeOf(ESetting::ColorSpace), value_I)) {
        return false;
    }
    mColorMode = eColorModeSpace;
    return true;
}

bool UiDisplayDelegate::SetAspectRatio(int32_t value_I) {
    return Write(CodeOf(ESetting::AspectRatio), value_I);
}

// ---- what the dialogs show ----

bool SSettingState::Offers(int32_t value_I) const {
    if (!entries.empty()) {
        return std::any_of(entries.begin(), entries.end(),
                           [&](const SEntry& entry_I) { return entry_I.value == value_I; });
    }
    return value_I >= range.minimum && value_I <= range.maximum;
}

SSettingState UiDisplayDelegate::ContinuousState(uint8_t vcpCode_I) {
    SSettingState state;
    VCPOptionPtr option = vcpCode_I != 0 ? Option(vcpCode_I) : nullptr;
    if (!option) {
        return state;
    }
    state.supported = true;
    state.writable = option->Info().Writable();
    if (option->Info().Readable()) {
        SVCPValue value = GetVCPValue(vcpCode_I, false);
        state.valid = value.valid;
        state.range = value.range;
        state.value = value.value;
    } else {
        state.valid = true;
    }
    return state;
}

SSettingState UiDisplayDelegate::ChoiceState(uint8_t vcpCode_I, std::span<const SEntry> labels_I) {
    SSettingState state = ContinuousState(vcpCode_I);
    if (!state.supported) {
        return state;
    }
    VCPOptionPtr option = Option(vcpCode_I);
    for (const SEntry& label : labels_I) {
        const bool offered = option->IsValidValue(label.value);
        const bool labelShown =
            std::any_of(state.entries.begin(), state.entries.end(),
                        [&label](const SEntry& e) { return e.stringId == label.stringId; });
        if (offered && !labelShown) {
            state.entries.push_back(label);
        }
    }
    return state;
}

SSettingState UiDisplayDelegate::GammaState() {
    const EGammaScale scale = mTraits.gamma;
    if (scale == EGammaScale::None) {
        return {};
    }
    SSettingState state = ContinuousState(CodeOf(ESetting::Gamma));
    if (!state.supported) {
        return state;
    }
    switch (scale) {
        case EGammaScale::FineScale:
            for (int32_t v = std::max(state.range.minimum, kFineGammaLowest);
                 v <= std::min(state.range.maximum, kFineGammaHighest); ++v) {
                const uint32_t id = v == kFineGammaHighest
                                        ? StringId::kGammaFine4_0
                                        : StringId::kGammaFine0_5 + static_cast<uint32_t>(v - 5);
                state.entries.push_back({id, v});
            }
            break;
        case EGammaScale::TwoChoices:
            state.entries = {{StringId::kGamma2_2, 1}, {StringId::kGamma2_4, 2}};
            break;
        case EGammaScale::ThreeChoices:
            state.entries = {{StringId::kGamma1_9, 0}, {StringId::kGamma2_2, 1}, {StringId::kGamma2_4, 2}};
            state.value -= 1;  // the code holds choice + 1
            break;
        case EGammaScale::None: break;
    }
    return state;
}

SSettingState UiDisplayDelegate::ColorModeState() {
    SSettingState state;
    if (HasOption(CodeOf(ESetting::ColorTemperature))) {
        state.entries.push_back({StringId::kColorTemperatureMode, eColorModeTemperature});
    }
    if (HasOption(vcpC_ColorSpace)) {
        state.entries.push_back({StringId::kColorSpaceMode, eColorModeSpace});
    }
    if (HasOption(vcpC_VideoGainRed) && HasOption(vcpC_VideoGainGreen) && HasOption(vcpC_VideoGainBlue)) {
        state.entries.push_back({StringId::kCustomColorMode, eColorModeCustom});
    }
    state.supported = !state.entries.empty();
    state.writable = state.supported;
    state.valid = state.supported;
    state.value = ColorSettingMode();
    return state;
}

SSettingState UiDisplayDelegate::GetSetting(ESetting setting_I) {
    // The settings with rules of their own; the rest as their row says.
    switch (setting_I) {
        case ESetting::ColorSettingMode: return ColorModeState();
        case ESetting::Gamma: return GammaState();
        case ESetting::AspectRatio:
            return ChoiceState(CodeOf(setting_I), AspectRatioLabels(CodeOf(setting_I)));
        case ESetting::PowerLedBrightness:
            if (mTraits.fixedPowerLed) {
                return {};
            }
            break;
        default: break;
    }
    const SSettingRow& row = SettingRowOf(setting_I);
    if (!row.wireValues.empty()) {
        // The display's values are not the choices: read as they are, shown as the choices.
        SSettingState state = ContinuousState(CodeOf(setting_I));
        if (state.supported) {
            state.entries.assign(row.labels.begin(), row.labels.end());
            state.value = ChoiceOfWireValue(setting_I, state.value).value_or(-1);
        }
        return state;
    }
    if (!row.labels.empty()) {
        return ChoiceState(CodeOf(setting_I), row.labels);
    }
    if (row.kind == ESettingKind::Choice) {
        VLR_ASSERT_FAIL("a choice without its labels");
        return {};
    }
    return ContinuousState(CodeOf(setting_I));
}

bool UiDisplayDelegate::SetSetting(ESetting setting_I, int32_t value_I) {
    CFailureScope scope(*this);
    // The settings with rules of their own; the rest write the value to the family's code.
    switch (setting_I) {
        case ESetting::ColorSettingMode: return SetColorSettingMode(value_I);
        case ESetting::ColorTemperature: return SetColorTemperature(value_I);
        case ESetting::ColorSpace: return SetColorSpace(value_I);
        case ESetting::Gamma:
            return mTraits.gamma == EGammaScale::FineScale ? SetGammaValue(value_I) : SetGamma(value_I);
        case ESetting::PowerLedBrightness: return SetPowerLEDBrightness(value_I);
        case ESetting::DynamicContrast: return SetDynamicContrast(value_I);
        case ESetting::FanSpeed: return SetFanSpeed(value_I);
        case ESetting::BatteryMode: return SetBatteryMode(value_I);
        case ESetting::ScanMode: return SetScanMode(value_I);
        default: return Write(CodeOf(setting_I), value_I);
    }
}

std::string UiDisplayDelegate::CustomColorText() {
    CColor gain = GetCustomRGBColorMod(eColorModGain, false);
    if (!gain.IsValid()) {
        return {};
    }
    return StringPrintf("%u, %u, %u", gain.Red(), gain.Green(), gain.Blue());
}

std::string UiDisplayDelegate::FirmwareVersionText() {
    if (!FirmwareVersion().IsZero()) {
        return FirmwareVersion().ToString();
    }
    // The level as the capabilities' 0xC9 option read it: maximum and current joined.
    if (HasOption(vcpC_DisplayFirmwareLevel)) {
        SVCPValue level = GetVCPValue(vcpC_DisplayFirmwareLevel, false);
        if (level.valid) {
            const uint32_t joined = static_cast<uint32_t>(level.value);
            return FirmwareVersionFromVcpC9(static_cast<uint16_t>(joined & 0xFFFF),
                                            static_cast<uint16_t>(joined >> 16))
                .ToString();
        }
    }
    return {};
}

bool UiDisplayDelegate::HasUnsavedChanges() const {
    if (mColorMode != mSavedColorMode) {
        return true;
    }
    return std::any_of(mVCPOptionsMap.begin(), mVCPOptionsMap.end(), [](const auto& entry) {
        return entry.second && !entry.second->Info().WriteOnly() && entry.second->HasOriginal() &&
               entry.second->IsChanged();
    });
}

std::vector<uint32_t> UiDisplayDelegate::PowerIncreasingChanges() const {
    std::vector<uint32_t> kinds;
    if (VCPOptionPtr temperature = Option(CodeOf(ESetting::ColorTemperature))) {
        const uint32_t now = ColorTemperatureKelvin(temperature->GetValue());
        const uint32_t before = ColorTemperatureKelvin(temperature->GetOriginal());
        if (temperature->HasOriginal() && now != 0 && before != 0 && now > before) {
            kinds.push_back(ePowerKindColorTemperature);
        }
    }
    if (VCPOptionPtr brightness = Option(CodeOf(ESetting::Brightness))) {
        if (brightness->HasOriginal() && brightness->GetValue() > brightness->GetOriginal()) {
            kinds.push_back(ePowerKindBrightness);
        }
    }
    return kinds;
}

bool UiDisplayDelegate::IsPictureTooDark(int32_t brightness_I, int32_t contrast_I) {
    const SSettingState brightness = GetSetting(ESetting::Brightness);
    const SSettingState contrast = GetSetting(ESetting::Contrast);
    if (!brightness.valid || brightness.range.maximum <= 0) {
        return false;
    }
    // Contrast at or above the middle of its range passes the full white level through.
    double level = std::clamp(static_cast<double>(brightness_I) / brightness.range.maximum, 0.0, 1.0);
    if (contrast.valid && contrast.range.maximum > 0) {
        level *= std::clamp(2.0 * contrast_I / contrast.range.maximum, 0.0, 1.0);
    }
    const uint8_t white = static_cast<uint8_t>(std::lround(255.0 * level));
    return ::IsColorTooDark(CColor::FromRGB(white, white, white), eColorModGain, mTraits.tooDark);
}

// ---- custom colour ----

// The colour-mod log lines name CDisplay on purpose: it is the trace's established wording.
CColor UiDisplayDelegate::GetCustomRGBColorMod(uint32_t type_I, bool readMode_I) {
    SColorModCodes codes{};
    if (!ColorModCodes(type_I, codes)) {
        DLog("CDisplay::GetCustomRGBColorMod(%s) error, problem with type of color mod\n",
             ColorModTypeName(type_I));
        return {};
    }
    SVCPValue red = GetVCPValue(codes.red, readMode_I);
    SVCPValue green = GetVCPValue(codes.green, readMode_I);
    SVCPValue blue = GetVCPValue(codes.blue, readMode_I);
    if (!red.valid || !green.valid || !blue.valid) {
        DLog("CDisplay::GetCustomRGBColorMod(%s) error, option not supported\n", ColorModTypeName(type_I));
        return {};
    }
    return CColor::FromRGB(static_cast<uint8_t>(red.value), static_cast<uint8_t>(green.value),
                           static_cast<uint8_t>(blue.value));
}

bool UiDisplayDelegate::SetCustomRGBColorMod(uint32_t type_I, const CColor& color_I) {
    CFailureScope scope(*this);
    if (!AllowsRawColorValues()) {
        VLR_ASSERT_AS(color_I.Red() <= MAX_COLOR_RGB_PERCENT,
                      "color_I.Red() >= 0 && color_I.Red() <= MAX_COLOR_RGB_PERCENT");
        VLR_ASSERT_AS(color_I.Green() <= MAX_COLOR_RGB_PERCENT,
                      "color_I.Green() >= 0 && color_I.Green() <= MAX_COLOR_RGB_PERCENT");
        VLR_ASSERT_AS(color_I.Blue() <= MAX_COLOR_RGB_PERCENT,
                      "color_I.Blue() >= 0 && color_I.Blue() <= MAX_COLOR_RGB_PERCENT");
    }
    SColorModCodes codes{};
    const char* name = ColorModTypeName(type_I);
    if (!ColorModCodes(type_I, codes)) {
        DLog("CDisplay::SetCustomRGBColorMod(%s) error, problem with type of color mod\n", name);
        return false;
    }
    if (!Write(codes.red, color_I.Red())) {
        DLog("CDisplay::SetCustomRGBColorMod(%s) RED error\n", name);
        return false;
    }
    if (!Write(codes.green, color_I.Green())) {
        DLog("CDisplay::SetCustomRGBColorMod(%s) GREEN error\n", name);
        return false;
    }
    if (!Write(codes.blue, color_I.Blue())) {
        DLog("CDisplay::SetCustomRGBColorMod(%s) BLUE error\n", name);
        return false;
    }
    return true;
}

bool UiDisplayDelegate::IsColorTooDark(const CColor& color_I, uint32_t type_I) const {
    return ::IsColorTooDark(color_I, type_I, mTraits.tooDark);
}
