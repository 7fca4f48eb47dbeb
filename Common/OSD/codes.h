#pragma once
// The vocabulary the program speaks to a display: MCCS VCP codes, DDC/CI command codes and
// the value sets of the enumerated VCP options, each with the text printed for it in the
// trace and in option dumps. (The user interface takes its labels from the string tables.)

#include <cstdint>
#include <string>

// VCP codes with their printed names. 0x00-0xDF follow VESA MCCS; 0xE0-0xF4 are the maker's
// own codes with the meaning given here. The misspelt names are part of the log vocabulary.
#define VLR_VCP_CODE_NAMES(X)                                                                              \
    X(0x00, Undefined, "Undefined")                                                                        \
    X(0x01, Degauss, "Degauss")                                                                            \
    X(0x02, NewControlValue, "New Control Value")                                                          \
    X(0x03, SoftControls, "Soft Controls")                                                                 \
    X(0x04, RestoreFactoryDefaults, "Restore Factory Defaults")                                            \
    X(0x05, RestoreFactoryLuminanceAndContrastDefaults, "Restore Factory Luminance And Contrast Defaults") \
    X(0x06, RestoreFactoryGeometryDefaults, "Restore Factory Geometry Defaults")                           \
    X(0x08, RestoreFactoryColorDefaults, "Restore Factory Color Defaults")                                 \
    X(0x0A, ResetoreFactoryTVDefaults, "Resetore Factory TV Defaults")                                     \
    X(0x0B, ColorTemperatureIncrement, "Color Temperature Increment")                                      \
    X(0x0C, ColorTemperatureRequest, "Color Temperature Request")                                          \
    X(0x0E, Clock, "Clock")                                                                                \
    X(0x10, Luminance, "Luminance")                                                                        \
    X(0x11, FleshToneEnhancement, "Flesh Tone Enhancement")                                                \
    X(0x12, Contrast, "Contrast")                                                                          \
    X(0x13, BacklightControl, "Backlight Control")                                                         \
    X(0x14, SelectColorPreset, "Select Color Preset")                                                      \
    X(0x16, VideoGainRed, "Video Gain Red")                                                                \
    X(0x17, UserColorVisionCompensation, "User Color Vision Compensation")                                 \
    X(0x18, VideoGainGreen, "Video Gain Green")                                                            \
    X(0x1A, VideoGainBlue, "Video Gain Blue")                                                              \
    X(0x1C, Focus, "Focus")                                                                                \
    X(0x1E, AdjustSetup, "Adjust Setup")                                                                   \
    X(0x1F, AdjustColorSetup, "Adjust Color Setup")                                                        \
    X(0x20, HorizontalPositionPhase, "Horizontal Position (Phase)")                                        \
    X(0x22, HorizontalSize, "Horizontal Size")                                                             \
    X(0x24, HorizontalPincushion, "Horizontal Pincushion")                                                 \
    X(0x26, HorizontalPincushionBalance, "Horizontal Pincushion Balance")                                  \
    X(0x28, HorizontalConvergenceRB, "Horizontal Convergence R/B")                                         \
    X(0x29, HorizontalConvergenceMG, "Horizontal Convergence M/G")                                         \
    X(0x2A, HorizontalLinearity, "Horizontal Linearity")                                                   \
    X(0x2C, HorizontalLinearityBalance, "Horizontal Linearity Balance")                                    \
    X(0x2E, GrayScaleExpansion, "Gray Scale Expansion")                                                    \
    X(0x30, VerticalPositionPhase, "Vertical Position (Phase)")                                            \
    X(0x32, VerticalSize, "Vertical Size")                                                                 \
    X(0x34, VerticalPincushion, "Vertical Pincushion")                                                     \
    X(0x36, VerticalPincushionBalance, "Vertical Pincushion Balance")                                      \
    X(0x38, VerticalConvergenceRB, "Vertical Convergence R/B")                                             \
    X(0x39, VerticalConvergenceMG, "Vertical Convergence M/G")                                             \
    X(0x3A, VerticalLinearity, "Vertical Linearity")                                                       \
    X(0x3C, VerticalLinearityBalance, "Vertical Linearity Balance")                                        \
    X(0x3E, ClockPhase, "ClockPhase")                                                                      \
    X(0x40, HorizontalParallelogram, "Horizontal Parallelogram")                                           \
    X(0x41, VerticalParallelogram, "Vertical Parallelogram")                                               \
    X(0x42, HorizontalKeystone, "Horizontal Keystone")                                                     \
    X(0x43, VerticalKeystone, "Vertical Keystone")                                                         \
    X(0x44, Rotation, "Rotation")                                                                          \
    X(0x46, TopCornerFlare, "Top Corner Flare")                                                            \
    X(0x48, TopCornerHook, "Top Corner Hook")                                                              \
    X(0x4A, BottomCornerFlare, "Bottom Corner Flare")                                                      \
    X(0x4C, BottomCornerHook, "Bottom Corner Hook")                                                        \
    X(0x52, ActiveControl, "Active Control")                                                               \
    X(0x54, PerformancePreservation, "Performance Preservation")                                           \
    X(0x56, HorizontalMoire, "Horizontal Moire")                                                           \
    X(0x58, VerticalMoire, "Vertical Moire")                                                               \
    X(0x59, 6AxisSaturationControlRed, "6 Axis Saturation Control Red")                                    \
    X(0x5A, 6AxisSaturationControlYellow, "6 Axis Saturation Control Yellow")                              \
    X(0x5B, 6AxisSaturationControlGreen, "6 Axis Saturation Control Green")                                \
    X(0x5C, 6AxisSaturationControlCyan, "6 Axis Saturation Control Cyan")                                  \
    X(0x5D, 6AxisSaturationControlBlue, "6 Axis Saturation Control Blue")                                  \
    X(0x5E, 6AxisSaturationControlMagenta, "6 Axis Saturation Control Magenta")                            \
    X(0x60, InputSource, "Input Source")                                                                   \
    X(0x62, AudioSpeakerVolume, "Audio Speaker Volume")                                                    \
    X(0x63, AudioSpeakerSelect, "Audio Speaker Select")                                                    \
    X(0x64, AudioMicrophoneVolume, "Audio Microphone Volume")                                              \
    X(0x66, AmbientLightSensor, "Ambient Light Sensor")                                                    \
    X(0x6C, VideoBlackLevelRed, "Video Black Level Red")                                                   \
    X(0x6E, VideoBlackLevelGreen, "Video Black Level Green")                                               \
    X(0x70, VideoBlackLevelBlue, "Video Black Level Blue")                                                 \
    X(0x72, Gamma, "Gamma")                                                                                \
    X(0x73, LUTSize, "LUT Size")                                                                           \
    X(0x74, SinglePointLUTOPeration, "Single Point LUT OPeration")                                         \
    X(0x75, BlockLUTOperation, "Block LUT Operation")                                                      \
    X(0x76, RemoteProcedureCall, "Remote Procedure Call")                                                  \
    X(0x78, EDIDOperation, "EDID Operation")                                                               \
    X(0x7C, AdjustZoom, "Adjust Zoom")                                                                     \
    X(0x82, HorizontalMirrorFlip, "Horizontal Mirror (Flip)")                                              \
    X(0x84, VerticalMirrorFlip, "Vertical Mirror (Flip)")                                                  \
    X(0x86, DisplayScaling, "Display Scaling")                                                             \
    X(0x87, Sharpness, "Sharpness")                                                                        \
    X(0x88, VelocityScanModulation, "Velocity Scan Modulation")                                            \
    X(0x8A, ColorSaturation, "Color Saturation")                                                           \
    X(0x8B, TVChannelUpDown, "TV-Channel Up/Down")                                                         \
    X(0x8C, TVSharpness, "TV Sharpness")                                                                   \
    X(0x8D, AudioMute, "Audio Mute")                                                                       \
    X(0x8E, TVContrast, "TV Contrast")                                                                     \
    X(0x8F, AudioTreble, "Audio Treble")                                                                   \
    X(0x90, Hue, "Hue")                                                                                    \
    X(0x91, AudioBass, "Audio Bass")                                                                       \
    X(0x92, TVBlackLevelLuminance, "TV Black Level Luminance")                                             \
    X(0x93, AudioBalance, "Audio Balance")                                                                 \
    X(0x94, AudioProcessorMode, "Audio Processor Mode")                                                    \
    X(0x95, WindowPositionTLX, "Window Position (TL_X)")                                                   \
    X(0x96, WindowPositionTLY, "Window Position (TL_Y)")                                                   \
    X(0x97, WindowPositionBRX, "Window Position (BR_X)")                                                   \
    X(0x98, WindowPositionBRY, "Window Position (BR_Y)")                                                   \
    X(0x9A, WindowBackground, "Window Background")                                                         \
    X(0x9B, 6AxisHueControlRed, "6 Axis Hue Control Red")                                                  \
    X(0x9C, 6AxisHueControlYellow, "6 Axis Hue Control Yellow")                                            \
    X(0x9D, 6AxisHueControlGreen, "6 Axis Hue Control Green")                                              \
    X(0x9E, 6AxisHueControlCyan, "6 Axis Hue Control Cyan")                                                \
    X(0x9F, 6AxisHueControlBlue, "6 Axis Hue Control Blue")                                                \
    X(0xA0, 6AxisHueControlMagenta, "6 Axis Hue Control Magenta")                                          \
    X(0xA2, AutoSetupToggle, "Auto-setup Toggle")                                                          \
    X(0xA4, WindowControlToggle, "Window Control Toggle")                                                  \
    X(0xA5, WindowSelect, "Window Select")                                                                 \
    X(0xAA, ScreenOrientation, "Screen Orientation")                                                       \
    X(0xAC, HorizontalFrequency, "HorizontalFrequency")                                                    \
    X(0xAE, VerticalFrequency, "Vertical Frequency")                                                       \
    X(0xB0, 6Settings, "6 Settings")                                                                       \
    X(0xB2, FlatPanelSubPixelLayout, "Flat Panel Sub-Pixel Layout")                                        \
    X(0xB4, SourceTimingMode, "Source Timing Mode")                                                        \
    X(0xB5, SourceColorEditing, "Source Color Editing")                                                    \
    X(0xB6, DisplayTechnologyType, "Display Technology Type")                                              \
    X(0xC0, DisplayUsageTime, "Display Usage Time")                                                        \
    X(0xC2, DisplayDescriptorLength, "Display Descriptor Length")                                          \
    X(0xC3, TransmitDisplayDescriptor, "Transmit Display Descriptor")                                      \
    X(0xC4, EnableDisplayOfDisplayDescriptor, "Enable Display of Display Descriptor")                      \
    X(0xC6, ApplicationEnableKey, "Application Enable Key")                                                \
    X(0xC8, DisplayControllerType, "Display Controller Type")                                              \
    X(0xC9, DisplayFirmwareLevel, "Display Firmware Level")                                                \
    X(0xCA, OSD, "OSD")                                                                                    \
    X(0xCC, OSDLanguage, "OSD Language")                                                                   \
    X(0xCD, StatusIndicators, "Status Indicators")                                                         \
    X(0xCE, AuxiliaryDisplaySize, "Auxiliary Display Size")                                                \
    X(0xCF, AuxiliaryDisplayData, "Auxiliary Display Data")                                                \
    X(0xD0, OutputSelect, "Output Select")                                                                 \
    X(0xD2, AssetTag, "Asset Tag")                                                                         \
    X(0xD4, StereoVideoMode, "Stereo Video Mode")                                                          \
    X(0xD6, PowerMode, "Power Mode")                                                                       \
    X(0xD7, AuxiliaryPowerOutput, "Auxiliary Power Output")                                                \
    X(0xDA, ScanMode, "Scan Mode")                                                                         \
    X(0xDB, ImageMode, "Image Mode")                                                                       \
    X(0xDC, DisplayApplication, "Display Application")                                                     \
    X(0xDE, ScratchPad, "Scratch Pad")                                                                     \
    X(0xDF, VCPVersion, "VCP Version")                                                                     \
    X(0xE0, UniformityCompensation, "Uniformity Compensation")                                             \
    X(0xE1, BurnInMode, "Burn in Mode")                                                                    \
    X(0xE2, AspectRatio, "Aspect Ratio")                                                                   \
    X(0xE3, ColorSpace, "Color Space")                                                                     \
    X(0xE4, ColorOffsetRed, "Color Offset Red")                                                            \
    X(0xE5, ColorOffsetGreen, "Color Offset Green")                                                        \
    X(0xE6, ColorOffsetBlue, "Color Offset Blue")                                                          \
    X(0xE7, BacklightSensorControl, "Backlight Sensor Control")                                            \
    X(0xE8, DynamicContrast, "Dynamic Contrast")                                                           \
    X(0xE9, EnergySmart, "Energy Smart")                                                                   \
    X(0xEA, LCDConditioning, "LCD Conditioning")                                                           \
    X(0xEB, FanControl, "Fan Control")                                                                     \
    X(0xEC, ModelID, "Model ID")                                                                           \
    X(0xED, FanControlScenario, "Fan Control Scenario")                                                    \
    X(0xEE, AutoPowerDown, "Auto Power Down")                                                              \
    X(0xEF, LedBrightness, "Led Brightness")                                                               \
    X(0xF0, DisplayPresets, "Display Presets")                                                             \
    X(0xF2, DisplayInfo, "Display Info")                                                                   \
    X(0xF3, FanSpeed, "Fan Speed")                                                                         \
    X(0xF4, BatteryMode, "Battery Mode")

