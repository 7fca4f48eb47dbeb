// The real program over a simulated machine, driven as a person would: its windows receive the
// messages that clicks, typing and drags produce, and the tests read the controls and what
// reached the virtual displays. Needs an X display (Xvfb) under Wine.

#include <gtest/gtest.h>

#include "AppRegistry.h"
#include "ProgramDriver.h"
#include "codes.h"

TEST(ProgramManifest, NamesWindows10And11AndPerMonitorDpi) {
    // The tests carry the program's own resources, manifest included.
    HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24));
    ASSERT_NE(resource, nullptr);
    const char* bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, resource)));
    const std::string manifest(bytes, SizeofResource(nullptr, resource));
    EXPECT_NE(manifest.find("<supportedOS Id=\"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}\"/>"),
              std::string::npos);
    EXPECT_NE(manifest.find("PerMonitorV2"), std::string::npos);
}

TEST(StartupOptions, ChannelOptionsHaveAPrecedenceAndHelpIsFixed) {
    EXPECT_EQ(ParseStartupOptions(L"", false).connectionMode, 3u);
    EXPECT_EQ(ParseStartupOptions(L"/hidPort /displayPort", false).connectionMode, 1u);
    EXPECT_EQ(ParseStartupOptions(L"/ftdiPort /hidPort", false).connectionMode, 0u);
    EXPECT_EQ(ParseStartupOptions(L"/ftdiPort", false).connectionMode, 2u);
    EXPECT_EQ(ParseStartupOptions(L"/HIDPORT", false).connectionMode, 3u);  // case-sensitive
    EXPECT_EQ(ParseStartupOptions(L"/language de /debug", false).languageName, "de");
    EXPECT_EQ(ParseStartupOptions(L"/language", false).languageName, "userUI");
    EXPECT_TRUE(ParseStartupOptions(L"/debug", false).debugOutput);
    EXPECT_TRUE(ParseStartupOptions(L"", true).debugOutput);
    const SStartupOptions all = ParseStartupOptions(L"/skipSerialMatch /exitOnError /help", false);
    EXPECT_TRUE(all.skipSerialMatch && all.exitOnError && all.help);
    EXPECT_EQ(ParseStartupOptions(L"/demo", false).demoScenario, "one-per-route");
    EXPECT_EQ(ParseStartupOptions(L"/demo two-families /debug", false).demoScenario, "two-families");
    EXPECT_TRUE(ParseStartupOptions(L"/debug", false).demoScenario.empty());
    EXPECT_EQ(
        std::wstring(HelpText()),
        L"/hidPort - use only a HID channel\n/displayPort - use only a video display channel\n"
        L"/ftdiPort - use only an FTDI display channel\n/skipSerialMatch - skip match monitor/channel serial "
        L"numbers\n/debug - send trace lines to debug output (slows down app)\n/help - show options");
}

TEST(MainDialog, TypedValuesAreClampedShownAndSent) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    EXPECT_EQ(program.Text(IDC_DISPLAY_LIST), L"Velor Canvas 22 Pro");
    auto canvas = program.Display(0);
    canvas->ClearTransactions();

    program.Type(IDC_BRIGHTNESS_EDIT, L"150");
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"100");
    EXPECT_EQ(program.SliderPosition(IDC_BRIGHTNESS_SLIDER), 100);
    EXPECT_EQ(SetsOf(*canvas, vcpC_Luminance), (std::vector<uint16_t>{100}));
    EXPECT_EQ(canvas->Value(vcpC_Luminance), 100);
    EXPECT_TRUE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));

    // An emptied edit gets the current value back and nothing is sent.
    program.Type(IDC_CONTRAST_EDIT, L"");
    EXPECT_EQ(program.Text(IDC_CONTRAST_EDIT), std::to_wstring(canvas->Value(vcpC_Contrast)));
    EXPECT_TRUE(SetsOf(*canvas, vcpC_Contrast).empty());
}

TEST(MainDialog, ADragSendsItsPositionsAndAsksOnceHomeAndEndAreRefused) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t before = canvas->Value(vcpC_Luminance);
    canvas->ClearTransactions();

    for (int position : {60, 40, 20, 3}) {
        program.Slide(IDC_BRIGHTNESS_SLIDER, TB_THUMBTRACK, position);
    }
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_THUMBPOSITION, 3);
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_ENDTRACK, 3);
    // The release commits 3, which the display already has: the delegate sends nothing more.
    EXPECT_EQ(SetsOf(*canvas, vcpC_Luminance), (std::vector<uint16_t>{60, 40, 20, 3}));
    EXPECT_EQ(gDarkQuestions.load(), 1);
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"3");

    // Home and End put the slider back to the accepted value and send nothing.
    canvas->ClearTransactions();
    SendMessageW(program.Item(IDC_BRIGHTNESS_SLIDER), TBM_SETPOS, TRUE, 100);
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_BOTTOM, 0);
    EXPECT_EQ(program.SliderPosition(IDC_BRIGHTNESS_SLIDER), 3);
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_TOP, 0);
    EXPECT_EQ(program.SliderPosition(IDC_BRIGHTNESS_SLIDER), 3);
    EXPECT_TRUE(SetsOf(*canvas, vcpC_Luminance).empty());
    EXPECT_NE(canvas->Value(vcpC_Luminance), before);
}

