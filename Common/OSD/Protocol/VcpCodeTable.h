#pragma once
// Everything the program knows of each VCP code, in one row per code: its enumerator, the
// name printed for it, how it may be accessed, whether it is continuous, non-continuous or a
// table, its read and write sizes, and the names of its values when it is an enumeration.
// The vocabulary (codes.h), the code information (CodeInfo.h), the option classes the
// capabilities parser makes, and the labels of the settings all read these rows.
//
// 0x00-0xDF follow VESA MCCS; 0xE0-0xF4 are the maker's own codes with the meaning given
// here. The misspelt names are part of the log vocabulary. A code absent from the table, or
// with access NA, is never turned into an option; a null name prints as unsupported.

#include <cstdint>
#include <span>

enum ECodeAccess : uint32_t {
    eAccessReadOnly = 0,
    eAccessWriteOnly = 1,
    eAccessReadWrite = 2,
    eAccessPlaceholder = 3
};
enum ECodeType : uint32_t { eTypeContinuous = 0, eTypeNonContinuous = 1, eTypeTable = 2 };

// The value enumerations of the enumerated codes.
enum class EValueNames : uint8_t {
    None,
    ColorPreset,
    ColorSpace,
    DisplayPreset,
    DisplayScaling,
    Gamma,
    LedBrightness,
    UniformityComp,
};