enum vcpCodes : uint8_t {
#define VLR_VCP_ENUMERATOR(code, name, text) vcpC_##name = code,
    VLR_VCP_CODE_NAMES(VLR_VCP_ENUMERATOR)
#undef VLR_VCP_ENUMERATOR
    // MCCS codes the program uses that have no printed name of their own.
    vcpC_BacklightLevelWhite = 0x6B,
};

enum ddcCommandCodes : uint8_t {
    ddcCC_GetVCPFeatureRequest = 0x01,
    ddcCC_VCPReplyCode = 0x02,
    ddcCC_SetVCPFeatureRequest = 0x03,
    ddcCC_GetTimingReportResponse = 0x06,
    ddcCC_GetTimingReportRequest = 0x07,
    ddcCC_VCPResetReplyCode = 0x09,
    ddcCC_SaveCurrentSettingsRequest = 0x0C,
    ddcCC_DiagnosticsReplyCode = 0xA1,
    ddcCC_DiagnosticsRequest = 0xB1,
    ddcCC_IdentificationReplyCode = 0xE1,
    ddcCC_TableReadRequest = 0xE2,
    ddcCC_CapabilitiesReplyCode = 0xE3,
    ddcCC_TableReadReplyCode = 0xE4,
    ddcCC_EnableApplicationReportRequest = 0xE5,
    ddcCC_TableWriteRequest = 0xE7,
    ddcCC_IdentificationRequest = 0xF1,
    ddcCC_CapabilitiesRequest = 0xF3,
};

