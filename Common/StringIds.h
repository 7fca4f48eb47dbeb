#pragma once
// Ids of the interface texts in the string tables. The settings delegate names its choices by
// these ids; the dialogs load the texts in the interface language.

#include <cstdint>

namespace StringId {

constexpr uint32_t kProductTitle = 2000;
constexpr uint32_t kColorTemperatureMode = 2005;
constexpr uint32_t kColorSpaceMode = 2006;
constexpr uint32_t kCustomColorMode = 2007;

constexpr uint32_t k5000K = 2009;
constexpr uint32_t k5700K = 2010;
constexpr uint32_t k6500K = 2011;
constexpr uint32_t k7500K = 2012;
constexpr uint32_t k9300K = 2013;
constexpr uint32_t k10000K = 2014;

constexpr uint32_t kSpaceNative = 2016;
constexpr uint32_t kSpaceAdobeRGB = 2017;
constexpr uint32_t kSpaceSRGB = 2018;
constexpr uint32_t kSpaceRec709 = 2019;
constexpr uint32_t kSpaceDCIP3 = 2020;
constexpr uint32_t kSpaceRec2020 = 2021;
constexpr uint32_t kSpaceEBU = 2022;
constexpr uint32_t kSpaceDCI = 2023;
constexpr uint32_t kSpaceColorManager1 = 2034;
constexpr uint32_t kSpaceColorManager2 = 2035;

constexpr uint32_t kGamma1_9 = 2028;
constexpr uint32_t kGamma2_2 = 2029;
constexpr uint32_t kGamma2_4 = 2030;
// Fine-scale gamma 0.5 to 3.9 in steps of 0.1 are 2055 + step; 4.0 is 2054.
constexpr uint32_t kGammaFine0_5 = 2055;
constexpr uint32_t kGammaFine4_0 = 2054;

constexpr uint32_t kAspectFullScreen = 2202;
constexpr uint32_t kAspectKeepRatio = 2203;
constexpr uint32_t kAspectOneToOne = 2204;
constexpr uint32_t kOn = 2214;
constexpr uint32_t kOff = 2215;
constexpr uint32_t kFanAuto = 2218;
constexpr uint32_t kFanLowSpeed = 2219;
constexpr uint32_t kBatteryStandard = 2222;
constexpr uint32_t kBatterySaver = 2223;
constexpr uint32_t kLevelLow = 2224;
constexpr uint32_t kLevelMedium = 2225;
constexpr uint32_t kLevelHigh = 2226;
constexpr uint32_t kUniformityMode2 = 2227;
constexpr uint32_t kUniformityMode3 = 2228;

constexpr uint32_t kPowerKindBrightness = 2923;

}  // namespace StringId