// clang-format off
// Columns: code, enumerator (vcpC_...), printed name, access (RO, WO, RW; NA: no code
// information), type (C, NC, T; NA), read size, write size, value names.
#define VLR_VCP_CODE_TABLE(X) \
    X(0x00, Undefined, "Undefined", NA, NA, 0, 0, None) \
    X(0x01, Degauss, "Degauss", WO, NC, 0, 2, None) \
    X(0x02, NewControlValue, "New Control Value", RW, NC, 4, 2, None) \
    X(0x03, SoftControls, "Soft Controls", RO, NC, 4, 2, None) \
    X(0x04, RestoreFactoryDefaults, "Restore Factory Defaults", WO, NC, 0, 2, None) \
    X(0x05, RestoreFactoryLuminanceAndContrastDefaults, "Restore Factory Luminance And Contrast Defaults", WO, NC, 0, 2, None) \
    X(0x06, RestoreFactoryGeometryDefaults, "Restore Factory Geometry Defaults", WO, NC, 0, 2, None) \
    X(0x08, RestoreFactoryColorDefaults, "Restore Factory Color Defaults", WO, NC, 0, 2, None) \
    X(0x0A, ResetoreFactoryTVDefaults, "Resetore Factory TV Defaults", WO, NC, 0, 2, None) \
    X(0x0B, ColorTemperatureIncrement, "Color Temperature Increment", RO, NC, 4, 0, None) \
    X(0x0C, ColorTemperatureRequest, "Color Temperature Request", RW, C, 4, 2, None) \
    X(0x0E, Clock, "Clock", RW, C, 4, 2, None) \
    X(0x10, Luminance, "Luminance", RW, C, 4, 2, None) \
    X(0x11, FleshToneEnhancement, "Flesh Tone Enhancement", RW, NC, 4, 2, None) \
    X(0x12, Contrast, "Contrast", RW, C, 4, 2, None) \
    X(0x13, BacklightControl, "Backlight Control", RW, C, 4, 2, None) \
    X(0x14, SelectColorPreset, "Select Color Preset", RW, NC, 4, 2, ColorPreset) \
    X(0x16, VideoGainRed, "Video Gain Red", RW, C, 4, 2, None) \
    X(0x17, UserColorVisionCompensation, "User Color Vision Compensation", RW, C, 4, 2, None) \
    X(0x18, VideoGainGreen, "Video Gain Green", RW, C, 4, 2, None) \
    X(0x1A, VideoGainBlue, "Video Gain Blue", RW, C, 4, 2, None) \
    X(0x1C, Focus, "Focus", RW, C, 4, 2, None) \
    X(0x1E, AdjustSetup, "Adjust Setup", RW, NC, 4, 2, None) \
    X(0x1F, AdjustColorSetup, "Adjust Color Setup", RW, NC, 4, 2, None) \
    X(0x20, HorizontalPositionPhase, "Horizontal Position (Phase)", RW, C, 4, 2, None) \
    X(0x22, HorizontalSize, "Horizontal Size", RW, C, 4, 2, None) \
    X(0x24, HorizontalPincushion, "Horizontal Pincushion", RW, C, 4, 2, None) \
    X(0x26, HorizontalPincushionBalance, "Horizontal Pincushion Balance", RW, C, 4, 2, None) \
    X(0x28, HorizontalConvergenceRB, "Horizontal Convergence R/B", RW, C, 4, 2, None) \
    X(0x29, HorizontalConvergenceMG, "Horizontal Convergence M/G", RW, C, 4, 2, None) \
    X(0x2A, HorizontalLinearity, "Horizontal Linearity", RW, C, 4, 2, None) \
    X(0x2C, HorizontalLinearityBalance, "Horizontal Linearity Balance", RW, C, 4, 2, None) \
    X(0x2E, GrayScaleExpansion, "Gray Scale Expansion", RW, NC, 4, 2, None) \
    X(0x30, VerticalPositionPhase, "Vertical Position (Phase)", RW, C, 4, 2, None) \
    X(0x32, VerticalSize, "Vertical Size", RW, C, 4, 2, None) \
    X(0x34, VerticalPincushion, "Vertical Pincushion", RW, C, 4, 2, None) \
    X(0x36, VerticalPincushionBalance, "Vertical Pincushion Balance", RW, C, 4, 2, None) \
    X(0x38, VerticalConvergenceRB, "Vertical Convergence R/B", RW, C, 4, 2, None) \
    X(0x39, VerticalConvergenceMG, "Vertical Convergence M/G", RW, C, 4, 2, None) \
    X(0x3A, VerticalLinearity, "Vertical Linearity", RW, C, 4, 2, None) \
    X(0x3C, VerticalLinearityBalance, "Vertical Linearity Balance", RW, C, 4, 2, None) \
    X(0x3E, ClockPhase, "ClockPhase", RW, C, 4, 2, None) \
    X(0x40, HorizontalParallelogram, "Horizontal Parallelogram", RW, C, 4, 2, None) \
    X(0x41, VerticalParallelogram, "Vertical Parallelogram", RW, C, 4, 2, None) \
    X(0x42, HorizontalKeystone, "Horizontal Keystone", RW, C, 4, 2, None) \
    X(0x43, VerticalKeystone, "Vertical Keystone", RW, C, 4, 2, None) \
    X(0x44, Rotation, "Rotation", RW, C, 4, 2, None) \
    X(0x46, TopCornerFlare, "Top Corner Flare", RW, C, 4, 2, None) \
    X(0x48, TopCornerHook, "Top Corner Hook", RW, C, 4, 2, None) \
    X(0x4A, BottomCornerFlare, "Bottom Corner Flare", RW, C, 4, 2, None) \
    X(0x4C, BottomCornerHook, "Bottom Corner Hook", RW, C, 4, 2, None) \
    X(0x52, ActiveControl, "Active Control", RO, NC, 4, 2, None) \
    X(0x54, PerformancePreservation, "Performance Preservation", RW, NC, 4, 2, None) \
    X(0x56, HorizontalMoire, "Horizontal Moire", RW, C, 4, 2, None) \
    X(0x58, VerticalMoire, "Vertical Moire", RW, C, 4, 2, None) \
    X(0x59, 6AxisSaturationControlRed, "6 Axis Saturation Control Red", RW, C, 4, 2, None) \
    X(0x5A, 6AxisSaturationControlYellow, "6 Axis Saturation Control Yellow", RW, C, 4, 2, None) \
    X(0x5B, 6AxisSaturationControlGreen, "6 Axis Saturation Control Green", RW, C, 4, 2, None) \
    X(0x5C, 6AxisSaturationControlCyan, "6 Axis Saturation Control Cyan", RW, C, 4, 2, None) \
    X(0x5D, 6AxisSaturationControlBlue, "6 Axis Saturation Control Blue", RW, C, 4, 2, None) \
    X(0x5E, 6AxisSaturationControlMagenta, "6 Axis Saturation Control Magenta", RW, C, 4, 2, None) \
    X(0x60, InputSource, "Input Source", RW, NC, 4, 2, None) \
    X(0x62, AudioSpeakerVolume, "Audio Speaker Volume", RW, NC, 4, 2, None) \
    X(0x63, AudioSpeakerSelect, "Audio Speaker Select", RW, NC, 4, 2, None) \
    X(0x64, AudioMicrophoneVolume, "Audio Microphone Volume", RW, C, 4, 2, None) \
    X(0x66, AmbientLightSensor, "Ambient Light Sensor", RW, NC, 4, 2, None) \
    X(0x6B, BacklightLevelWhite, nullptr, RW, C, 4, 2, None) \
    X(0x6C, VideoBlackLevelRed, "Video Black Level Red", RW, C, 4, 2, None) \
    X(0x6D, BacklightLevelRed, nullptr, RW, C, 4, 2, None) \
    X(0x6E, VideoBlackLevelGreen, "Video Black Level Green", RW, C, 4, 2, None) \
    X(0x6F, BacklightLevelGreen, nullptr, RW, C, 4, 2, None) \
    X(0x70, VideoBlackLevelBlue, "Video Black Level Blue", RW, C, 4, 2, None) \
    X(0x71, BacklightLevelBlue, nullptr, RW, C, 4, 2, None) \
    X(0x72, Gamma, "Gamma", RW, NC, 4, 2, Gamma) \
    X(0x73, LUTSize, "LUT Size", RO, T, 9, 0, None) \
    X(0x74, SinglePointLUTOPeration, "Single Point LUT OPeration", RW, T, 9, 9, None) \
    X(0x75, BlockLUTOperation, "Block LUT Operation", RW, T, 12, 12, None) \
    X(0x76, RemoteProcedureCall, "Remote Procedure Call", WO, T, 0, 19, None) \
    X(0x78, EDIDOperation, "EDID Operation", RO, T, 128, 0, None) \
    X(0x7C, AdjustZoom, "Adjust Zoom", RW, C, 4, 2, None) \
    X(0x82, HorizontalMirrorFlip, "Horizontal Mirror (Flip)", RW, NC, 4, 2, None) \
    X(0x84, VerticalMirrorFlip, "Vertical Mirror (Flip)", RW, NC, 4, 2, None) \
    X(0x86, DisplayScaling, "Display Scaling", RW, NC, 4, 2, DisplayScaling) \
    X(0x87, Sharpness, "Sharpness", RW, C, 4, 2, None) \
    X(0x88, VelocityScanModulation, "Velocity Scan Modulation", RW, C, 4, 2, None) \
    X(0x8A, ColorSaturation, "Color Saturation", RW, C, 4, 2, None) \
    X(0x8B, TVChannelUpDown, "TV-Channel Up/Down", WO, NC, 4, 2, None) \
    X(0x8C, TVSharpness, "TV Sharpness", RW, C, 4, 2, None) \
    X(0x8D, AudioMute, "Audio Mute", RW, NC, 4, 2, None) \
    X(0x8E, TVContrast, "TV Contrast", RW, C, 4, 2, None) \
    X(0x8F, AudioTreble, "Audio Treble", RW, NC, 4, 2, None) \
    X(0x90, Hue, "Hue", RW, C, 4, 2, None) \
    X(0x91, AudioBass, "Audio Bass", RW, NC, 4, 2, None) \
    X(0x92, TVBlackLevelLuminance, "TV Black Level Luminance", RW, C, 4, 2, None) \
    X(0x93, AudioBalance, "Audio Balance", RW, NC, 4, 2, None) \
    X(0x94, AudioProcessorMode, "Audio Processor Mode", RW, NC, 4, 2, None) \
    X(0x95, WindowPositionTLX, "Window Position (TL_X)", RW, C, 4, 2, None) \
    X(0x96, WindowPositionTLY, "Window Position (TL_Y)", RW, C, 4, 2, None) \
    X(0x97, WindowPositionBRX, "Window Position (BR_X)", RW, C, 4, 2, None) \
    X(0x98, WindowPositionBRY, "Window Position (BR_Y)", RW, C, 4, 2, None) \
    X(0x9A, WindowBackground, "Window Background", RW, C, 4, 2, None) \
    X(0x9B, 6AxisHueControlRed, "6 Axis Hue Control Red", RW, C, 4, 2, None) \
    X(0x9C, 6AxisHueControlYellow, "6 Axis Hue Control Yellow", RW, C, 4, 2, None) \
    X(0x9D, 6AxisHueControlGreen, "6 Axis Hue Control Green", RW, C, 4, 2, None) \
    X(0x9E, 6AxisHueControlCyan, "6 Axis Hue Control Cyan", RW, C, 4, 2, None) \
    X(0x9F, 6AxisHueControlBlue, "6 Axis Hue Control Blue", RW, C, 4, 2, None) \
    X(0xA0, 6AxisHueControlMagenta, "6 Axis Hue Control Magenta", RW, C, 4, 2, None) \
    X(0xA2, AutoSetupToggle, "Auto-setup Toggle", WO, NC, 0, 2, None) \
    X(0xA4, WindowControlToggle, "Window Control Toggle", RW, T, 10, 10, None) \
    X(0xA5, WindowSelect, "Window Select", RW, C, 4, 2, None) \
    X(0xA6, WindowCodeA6, nullptr, RW, C, 4, 2, None) \
    X(0xA7, WindowCodeA7, nullptr, RW, C, 4, 2, None) \
    X(0xAA, ScreenOrientation, "Screen Orientation", RO, NC, 4, 0, None) \
    X(0xAC, HorizontalFrequency, "HorizontalFrequency", RO, NC, 4, 0, None) \
    X(0xAE, VerticalFrequency, "Vertical Frequency", RO, NC, 4, 0, None) \
    X(0xB0, 6Settings, "6 Settings", WO, NC, 0, 2, None) \
    X(0xB2, FlatPanelSubPixelLayout, "Flat Panel Sub-Pixel Layout", RO, NC, 4, 0, None) \
    X(0xB4, SourceTimingMode, "Source Timing Mode", RW, T, 5, 5, None) \
    X(0xB5, SourceColorEditing, "Source Color Editing", WO, NC, 0, 2, None) \
    X(0xB6, DisplayTechnologyType, "Display Technology Type", RO, NC, 4, 0, None) \
    X(0xC0, DisplayUsageTime, "Display Usage Time", NA, NA, 0, 0, None) \
    X(0xC2, DisplayDescriptorLength, "Display Descriptor Length", RO, C, 4, 0, None) \
    X(0xC3, TransmitDisplayDescriptor, "Transmit Display Descriptor", RW, T, 256, 256, None) \
    X(0xC4, EnableDisplayOfDisplayDescriptor, "Enable Display of Display Descriptor", RW, NC, 4, 2, None) \
    X(0xC6, ApplicationEnableKey, "Application Enable Key", RO, NC, 4, 0, None) \
    X(0xC8, DisplayControllerType, "Display Controller Type", RO, NC, 4, 0, None) \
    X(0xC9, DisplayFirmwareLevel, "Display Firmware Level", RO, NC, 4, 0, None) \
    X(0xCA, OSD, "OSD", RW, NC, 4, 2, None) \
    X(0xCC, OSDLanguage, "OSD Language", RW, NC, 4, 2, None) \
    X(0xCD, StatusIndicators, "Status Indicators", RW, NC, 4, 2, None) \
    X(0xCE, AuxiliaryDisplaySize, "Auxiliary Display Size", RO, NC, 4, 0, None) \
    X(0xCF, AuxiliaryDisplayData, "Auxiliary Display Data", WO, T, 0, 325, None) \
    X(0xD0, OutputSelect, "Output Select", RW, NC, 4, 2, None) \
    X(0xD2, AssetTag, "Asset Tag", RW, T, 16, 16, None) \
    X(0xD4, StereoVideoMode, "Stereo Video Mode", RW, NC, 4, 2, None) \
    X(0xD6, PowerMode, "Power Mode", RW, NC, 4, 2, None) \
    X(0xD7, AuxiliaryPowerOutput, "Auxiliary Power Output", RW, NC, 4, 2, None) \
    X(0xDA, ScanMode, "Scan Mode", RW, NC, 4, 2, None) \
    X(0xDB, ImageMode, "Image Mode", RW, NC, 4, 2, None) \
    X(0xDC, DisplayApplication, "Display Application", RW, NC, 4, 2, None) \
    X(0xDE, ScratchPad, "Scratch Pad", RW, NC, 4, 2, None) \
    X(0xDF, VCPVersion, "VCP Version", RO, NC, 4, 0, None) \
    X(0xE0, UniformityCompensation, "Uniformity Compensation", RW, NC, 4, 2, UniformityComp) \
    X(0xE1, BurnInMode, "Burn in Mode", RW, NC, 4, 2, None) \
    X(0xE2, AspectRatio, "Aspect Ratio", RW, NC, 4, 2, DisplayScaling) \
    X(0xE3, ColorSpace, "Color Space", RW, NC, 4, 2, ColorSpace) \
    X(0xE4, ColorOffsetRed, "Color Offset Red", RW, C, 4, 2, None) \
    X(0xE5, ColorOffsetGreen, "Color Offset Green", RW, C, 4, 2, None) \
    X(0xE6, ColorOffsetBlue, "Color Offset Blue", RW, C, 4, 2, None) \
    X(0xE7, BacklightSensorControl, "Backlight Sensor Control", RW, NC, 4, 2, None) \
    X(0xE8, DynamicContrast, "Dynamic Contrast", RW, NC, 4, 2, None) \
    X(0xE9, EnergySmart, "Energy Smart", RW, NC, 4, 2, None) \
    X(0xEA, LCDConditioning, "LCD Conditioning", WO, NC, 0, 2, None) \
    X(0xEB, FanControl, "Fan Control", RW, NC, 4, 2, None) \
    X(0xEC, ModelID, "Model ID", RW, NC, 4, 2, None) \
    X(0xED, FanControlScenario, "Fan Control Scenario", RW, NC, 4, 2, None) \
    X(0xEE, AutoPowerDown, "Auto Power Down", RW, NC, 4, 2, None) \
    X(0xEF, LedBrightness, "Led Brightness", RW, NC, 4, 2, LedBrightness) \
    X(0xF0, DisplayPresets, "Display Presets", RW, NC, 4, 2, DisplayPreset) \
    X(0xF2, DisplayInfo, "Display Info", RO, T, 70, 0, None) \
    X(0xF3, FanSpeed, "Fan Speed", RW, NC, 4, 2, None) \
    X(0xF4, BatteryMode, "Battery Mode", RW, NC, 4, 2, None)