TEST(MainDialog, NoAnswerToTheDarkScreenQuestionRestoresTheOldValues) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t before = canvas->Value(vcpC_Luminance);
    gDarkAnswer = MessageWindows::kMessageBoxTimedOut;
    canvas->ClearTransactions();
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_THUMBTRACK, 0);
    program.Slide(IDC_BRIGHTNESS_SLIDER, TB_THUMBPOSITION, 0);
    EXPECT_EQ(gDarkQuestions.load(), 1);
    EXPECT_EQ(SetsOf(*canvas, vcpC_Luminance), (std::vector<uint16_t>{0, before}));
    EXPECT_EQ(canvas->Value(vcpC_Luminance), before);
    EXPECT_EQ(program.SliderPosition(IDC_BRIGHTNESS_SLIDER), before);
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), std::to_wstring(before));
    EXPECT_FALSE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));
}

TEST(MainDialog, SaveAsksAboutMorePowerAndRemembersDoNotShowAgain) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t saved = canvas->SavedValue(vcpC_Luminance);
    program.Type(IDC_BRIGHTNESS_EDIT, std::to_wstring(saved + 10).c_str());

    // "No" saves nothing.
    program.ClickAndLeave(IDC_SAVE_BUTTON);
    HWND warning = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (warning = FindDialog(L"Additional Power Required")) != nullptr; }));
    EXPECT_EQ(TextOf(GetDlgItem(warning, IDC_POWER_LIST)), L"Brightness");
    EXPECT_EQ(TextOf(GetDlgItem(warning, IDC_POWER_MESSAGE)),
              L"These changes make the display use more power. Affected settings:");
    PostMessageW(warning, WM_COMMAND, IDC_POWER_NO, 0);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(warning); }));
    program.Settle();
    EXPECT_EQ(canvas->SavedValue(vcpC_Luminance), saved);
    EXPECT_TRUE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));

    // Ticked and "No": still nothing saved, but never asked again.
    program.ClickAndLeave(IDC_SAVE_BUTTON);
    ASSERT_TRUE(WaitFor([&] { return (warning = FindDialog(L"Additional Power Required")) != nullptr; }));
    SendMessageW(GetDlgItem(warning, IDC_POWER_DONT_SHOW), BM_SETCHECK, BST_CHECKED, 0);
    PostMessageW(warning, WM_COMMAND, IDC_POWER_NO, 0);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(warning); }));
    program.Settle();
    EXPECT_EQ(canvas->SavedValue(vcpC_Luminance), saved);
    EXPECT_TRUE(AppRegistry::ReadIgnorePowerWarning());

    program.Click(IDC_SAVE_BUTTON);
    EXPECT_EQ(FindDialog(L"Additional Power Required"), nullptr);
    EXPECT_EQ(canvas->SavedValue(vcpC_Luminance), saved + 10);
    EXPECT_FALSE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));
}

TEST(MainDialog, RevertAndClosingDropUnsavedChangesAndTheWindowRemembersItsPlace) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t before = canvas->Value(vcpC_Contrast);
    program.Type(IDC_CONTRAST_EDIT, L"20");
    EXPECT_EQ(canvas->Value(vcpC_Contrast), 20);
    program.Click(IDC_REVERT_BUTTON);
    EXPECT_EQ(canvas->Value(vcpC_Contrast), before);
    EXPECT_EQ(program.Text(IDC_CONTRAST_EDIT), std::to_wstring(before));

    program.Type(IDC_CONTRAST_EDIT, L"25");
    SetWindowPos(program.dialog, nullptr, 130, 90, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    RECT rect{};
    GetWindowRect(program.dialog, &rect);
    program.Close();
    EXPECT_EQ(canvas->Value(vcpC_Contrast), before);
    const auto location = AppRegistry::ReadLocation();
    ASSERT_TRUE(location.has_value());
    EXPECT_EQ(location->x, rect.left);
    EXPECT_EQ(location->y, rect.top);

    // The next start opens there.
    SProgram again(*VirtualMachine::Scenario("two-families"), {}, false);
    ASSERT_TRUE(again.WaitForMainDialog());
    RECT reopened{};
    GetWindowRect(again.dialog, &reopened);
    EXPECT_EQ(reopened.left, rect.left);
    EXPECT_EQ(reopened.top, rect.top);
}

