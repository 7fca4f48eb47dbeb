#pragma once
// The custom colour model: a red, green and blue triple (percentages for the colour
// adjustments) with its CMYK view, the four adjustments it can stand for, and the test that
// warns of a colour too dark to use.

#include <cstdint>
#include <string>

#include "DisplayTraits.h"

constexpr int MAX_COLOR_RGB_PERCENT = 100;

class CColor {
public:
    // The empty record: black, not valid.
    CColor() = default;
    static CColor FromRGB(uint8_t red_I, uint8_t green_I, uint8_t blue_I);
    static CColor FromCMYK(double cyan_I, double magenta_I, double yellow_I, double black_I);

    uint8_t Red() const { return mRed; }
    uint8_t Green() const { return mGreen; }
    uint8_t Blue() const { return mBlue; }
    double Cyan() const { return mCyan; }
    double Magenta() const { return mMagenta; }
    double Yellow() const { return mYellow; }
    double Black() const { return mBlack; }
    bool IsValid() const { return mValid; }

private:
    uint8_t mRed = 0;
    uint8_t mGreen = 0;
    uint8_t mBlue = 0;
    double mCyan = 0.0;
    double mMagenta = 0.0;
    double mYellow = 0.0;
    double mBlack = 1.0;
    bool mValid = false;
};

// The four colour adjustments, each a red, green and blue VCP code.
enum EColorModType : uint32_t {
    eColorModHue = 0,
    eColorModSaturation = 1,
    eColorModGain = 2,
    eColorModOffset = 3
};

struct SColorModCodes {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};
// False for a type outside 0 to 3.
bool ColorModCodes(uint32_t type_I, SColorModCodes& codes_O);

// "Hue", "Saturation", "Gain", "Offset"; "Unknown" otherwise.
const char* ColorModTypeName(uint32_t type_I);
// "Red", "Green", "Blue", "Cyan", "Magenta", "Yellow", "Black"; "Unknown" otherwise.
const char* ColorChannelName(uint32_t channel_I);

// Whether a colour of this adjustment type would leave a display with this too-dark test
// too dark to use.
bool IsColorTooDark(const CColor& color_I, uint32_t type_I, ETooDarkTest test_I);
// The short form: with testRGB_I, all channels below 20; else with testBlack_I, black >= 0.6.
bool IsColorTooDark(const CColor& color_I, bool testRGB_I, bool testBlack_I);