// Rows that replace a code's row on the models that use it otherwise. Columns: variant,
// code, access, type, read size, write size, value names. 0x72 is deliberately continuous on
// the fine-scale models although its values have names: they take gamma x 10, not a choice.
#define VLR_VCP_CODE_VARIANTS(X) \
    X(FineScaleGamma, 0x72, RW, C, 4, 2, Gamma) \
    X(ColorOffsetRedIsColorPreset, 0xE4, RW, NC, 4, 2, ColorPreset)

// Value names of the enumerated codes. Columns: value, enumerator, printed text (nullptr:
// none). What the dialogs call the values, and in which order, is the settings' (SettingCodes).
// VCP 0x14. Value 11 is 5700 K on these displays although MCCS reserves it for a user preset;
// it stays last, out of order, as the firmware's list has it.
#define VLR_COLOR_PRESET_VALUES(X) \
    X(0, cpc_Reserved, "Reserved") \
    X(1, cpc_sRGB, "sRGB") \
    X(2, cpc_DisplayNative, "Display Native") \
    X(4, cpc_5000K, "5000k") \
    X(5, cpc_6500K, "6500k") \
    X(6, cpc_7500K, "7500k") \
    X(8, cpc_9300K, "9300k") \
    X(9, cpc_10000K, "10000k") \
    X(11, cpc_5700K, "5700k")