TEST(MainDialog, WithoutAFullRememberedPositionTheCentreFormulaPlacesIt) {
    ClearRegistry();
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Velor\\OSD\\Location", 0, nullptr, 0, KEY_SET_VALUE,
                    nullptr, &key, nullptr);
    const DWORD x = 40;
    RegSetValueExW(key, L"X", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&x), sizeof(x));
    RegCloseKey(key);
    SProgram program(*VirtualMachine::Scenario("two-families"), {}, false);
    ASSERT_TRUE(program.WaitForMainDialog());
    RECT rect{};
    GetWindowRect(program.dialog, &rect);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(program.dialog, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    EXPECT_EQ(rect.left, (monitor.rcMonitor.right - monitor.rcMonitor.left - width) / 2);
    EXPECT_EQ(rect.top, (monitor.rcMonitor.bottom - monitor.rcMonitor.top - height) / 2);
}

TEST(MainDialog, AFailedWriteShowsTheErrorAndKeepsTheDialog) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    program.machine.MonitorConfiguration().FailNext(EMcaCall::SetVCPFeature, McaError::kI2CErrorReceivingData,
                                                    20);
    PostMessageW(program.dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, 77),
                 reinterpret_cast<LPARAM>(program.Item(IDC_BRIGHTNESS_SLIDER)));
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (box = FindDialog(kTitle, {program.dialog})) != nullptr; }));
    HWND text = FindWindowExW(box, nullptr, L"Static", nullptr);
    while (text != nullptr && TextOf(text).empty()) {
        text = FindWindowExW(box, text, L"Static", nullptr);
    }
    EXPECT_EQ(TextOf(text).rfind(L"There was an error talking to the display.", 0), 0u) << TextOf(text);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_TRUE(IsWindow(program.dialog));
}

TEST(MainDialog, ADisplayThatWasRepluggedIsFoundAgainAfterTheError) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    CVirtualMonitorConfiguration& api = program.machine.MonitorConfiguration();
    // It slept and woke with new handles, and its menu changed the contrast meanwhile.
    api.Replug(canvas);
    canvas->SetValueFromMenu(vcpC_Contrast, 37);
    const size_t listings = api.CallCount(EMcaCall::GetPhysicalMonitors);
    PostMessageW(program.dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, 77),
                 reinterpret_cast<LPARAM>(program.Item(IDC_BRIGHTNESS_SLIDER)));
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (box = FindDialog(kTitle, {program.dialog})) != nullptr; }));
    EXPECT_EQ(MessageTextOf(box).rfind(L"There was an error talking to the display.", 0), 0u);
    PostMessageW(box, WM_COMMAND, IDOK, 0);

    // The program searched again and shows the display as it is now; writes reach it again.
    ASSERT_TRUE(WaitFor([&] { return program.Text(IDC_CONTRAST_EDIT) == L"37"; }));
    EXPECT_GT(api.CallCount(EMcaCall::GetPhysicalMonitors), listings);
    EXPECT_EQ(SendMessageW(program.Item(IDC_DISPLAY_LIST), CB_GETCOUNT, 0, 0), 2);
    program.Type(IDC_CONTRAST_EDIT, L"44");
    EXPECT_EQ(canvas->Value(vcpC_Contrast), 44);
}

TEST(Program, ASecondStartBringsTheFirstForwardAndOpensNothing) {
    SProgram first("two-families");
    ASSERT_TRUE(first.WaitForMainDialog());
    // Minimised, with its advanced page open (which has the same title).
    first.Click(IDC_ADVANCED_BUTTON);
    ShowWindow(first.dialog, SW_MINIMIZE);
    ASSERT_TRUE(WaitFor([&] { return IsIconic(first.dialog) != FALSE; }));
    for (size_t i = 0; i < 2; ++i) {
        first.Display(i)->ClearTransactions();
    }
    SStartupOptions options;
    options.languageName = "en";
    int exitCode = -1;
    std::thread second([options, &exitCode] { exitCode = RunApplication(options); });
    second.join();  // returns by itself
    EXPECT_EQ(exitCode, 0);
    // The first copy's main dialog is back, the second searched nothing and opened nothing.
    ASSERT_TRUE(WaitFor([&] { return !IsIconic(first.dialog); }));
    EXPECT_TRUE(IsWindowVisible(first.dialog));
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_TRUE(first.Display(i)->Transactions().empty());
    }
    int dialogs = 0;
    for (HWND found = nullptr; (found = FindWindowExW(nullptr, found, kDialogClass, kTitle)) != nullptr;) {
        dialogs += IsWindowVisible(found) && GetDlgItem(found, IDC_DISPLAY_LIST) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(dialogs, 1);
    first.Close();
    EXPECT_EQ(first.exitCode.load(), 0);
}

