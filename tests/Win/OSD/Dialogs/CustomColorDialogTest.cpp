// The custom colour dialog of the real program over a simulated machine, driven through its
// windows. Needs an X display (Xvfb) under Wine.

#include <gtest/gtest.h>

#include "DialogIds.h"
#include "ProgramDriver.h"
#include "codes.h"

namespace {

constexpr int kGain = 2;

// Canvas 22 Pro in custom-colour mode, with the custom colour dialog open.
struct SCustomColor : SProgram {
    HWND colors = nullptr;

    SCustomColor() : SProgram("two-families") {
        if (!WaitForMainDialog()) {
            return;
        }
        HWND mode = Item(IDC_COLOR_SETTING_LIST);
        const LRESULT custom =
            SendMessageW(mode, CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(L"Custom Color"));
        SendMessageW(mode, CB_SETCURSEL, custom, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_COLOR_SETTING_LIST, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(mode));
        Open();
    }
    void Open() {
        ClickAndLeave(IDC_CUSTOM_COLOR_BUTTON);
        WaitFor([&] { return (colors = FindDialog(L"Custom Color")) != nullptr; });
    }
    // Moves a channel's slider and lets it go.
    void SetChannel(int adjustment, int channel, int value) {
        HWND slider = GetDlgItem(colors, IDC_COLOR_MOD_SLIDER_FIRST + adjustment * 3 + channel);
        SendMessageW(slider, TBM_SETPOS, TRUE, value);
        SendMessageW(colors, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, value), reinterpret_cast<LPARAM>(slider));
        SendMessageW(colors, WM_HSCROLL, MAKEWPARAM(TB_ENDTRACK, 0), reinterpret_cast<LPARAM>(slider));
    }
    void End(int id) {
        PostMessageW(colors, WM_COMMAND, id, 0);
        WaitFor([&] { return !IsWindow(colors); });
        Settle();
    }
};

}  // namespace

TEST(CustomColorDialog, ChangesGoToTheDisplayCancelRestoresOkKeepsThemUnsaved) {
    SCustomColor program;
    ASSERT_NE(program.colors, nullptr);
    auto canvas = program.Display(0);
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(program.colors, IDC_COLOR_MOD_GROUP_FIRST + kGain)));
    EXPECT_EQ(TextOf(GetDlgItem(program.colors, IDC_COLOR_MOD_LABEL_FIRST)), L"Red:");
    const uint16_t red = canvas->Value(vcpC_VideoGainRed);
    const uint16_t hue = canvas->Value(vcpC_6AxisHueControlBlue);

    program.SetChannel(kGain, 0, 60);
    program.SetChannel(0, 2, 20);  // hue, blue
    EXPECT_EQ(canvas->Value(vcpC_VideoGainRed), 60);
    EXPECT_EQ(canvas->Value(vcpC_6AxisHueControlBlue), 20);
    EXPECT_EQ(TextOf(GetDlgItem(program.colors, IDC_COLOR_MOD_EDIT_FIRST + kGain * 3)), L"60");
    program.End(IDCANCEL);
    EXPECT_EQ(canvas->Value(vcpC_VideoGainRed), red);
    EXPECT_EQ(canvas->Value(vcpC_6AxisHueControlBlue), hue);

    program.Open();
    ASSERT_NE(program.colors, nullptr);
    program.SetChannel(kGain, 1, 70);
    program.End(IDC_CUSTOM_COLOR_OK);
    EXPECT_EQ(canvas->Value(vcpC_VideoGainGreen), 70);
    EXPECT_NE(program.Text(IDC_CUSTOM_COLOR_LABEL).find(L", 70, "), std::wstring::npos)
        << program.Text(IDC_CUSTOM_COLOR_LABEL);
    EXPECT_TRUE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));
    program.Click(IDC_REVERT_BUTTON);
    EXPECT_NE(canvas->Value(vcpC_VideoGainGreen), 70);
}

TEST(CustomColorDialog, ATooDarkColourIsAskedAboutAndNoAnswerTakesItBack) {
    SCustomColor program;
    ASSERT_NE(program.colors, nullptr);
    auto canvas = program.Display(0);
    const uint16_t blue = canvas->Value(vcpC_VideoGainBlue);
    gDarkAnswer = MessageWindows::kMessageBoxTimedOut;
    program.SetChannel(kGain, 0, 5);
    program.SetChannel(kGain, 1, 5);
    const int asked = gDarkQuestions.load();
    program.SetChannel(kGain, 2, 5);
    EXPECT_GT(gDarkQuestions.load(), asked);
    EXPECT_EQ(canvas->Value(vcpC_VideoGainBlue), blue);
    EXPECT_EQ(TextOf(GetDlgItem(program.colors, IDC_COLOR_MOD_EDIT_FIRST + kGain * 3 + 2)),
              std::to_wstring(blue));
    program.End(IDCANCEL);
}