// VCP 0xE3. 5 and 6 are the firmware's Rec 2020 and EBU, which have no printed text; the
// combined sRGB/Rec 709 entry is labelled sRGB on displays that do not also offer plain sRGB.
#define VLR_COLOR_SPACE_VALUES(X) \
    X(0, csc_sRGB, "sRGB") \
    X(1, csc_AdobeRGB, "AdobeRGB") \
    X(2, csc_sRGBRec709, "sRGB/Rec 709") \
    X(3, csc_Rec709, "Rec 709") \
    X(4, csc_DCI, "DCI") \
    X(5, csc_Rec2020, nullptr) \
    X(6, csc_EBU, nullptr) \
    X(7, csc_Native, "Native") \
    X(8, csc_XRite1, "XRite1") \
    X(9, csc_XRite2, "Xrite2")

// VCP 0xF0.
#define VLR_DISPLAY_PRESET_VALUES(X) \
    X(0, dpc_Native, "Native") \
    X(1, dpc_Standard, "Standard") \
    X(2, dpc_Multimedia, "Multimedia") \
    X(3, dpc_Movie, "Movie") \
    X(4, dpc_Game, "Game") \
    X(5, dpc_XRitePreset1, "XRite Preset 1") \
    X(6, dpc_XRitePreset2, "XRite Preset 2") \
    X(7, dpc_ColorTemp, "Color Temp") \
    X(8, dpc_ColorSpace, "Color Space") \
    X(9, dpc_CustomColor, "Custom Color") \
    X(11, dpc_XRite1_bj, "XRite1_bj") \
    X(12, dpc_XRite2_bj, "XRite2_bj")

