#include "CustomColor.h"

#include <algorithm>

#include "codes.h"

CColor CColor::FromRGB(uint8_t red_I, uint8_t green_I, uint8_t blue_I) {
    CColor color;
    color.mRed = red_I;
    color.mGreen = green_I;
    color.mBlue = blue_I;
    color.mValid = true;
    const double m = std::max({red_I, green_I, blue_I});
    if (m == 0) {
        color.mCyan = color.mMagenta = color.mYellow = 0.0;
        color.mBlack = 1.0;
    } else {
        color.mCyan = (m - red_I) / m;
        color.mMagenta = (m - green_I) / m;
        color.mYellow = (m - blue_I) / m;
        // Black is on the 0-255 scale although the adjustments are percentages: a full 100 %
        // channel still reads as black 0.608. The too-dark thresholds are set for this.
        color.mBlack = 1.0 - m / 255.0;
    }
    return color;
}

CColor CColor::FromCMYK(double cyan_I, double magenta_I, double yellow_I, double black_I) {
    CColor color;
    color.mCyan = cyan_I;
    color.mMagenta = magenta_I;
    color.mYellow = yellow_I;
    color.mBlack = black_I;
    color.mValid = true;
    const double f = (1.0 - black_I) * 255.0;
    // + 0.5 and truncation: halves go up.
    color.mRed = static_cast<uint8_t>((1.0 - cyan_I) * f + 0.5);
    color.mGreen = static_cast<uint8_t>((1.0 - magenta_I) * f + 0.5);
    color.mBlue = static_cast<uint8_t>((1.0 - yellow_I) * f + 0.5);
    return color;
}

bool ColorModCodes(uint32_t type_I, SColorModCodes& codes_O) {
    switch (type_I) {
        case eColorModHue:
            codes_O = {vcpC_6AxisHueControlRed, vcpC_6AxisHueControlGreen, vcpC_6AxisHueControlBlue};
            return true;
        case eColorModSaturation:
            codes_O = {vcpC_6AxisSaturationControlRed, vcpC_6AxisSaturationControlGreen,
                       vcpC_6AxisSaturationControlBlue};
            return true;
        case eColorModGain:
            codes_O = {vcpC_VideoGainRed, vcpC_VideoGainGreen, vcpC_VideoGainBlue};
            return true;
        case eColorModOffset:
            codes_O = {vcpC_ColorOffsetRed, vcpC_ColorOffsetGreen, vcpC_ColorOffsetBlue};
            return true;
        default: return false;
    }
}

const char* ColorModTypeName(uint32_t type_I) {
    switch (type_I) {
        case eColorModHue: return "Hue";
        case eColorModSaturation: return "Saturation";
        case eColorModGain: return "Gain";
        case eColorModOffset: return "Offset";
        default: return "Unknown";
    }
}

const char* ColorChannelName(uint32_t channel_I) {
    static const char* const kNames[] = {"Red", "Green", "Blue", "Cyan", "Magenta", "Yellow", "Black"};
    return channel_I < std::size(kNames) ? kNames[channel_I] : "Unknown";
}

namespace {
bool AllChannelsBelow20(const CColor& color_I) {
    return color_I.Red() < 20 && color_I.Green() < 20 && color_I.Blue() < 20;
}
}  // namespace

bool IsColorTooDark(const CColor& color_I, uint32_t type_I, ETooDarkTest test_I) {
    if (test_I == ETooDarkTest::AllChannelsBelow20) {
        return AllChannelsBelow20(color_I);
    }
    if (type_I != eColorModGain) {
        return false;
    }
    switch (test_I) {
        case ETooDarkTest::BlackFrom50: return color_I.Black() >= 0.5;
        case ETooDarkTest::BlackFrom60: return color_I.Black() >= 0.6;
        case ETooDarkTest::BlackFrom75: return color_I.Black() >= 0.75;
        default: return false;
    }
}

bool IsColorTooDark(const CColor& color_I, bool testRGB_I, bool testBlack_I) {
    if (testRGB_I) {
        return AllChannelsBelow20(color_I);
    }
    if (testBlack_I) {
        return color_I.Black() >= 0.6;
    }
    return false;
}