TEST(Program, NoDisplayGivesTheNoDeviceWindowAndAnErrorTextTheErrorWindow) {
    {
        SProgram program("no-display");
        HWND window = WaitForWindowWith(IDC_NO_DEVICE_HEADING);
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(TextOf(GetDlgItem(window, IDC_NO_DEVICE_HEADING)), L"No supported display found");
        // The heading is 20 px at 96 DPI, and 30 px once the window is on a display at 150 %.
        auto headingHeight = [&] {
            LOGFONTW font{};
            GetObjectW(
                reinterpret_cast<HFONT>(SendDlgItemMessageW(window, IDC_NO_DEVICE_HEADING, WM_GETFONT, 0, 0)),
                sizeof(font), &font);
            return font.lfHeight;
        };
        EXPECT_EQ(headingHeight(), 20);
        RECT place{};
        GetWindowRect(window, &place);
        SendMessageW(window, 0x02E0 /* WM_DPICHANGED */, MAKEWPARAM(144, 144),
                     reinterpret_cast<LPARAM>(&place));
        EXPECT_EQ(headingHeight(), 30);
        PostMessageW(window, WM_COMMAND, IDC_WINDOW_OK, 0);
        program.ui.join();
        EXPECT_EQ(program.exitCode.load(), 1);
    }
    SStartupOptions options;
    options.exitOnError = true;
    SProgram program("ddc-fails-serial-pairs", options);
    HWND window = WaitForWindowWith(IDC_ERROR_TEXT);
    ASSERT_NE(window, nullptr);
    const std::wstring text = TextOf(GetDlgItem(window, IDC_ERROR_TEXT));
    EXPECT_EQ(text.rfind(L"Display: VLR1042  [Velor Canvas 24]\n", 0), 0u);
    // The code the user can look up, and what to do, after the text support knows.
    EXPECT_NE(
        text.find(L"GetCapabilitiesStringLength, errcode: 3223725443\n\n0xC0262583: the display did not "
                  L"answer over DDC/CI. Turn DDC/CI on in the display's menu"),
        std::wstring::npos);
    PostMessageW(window, WM_COMMAND, IDC_WINDOW_OK, 0);
    program.ui.join();
    EXPECT_EQ(program.exitCode.load(), 2);
}

TEST(Program, HelpShowsOnlyTheOptionBox) {
    SStartupOptions options = ParseStartupOptions(L"/help /displayPort", false);
    SProgram program("two-families", options);
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (box = FindDialog(kHelpCaption)) != nullptr; }));
    EXPECT_EQ(FindDialog(kTitle), nullptr);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    program.ui.join();
    EXPECT_EQ(FindDialog(kTitle), nullptr);
    EXPECT_EQ(program.Display(0)->Transactions().size(), 0u);
}

TEST(MainDialog, TheHotKeyResetsTheSelectedDisplayWithoutAskingAndSearchesAgain) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    auto studio = program.Display(1);
    program.Type(IDC_CONTRAST_EDIT, L"20");
    canvas->ClearTransactions();
    PostMessageW(program.dialog, WM_HOTKEY, 0, MAKELPARAM(MOD_ALT | MOD_CONTROL, 'R'));
    // The dialog hides for the reset and comes back with both displays found again.
    ASSERT_TRUE(WaitFor([&] { return !IsWindowVisible(program.dialog); }));
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(program.dialog) != FALSE; }));
    program.Settle();
    EXPECT_EQ(SetsOf(*canvas, vcpC_RestoreFactoryDefaults), (std::vector<uint16_t>{1}));
    EXPECT_TRUE(SetsOf(*studio, vcpC_RestoreFactoryDefaults).empty());
    EXPECT_EQ(SendMessageW(program.Item(IDC_DISPLAY_LIST), CB_GETCOUNT, 0, 0), 2);
    EXPECT_EQ(program.Text(IDC_CONTRAST_EDIT), std::to_wstring(canvas->Value(vcpC_Contrast)));
    EXPECT_NE(canvas->Value(vcpC_Contrast), 20);
    EXPECT_EQ(FindDialog(kTitle, {program.dialog}), nullptr);  // nothing was asked
}

TEST(MainDialog, ABurstOfDragPositionsEndsAtTheLastOne) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    canvas->ClearTransactions();
    HWND slider = program.Item(IDC_BRIGHTNESS_SLIDER);
    for (int position = 30; position <= 60; position += 5) {
        PostMessageW(program.dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position),
                     reinterpret_cast<LPARAM>(slider));
    }
    program.Settle();
    ASSERT_TRUE(WaitFor([&] { return canvas->Value(vcpC_Luminance) == 60; }));
    const auto sets = SetsOf(*canvas, vcpC_Luminance);
    ASSERT_FALSE(sets.empty());
    EXPECT_EQ(sets.back(), 60);
    EXPECT_LE(sets.size(), 7u);  // stale positions may be skipped, never added
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"60");
}