// VCP 0x86, and 0xE2, which shares its values.
#define VLR_DISPLAY_SCALING_VALUES(X) \
    X(0, dsc_Reserved, "Reserved") \
    X(1, dsc_NoScaling, "No Scaling/Full Image/1 to 1") \
    X(2, dsc_MaxImage, "Max Image/1 to 1") \
    X(3, dsc_MaxVerticalImageNoAR, "Max Vertical Image No AR/Aspect Mode") \
    X(4, dsc_MaxHorizontalImageNoAR, "Max Horizontal Image No AR") \
    X(5, dsc_MaxVerticalImageWithAR, "Max Vertical Image with AR") \
    X(6, dsc_MaxHorizontalImageWithAR, "Max Horizontal Image with AR") \
    X(7, dsc_FullMode, "Full Mode") \
    X(8, dsc_ZoomMode, "Zoom Mode") \
    X(9, dsc_SqueezeMode, "Squeeze Mode") \
    X(10, dsc_Variable, "Variable")

// VCP 0x72. The dialogs label gamma by the family's scale, not by these values.
#define VLR_GAMMA_VALUES(X) \
    X(0, gc_1_9, "1.9") \
    X(1, gc_2_2, "2.2/1.9") \
    X(2, gc_2_4, "2.4/2.2") \
    X(3, gc_FollowColorSpace, "Follow Color Space/2.4")