// VCP 0x14. Value 11 is 5700 K on these displays although MCCS reserves it for a user preset.
enum colorPresetCode : uint8_t {
    cpc_Reserved = 0,
    cpc_sRGB = 1,
    cpc_DisplayNative = 2,
    cpc_5000K = 4,
    cpc_6500K = 5,
    cpc_7500K = 6,
    cpc_9300K = 8,
    cpc_10000K = 9,
    cpc_5700K = 11,
};

// VCP 0xE3.
enum colorSpaceCode : uint8_t {
    csc_sRGB = 0,
    csc_AdobeRGB = 1,
    csc_sRGBRec709 = 2,
    csc_Rec709 = 3,
    csc_DCI = 4,
    csc_Native = 7,
    csc_XRite1 = 8,
    csc_XRite2 = 9,
};

// VCP 0xF0.
enum displayPresetCode : uint8_t {
    dpc_Native = 0,
    dpc_Standard = 1,
    dpc_Multimedia = 2,
    dpc_Movie = 3,
    dpc_Game = 4,
    dpc_XRitePreset1 = 5,
    dpc_XRitePreset2 = 6,
    dpc_ColorTemp = 7,
    dpc_ColorSpace = 8,
    dpc_CustomColor = 9,
    dpc_XRite1_bj = 11,
    dpc_XRite2_bj = 12,
};

