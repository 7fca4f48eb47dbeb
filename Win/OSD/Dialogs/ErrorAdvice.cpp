#include "ErrorAdvice.h"

#include <cwchar>
#include <regex>

namespace {

struct SAdvice {
    unsigned long first;
    unsigned long last;
    const wchar_t* advice;
};

// The graphics driver's DDC/CI errors (ERROR_GRAPHICS_I2C_* and _DDCCI_*, winerror.h).
constexpr SAdvice kAdvice[] = {
    {0xC0262580, 0xC0262581,
     L"the graphics driver offers no DDC/CI on this output. Connect the display's USB cable, or "
     L"use another video output."},
    {0xC0262582, 0xC0262583,
     L"the display did not answer over DDC/CI. Turn DDC/CI on in the display's menu, check the "
     L"video cable, then start the program again."},
    {0xC0262584, 0xC0262584, L"the display does not offer this setting over DDC/CI."},
    {0xC0262585, 0xC026258B,
     L"the display's answer arrived damaged. Switch the display off and on, or try another "
     L"cable or video output."},
    {0xC026258C, 0xC026258D,
     L"the display went away (unplugged, switched off or asleep). Connect it, wake it, then "
     L"start the program again."},
};

}  // namespace

std::wstring WithErrorAdvice(const std::wstring& text_I) {
    static const std::wregex kCode(L"errcode: ([0-9]+)");
    std::wstring advice;
    for (auto it = std::wsregex_iterator(text_I.begin(), text_I.end(), kCode); it != std::wsregex_iterator();
         ++it) {
        const unsigned long code = std::wcstoul((*it)[1].str().c_str(), nullptr, 10);
        if (code == 0) {
            continue;  // "zero string length, errcode: 0": no code to explain
        }
        const wchar_t* what =
            L"Windows could not talk to the display. Check that it is connected and "
            L"switched on, then start the program again.";
        for (const SAdvice& row : kAdvice) {
            if (code >= row.first && code <= row.last) {
                what = row.advice;
            }
        }
        wchar_t hex[16] = {};
        std::swprintf(hex, 16, L"0x%08lX", code);
        advice += L"\n" + std::wstring(hex) + L": " + what;
    }
    // Appended: the first lines stay the text users and support know.
    return advice.empty() ? text_I : text_I + L"\n" + advice;
}