// VCP 0xEF.
#define VLR_LED_BRIGHTNESS_VALUES(X) \
    X(0, lbc_Off, "LED Brightness off") \
    X(1, lbc_Low, "LED Brightness low") \
    X(2, lbc_Medium, "LED Brightness medium") \
    X(3, lbc_High, "LED Brightness high")

// VCP 0xE0.
#define VLR_UNIFORMITY_COMP_VALUES(X) \
    X(0, ucc_None, "None") \
    X(1, ucc_Table1, "Uniformity Table 1") \
    X(2, ucc_Table2, "Uniformity Table 2") \
    X(3, ucc_Table3, "Uniformity Table 3")
// clang-format on

// One row of the code table, as the program reads it.
struct SVcpCodeRow {
    uint8_t code = 0;
    const char* name = nullptr;  // nullptr: the code has no printed name
    bool hasInfo = false;        // false: never an option
    uint32_t access = eAccessPlaceholder;
    uint32_t type = eTypeNonContinuous;
    uint16_t readSize = 0;
    uint16_t writeSize = 0;
    EValueNames values = EValueNames::None;
};

// The per-model variants of the table in effect for one display.
struct SCodeVariants {
    bool fineScaleGamma = false;               // 0x72 is a continuous fine scale
    bool colorOffsetRedIsColorPreset = false;  // 0xE4 carries colour-temperature presets
};

// Every row, in code order, without variants.
std::span<const SVcpCodeRow> VcpCodeRows();
// The row of a code (with the variants in effect); nullptr when the table has none.
const SVcpCodeRow* FindVcpCodeRow(uint8_t code_I, const SCodeVariants& variants_I = {});

// One value of an enumerated code.
struct SValueNameRow {
    uint8_t value = 0;
    const char* text = nullptr;  // nullptr: no printed text
};
std::span<const SValueNameRow> ValueNameRows(EValueNames values_I);
// The enumeration's type name as log lines print it ("colorPresetCode").
const char* ValueNamesTypeName(EValueNames values_I);