// VCP 0x86 (and 0xE2, which shares its values).
enum displayScalingCode : uint8_t {
    dsc_Reserved = 0,
    dsc_NoScaling = 1,
    dsc_MaxImage = 2,
    dsc_MaxVerticalImageNoAR = 3,
    dsc_MaxHorizontalImageNoAR = 4,
    dsc_MaxVerticalImageWithAR = 5,
    dsc_MaxHorizontalImageWithAR = 6,
    dsc_FullMode = 7,
    dsc_ZoomMode = 8,
    dsc_SqueezeMode = 9,
    dsc_Variable = 10,
};

// VCP 0x72.
enum gammaCode : uint8_t {
    gc_1_9 = 0,
    gc_2_2 = 1,
    gc_2_4 = 2,
    gc_FollowColorSpace = 3,
};

// VCP 0xEF.
enum ledBrightnessCode : uint8_t {
    lbc_Off = 0,
    lbc_Low = 1,
    lbc_Medium = 2,
    lbc_High = 3,
};

// VCP 0xE0.
enum uniformityCompCode : uint8_t {
    ucc_None = 0,
    ucc_Table1 = 1,
    ucc_Table2 = 2,
    ucc_Table3 = 3,
};

// Texts for a code or value; unknown values give "Unsupported VPC Code" ("Code not found"
// for command codes) and one trace line naming the enumeration.
std::string VCPCodeToString(vcpCodes code_I);
std::string VCPCodeToString(ddcCommandCodes code_I);
std::string VCPCodeToString(colorPresetCode code_I);
std::string VCPCodeToString(colorSpaceCode code_I);
std::string VCPCodeToString(displayPresetCode code_I);
std::string VCPCodeToString(displayScalingCode code_I);
std::string VCPCodeToString(gammaCode code_I);
std::string VCPCodeToString(ledBrightnessCode code_I);
std::string VCPCodeToString(uniformityCompCode code_I);

// The name of a VCP code given as a plain number (option codes are 32-bit).
std::string VCPCodeName(uint32_t code_I);
