// Journeys through the real program as a person makes them: the real mouse and keyboard
// (SendInput, delivered by the system like a person's input), several steps each, and after
// every step the controls, the windows that exist and what reached the virtual displays.
// Needs an X display (Xvfb) under Wine.

#include <gtest/gtest.h>

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <dbt.h>

#include <fstream>

#include "AppRegistry.h"
#include "CColorSettingsDialog.h"
#include "CMainDialog.h"
#include "DialogIds.h"
#include "DialogLayout.h"
#include "HelpPages.h"
#include "ProgramDriver.h"
#include "codes.h"

namespace {

// Opens a drop-down list with the mouse and picks the item `steps` below the selected one.
void PickBelow(HWND combo, int steps) {
    ClickOn(combo);
    for (int i = 0; i < steps; ++i) {
        PressKey(VK_DOWN);
    }
    PressKey(VK_RETURN);
}

// A display of the machine by its EDID product code (Studio 24 has no monitor-side channel).
std::shared_ptr<CVirtualDisplay> DisplayOf(const SProgram& program, uint16_t edidProductCode) {
    for (const auto& display : program.machine.Machine().Displays()) {
        if (display->Model().edidProductCode == edidProductCode) {
            return display;
        }
    }
    return nullptr;
}

// A search after the desk settles: the settle time and the search itself, on a busy machine.
constexpr int kSearchTimeMs = 15000;

int Top(HWND control) {
    RECT rect{};
    GetWindowRect(control, &rect);
    return rect.top;
}

// Dialog units of a dialog in pixels, vertically (the dialog manager rounds each position on
// its own, so distances may differ by one pixel).
int DialogUnitsY(HWND dialog, int units) {
    RECT rect{0, 0, 0, units};
    MapDialogRect(dialog, &rect);
    return rect.bottom;
}

}  // namespace

TEST(Journey, TheAdvancedPageFollowsTheDisplayChosenInTheMainDialog) {
    SProgram program("one-per-route");  // Studio 24 first, Canvas 22 Pro second
    ASSERT_TRUE(program.WaitForMainDialog());
    auto studio = DisplayOf(program, 0x1070);
    auto canvasPro = DisplayOf(program, 0x1060);
    ASSERT_TRUE(studio && canvasPro);
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(WindowsAre({program.dialog, page}));
    EXPECT_EQ(TextOf(GetDlgItem(page, IDC_FIRMWARE_VERSION)), L"6.0.1");
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_FAN_LIST)));
    // Beside the main dialog, covering none of it.
    RECT main{};
    RECT own{};
    GetWindowRect(program.dialog, &main);
    GetWindowRect(page, &own);
    RECT overlap{};
    EXPECT_FALSE(IntersectRect(&overlap, &main, &own));

    // Another display in the main dialog: the page shows it, rows and firmware.
    PickBelow(program.Item(IDC_DISPLAY_LIST), 1);
    ASSERT_TRUE(WaitFor([&] { return TextOf(GetDlgItem(page, IDC_FIRMWARE_VERSION)) == L"3.1.2"; }));
    EXPECT_EQ(SelectedText(program.Item(IDC_DISPLAY_LIST)), L"Velor Canvas 22 Pro");
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(page, IDC_FAN_LIST)));
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_LED_LIST)));
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_LCD_CONDITIONING_START)));
    EXPECT_TRUE(WindowsAre({program.dialog, page}));

    // A change on the page reaches the display the page shows, and only it.
    studio->ClearTransactions();
    canvasPro->ClearTransactions();
    const uint16_t ledBefore = canvasPro->Value(vcpC_LedBrightness);
    PickBelow(GetDlgItem(page, IDC_LED_LIST), 1);
    ASSERT_TRUE(WaitFor([&] { return canvasPro->Value(vcpC_LedBrightness) != ledBefore; }));
    EXPECT_TRUE(studio->Transactions().empty());
    EXPECT_TRUE(WindowsAre({program.dialog, page}));  // no error box, the program lives

    // Cancel puts the page's change back on that display.
    ClickOn(GetDlgItem(page, IDC_ADVANCED_CANCEL));
    ASSERT_TRUE(WaitFor([&] { return !IsWindowVisible(page); }));
    EXPECT_EQ(canvasPro->Value(vcpC_LedBrightness), ledBefore);
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, RowsADisplayLacksLeaveNoGaps) {
    SProgram program("one-per-route");
    ASSERT_TRUE(program.WaitForMainDialog());
    // Studio 24 offers no gamma: the buttons sit one row (24 dialog units) higher than on
    // Canvas 22 Pro, which offers it.
    ASSERT_FALSE(IsWindowVisible(program.Item(IDC_GAMMA_LIST)));
    const int withoutGamma = Top(program.Item(IDC_ADVANCED_BUTTON)) - Top(program.dialog);
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    // On the page, Energy Smart and Auto Power Down stand one row (18 units) apart: the
    // Dynamic Contrast row between them is not there.
    ASSERT_FALSE(IsWindowVisible(GetDlgItem(page, IDC_DYNAMIC_CONTRAST_ON)));
    EXPECT_NEAR(Top(GetDlgItem(page, IDC_AUTO_POWER_DOWN_ON)) - Top(GetDlgItem(page, IDC_ENERGY_SMART_ON)),
                DialogUnitsY(page, 18), 1);

    PickBelow(program.Item(IDC_DISPLAY_LIST), 1);
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(program.Item(IDC_GAMMA_LIST)) != FALSE; }));
    const int withGamma = Top(program.Item(IDC_ADVANCED_BUTTON)) - Top(program.dialog);
    EXPECT_NEAR(withGamma - withoutGamma, DialogUnitsY(program.dialog, 24), 1);
    ASSERT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_DYNAMIC_CONTRAST_ON)));
    EXPECT_NEAR(Top(GetDlgItem(page, IDC_AUTO_POWER_DOWN_ON)) - Top(GetDlgItem(page, IDC_ENERGY_SMART_ON)),
                DialogUnitsY(page, 36), 1);
}

TEST(Journey, ATypedDarkValueIsAskedAboutOnceAndTheNextClickLands) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t before = canvas->Value(vcpC_Luminance);
    canvas->ClearTransactions();

    // 3 and Enter: one question; Yes keeps it.
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"3");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(gDarkQuestions.load(), 1);
    EXPECT_EQ(canvas->Value(vcpC_Luminance), 3);
    // Enter again, then a click into Contrast: nothing is asked, and the click moves the focus.
    PressKey(VK_RETURN);
    ClickOn(program.Item(IDC_CONTRAST_EDIT));
    program.Settle();
    EXPECT_EQ(gDarkQuestions.load(), 1);
    EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_CONTRAST_EDIT));

    // 2 and a click elsewhere: one question; No puts 3 back, and no second question follows.
    gDarkAnswer = IDNO;
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"2");
    ClickOn(program.Item(IDC_CONTRAST_EDIT));
    program.Settle();
    EXPECT_EQ(gDarkQuestions.load(), 2);
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"3");
    EXPECT_EQ(canvas->Value(vcpC_Luminance), 3);
    PressKey(VK_TAB);
    program.Settle();
    EXPECT_EQ(gDarkQuestions.load(), 2);
    EXPECT_EQ(SetsOf(*canvas, vcpC_Luminance), (std::vector<uint16_t>{3, 2, 3}));
    EXPECT_TRUE(WindowsAre({program.dialog}));
    EXPECT_NE(before, 3);
}

TEST(Journey, TheRealDarkScreenQuestionStandsInFrontAndIsAnsweredWithTheMouse) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    MessageWindows::SetMessageBoxTimeoutFunction(nullptr);  // Wine's own box (no time-out)
    auto canvas = program.Display(0);
    const uint16_t before = canvas->Value(vcpC_Luminance);
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"3");
    PressKey(VK_RETURN);
    HWND box = FindMessageBox({program.dialog});
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(InFront(box));
    EXPECT_NE(MessageTextOf(box).find(L"too dark"), std::wstring::npos);
    EXPECT_TRUE(WindowsAre({program.dialog, box}));
    ClickOn(GetDlgItem(box, IDNO));
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_EQ(canvas->Value(vcpC_Luminance), before);
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), std::to_wstring(before));
    // The focus goes back to the edit and leaves it again: no second question.
    ClickOn(program.Item(IDC_CONTRAST_EDIT));
    Pause(300);
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, TheCustomColourDialogAsksOncePerReleaseAndEnterAppliesATypedValue) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    // Custom colour mode, chosen with the keyboard in the open list.
    HWND mode = program.Item(IDC_COLOR_SETTING_LIST);
    ClickOn(mode);
    PressKey(VK_END);
    PressKey(VK_RETURN);
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(program.Item(IDC_CUSTOM_COLOR_BUTTON)) != FALSE; }));
    // The preset lists give way to the custom colour; gamma stays.
    EXPECT_FALSE(IsWindowVisible(program.Item(IDC_COLOR_TEMPERATURE_LIST)));
    EXPECT_FALSE(IsWindowVisible(program.Item(IDC_COLOR_SPACE_LIST)));
    EXPECT_TRUE(IsWindowVisible(program.Item(IDC_GAMMA_LIST)));
    ClickOn(program.Item(IDC_CUSTOM_COLOR_BUTTON));
    HWND colours = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (colours = FindDialog(L"Custom Color")) != nullptr; }));

    // 10 and Enter in the red and green gain boxes: applied at once, nothing asked (blue still
    // gives light), and the dialog stays open.
    const int gain = eColorModGain * CColorSettingsDialog::kChannels;
    auto slider = [&](int channel) {
        return GetDlgItem(colours, IDC_COLOR_MOD_SLIDER_FIRST + gain + channel);
    };
    auto edit = [&](int channel) { return GetDlgItem(colours, IDC_COLOR_MOD_EDIT_FIRST + gain + channel); };
    canvas->ClearTransactions();
    for (int channel : {0, 1}) {
        TypeInto(edit(channel), L"10");
        PressKey(VK_RETURN);
        program.Settle();
        EXPECT_TRUE(IsWindowVisible(colours));
        EXPECT_EQ(SendMessageW(slider(channel), TBM_GETPOS, 0, 0), 10);
    }
    EXPECT_EQ(gDarkQuestions.load(), 0);
    EXPECT_FALSE(canvas->Transactions().empty());
    EXPECT_TRUE(WindowsAre({program.dialog, colours}));

    // The blue gain slider dragged to its left end and let go: too dark, asked once; No puts
    // blue back.
    gDarkAnswer = IDNO;
    const std::wstring blue = TextOf(edit(2));
    RECT thumb{};
    SendMessageW(slider(2), TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    MapWindowPoints(slider(2), nullptr, reinterpret_cast<POINT*>(&thumb), 2);
    RECT track{};
    GetWindowRect(slider(2), &track);
    const POINT from{(thumb.left + thumb.right) / 2, (thumb.top + thumb.bottom) / 2};
    Drag(from, {track.left - 20, from.y});
    program.Settle();
    EXPECT_EQ(gDarkQuestions.load(), 1);
    EXPECT_EQ(TextOf(edit(2)), blue);
    EXPECT_EQ(std::to_wstring(SendMessageW(slider(2), TBM_GETPOS, 0, 0)), blue);
    EXPECT_TRUE(IsWindowVisible(colours));
    // Esc leaves it as it was opened.
    PressKey(VK_ESCAPE);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(colours); }));
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, LcdConditioningAsksFirstKeepsUnsavedChangesOnNoAndShowsThatItRuns) {
    SProgram program("two-families");  // Canvas 22 Pro offers LCD conditioning
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    const uint16_t saved = canvas->SavedValue(vcpC_Contrast);
    TypeInto(program.Item(IDC_CONTRAST_EDIT), std::to_wstring(saved + 7));
    PressKey(VK_RETURN);
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    HWND start = GetDlgItem(page, IDC_LCD_CONDITIONING_START);

    // Space on the focused Start button asks; Escape answers no: nothing is written or lost.
    ClickOn(start);
    HWND box = FindMessageBox({program.dialog, page});
    ASSERT_NE(box, nullptr);
    EXPECT_NE(MessageTextOf(box).find(L"Changes you have not saved are dropped first"), std::wstring::npos);
    EXPECT_NE(MessageTextOf(box).find(L"Display: Velor Canvas 22 Pro"), std::wstring::npos);
    PressKey(VK_ESCAPE);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_TRUE(SetsOf(*canvas, vcpC_LCDConditioning).empty());
    EXPECT_EQ(canvas->Value(vcpC_Contrast), saved + 7);
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(page, IDC_LCD_CONDITIONING_STATE)));

    PressKey(VK_SPACE);  // the focus is back on Start
    box = FindMessageBox({program.dialog, page});
    ASSERT_NE(box, nullptr);
    ClickOn(GetDlgItem(box, IDOK));
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_EQ(SetsOf(*canvas, vcpC_LCDConditioning), (std::vector<uint16_t>{1}));
    EXPECT_EQ(canvas->Value(vcpC_Contrast), saved);
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_LCD_CONDITIONING_STATE)));
    EXPECT_EQ(TextOf(GetDlgItem(page, IDC_LCD_CONDITIONING_STATE)), L"Running");
    EXPECT_FALSE(IsWindowEnabled(start));
    // The user goes on in the page, at its OK button, not in the main dialog.
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ADVANCED_OK));
    // A click on Start again starts nothing: the button is off while it runs.
    ClickOn(start);
    Pause(300);
    EXPECT_TRUE(WindowsAre({program.dialog, page}));
    EXPECT_EQ(SetsOf(*canvas, vcpC_LCDConditioning).size(), 1u);
}

TEST(Journey, TheFactoryResetQuestionNamesTheDisplay) {
    SProgram program("one-per-route");
    ASSERT_TRUE(program.WaitForMainDialog());
    PickBelow(program.Item(IDC_DISPLAY_LIST), 2);  // Canvas 12, of four displays
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    ClickOn(GetDlgItem(page, IDC_FACTORY_RESET));
    HWND box = FindMessageBox({program.dialog, page});
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageTextOf(box),
              L"All settings of the display will be reset to their factory defaults.\nDo you want to "
              L"continue?\n\nDisplay: Velor Canvas 12");
    PressKey(VK_ESCAPE);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    for (const auto& display : program.machine.Machine().Displays()) {
        EXPECT_TRUE(SetsOf(*display, vcpC_RestoreFactoryDefaults).empty());
    }
    EXPECT_TRUE(WindowsAre({program.dialog, page}));
    // The user goes on in the page: its keys are the page's again.
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_FACTORY_RESET));
}

namespace {

std::vector<std::wstring> gOpened;
bool RecordAddress(HWND, const std::wstring& address) {
    gOpened.push_back(address);
    return true;
}

std::wstring TestProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.find_last_of(L'\\') + 1);
}

}  // namespace

TEST(Journey, HelpOpensTheDisplaysPageOrTheDeploymentsSiteAndSaysWhenItCannot) {
    gOpened.clear();
    HelpPages::SetOpener(&RecordAddress);
    const std::wstring help = TestProgramFolder() + L"Help";
    CreateDirectoryW(help.c_str(), nullptr);
    const std::wstring page = help + L"\\canvas-22-pro.html";
    std::ofstream(page.c_str()) << "<html></html>";
    {
        SProgram program("two-families");
        ASSERT_TRUE(program.WaitForMainDialog());
        // The page shipped beside the program.
        ClickOn(program.Item(IDC_HELP_BUTTON));
        program.Settle();
        ASSERT_EQ(gOpened.size(), 1u);
        EXPECT_EQ(gOpened[0], page);

        // A deployment's own site, from the registry.
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Velor\\OSD", 0, nullptr, 0, KEY_SET_VALUE,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        const wchar_t site[] = L"https://help.studio.example/";
        RegSetValueExW(key, L"HelpBaseAddress", 0, REG_SZ, reinterpret_cast<const BYTE*>(site), sizeof(site));
        RegCloseKey(key);
        ClickOn(program.Item(IDC_HELP_BUTTON));
        program.Settle();
        ASSERT_EQ(gOpened.size(), 2u);
        EXPECT_EQ(gOpened[1], L"https://help.studio.example/UserHelp/en_US/TOC/canvas-22-pro.html");
        EXPECT_TRUE(WindowsAre({program.dialog}));

        // No page and no site: the user is told where the help was looked for.
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Velor");
        DeleteFileW(page.c_str());
        ClickOn(program.Item(IDC_HELP_BUTTON));
        HWND box = FindMessageBox({program.dialog});
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(MessageTextOf(box), L"The help page could not be opened:\n" + help + L"\\index.html");
        PressKey(VK_RETURN);
        ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
        EXPECT_EQ(gOpened.size(), 2u);
    }
    RemoveDirectoryW(help.c_str());
    HelpPages::SetOpener(nullptr);
}

TEST(DialogLayout, TheAdvancedPageGoesBesideTheMainDialogNeverOverIt) {
    const RECT work{0, 0, 1024, 738};
    const SIZE page{399, 505};
    // Room on the right.
    EXPECT_EQ(PlaceBeside({100, 100, 556, 511}, page, work).x, 556);
    // Room only on the left.
    POINT at = PlaceBeside({600, 100, 1000, 511}, page, work);
    EXPECT_EQ(at.x, 201);
    EXPECT_EQ(at.y, 100);
    // Centred on a 1024-wide screen: neither side has room; below neither; the top does not
    // either: the side with the most room, inside the work area.
    at = PlaceBeside({284, 163, 740, 574}, page, work);
    EXPECT_EQ(at.x, 625);
    EXPECT_EQ(at.y, 163);
    // A low main dialog: the page goes above it.
    at = PlaceBeside({284, 600, 740, 730}, SIZE{399, 300}, RECT{0, 0, 1000, 738});
    EXPECT_EQ(at.y, 300);
    EXPECT_EQ(at.x, 284);
    // The lower edge stays inside the work area.
    EXPECT_EQ(PlaceBeside({100, 500, 556, 700}, page, work).y, 738 - 505);
}

TEST(Journey, ADoubleClickedResetColorAndTheHotKeyDuringItStartNothingMore) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    CShortenedRealClock shortened(4);  // the colour reset takes about a second
    CScopedClock clock(shortened);
    canvas->ClearTransactions();

    // A double click on Reset Color, then the hot key while the reset runs.
    MoveMouse(CentreOf(program.Item(IDC_RESET_COLOR_BUTTON)));
    for (int click = 0; click < 2; ++click) {
        SendMouse(MOUSEEVENTF_LEFTDOWN);
        SendMouse(MOUSEEVENTF_LEFTUP);
        Sleep(60);
    }
    PressKey('R', {VK_CONTROL, VK_MENU});
    // The program keeps answering while the reset runs, and it ends with one wait window gone.
    bool alwaysAnswered = true;
    bool sawWaitWindow = false;
    for (int i = 0; i < 100; ++i) {
        alwaysAnswered = alwaysAnswered && Answers(program.dialog);
        const bool waiting = VisibleWindows().size() > 1;
        sawWaitWindow = sawWaitWindow || waiting;
        if (sawWaitWindow && !waiting) {
            break;
        }
        Sleep(50);
    }
    program.Settle();
    EXPECT_TRUE(sawWaitWindow);
    EXPECT_TRUE(alwaysAnswered);
    EXPECT_EQ(SetsOf(*canvas, vcpC_RestoreFactoryColorDefaults), (std::vector<uint16_t>{1}));
    EXPECT_TRUE(SetsOf(*canvas, vcpC_RestoreFactoryDefaults).empty());
    EXPECT_TRUE(WindowsAre({program.dialog}));
    EXPECT_TRUE(IsWindowEnabled(program.dialog));
}

TEST(Journey, TheHotKeyDoesNothingWhileAnotherWindowIsInFront) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    // Another application's window in front (here: a plain window of the test's own thread).
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.hInstance = GetModuleHandleW(nullptr);
    type.lpszClassName = L"AnotherProgram";
    RegisterClassW(&type);
    HWND other = CreateWindowExW(0, L"AnotherProgram", L"Another program", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                 50, 50, 300, 200, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(other, nullptr);
    // This thread owns the window: it takes the click (and the focus) only while it pumps.
    auto pump = [](int ms) {
        for (int i = 0; i < ms / 10; ++i) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
            }
            Sleep(10);
        }
    };
    ClickOn(other);
    pump(200);
    if (GetForegroundWindow() != other) {
        SetForegroundWindow(other);  // a click does not always activate it under Wine
        pump(200);
    }
    const bool inFront = GetForegroundWindow() == other;
    if (inFront) {
        PressKey('R', {VK_CONTROL, VK_MENU});
        pump(400);
        program.Settle();
    }
    DestroyWindow(other);
    ASSERT_TRUE(inFront);
    EXPECT_TRUE(SetsOf(*canvas, vcpC_RestoreFactoryDefaults).empty());
    EXPECT_TRUE(IsWindowVisible(program.dialog));

    // In front, the same keys reset the display, unasked (a service shortcut).
    ClickOn(program.Item(IDC_BRIGHTNESS_EDIT));
    ASSERT_EQ(GetForegroundWindow(), program.dialog);
    PressKey('R', {VK_CONTROL, VK_MENU});
    ASSERT_TRUE(WaitFor([&] { return SetsOf(*canvas, vcpC_RestoreFactoryDefaults).size() == 1; }));
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(program.dialog) != FALSE; }));
}

TEST(Journey, TabShiftTabEscapeAndEnterWorkInTheAdvancedPage) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    ClickOn(GetDlgItem(page, IDC_ENERGY_SMART_OFF));
    ASSERT_EQ(FocusOf(page), GetDlgItem(page, IDC_ENERGY_SMART_OFF));
    PressKey(VK_TAB);
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ENERGY_SMART_ON));
    PressKey(VK_TAB, {VK_SHIFT});
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ENERGY_SMART_OFF));
    // The settings' rows come first, top to bottom, then the page's buttons: Tab from Cancel
    // goes round to the first row, Shift+Tab from it back to Cancel.
    for (int press = 0; press < 6 && FocusOf(page) != GetDlgItem(page, IDC_ASPECT_LIST); ++press) {
        PressKey(VK_TAB, {VK_SHIFT});
    }
    ASSERT_EQ(FocusOf(page), GetDlgItem(page, IDC_ASPECT_LIST));
    PressKey(VK_TAB, {VK_SHIFT});
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ADVANCED_CANCEL));
    PressKey(VK_TAB);
    EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ASPECT_LIST));
    // Esc is Cancel: the page closes.
    PressKey(VK_ESCAPE);
    ASSERT_TRUE(WaitFor([&] { return !IsWindowVisible(page); }));
    EXPECT_TRUE(WindowsAre({program.dialog}));
    // Enter is OK.
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(page) != FALSE; }));
    ClickOn(GetDlgItem(page, IDC_ENERGY_SMART_OFF));
    PressKey(VK_RETURN);
    ASSERT_TRUE(WaitFor([&] { return !IsWindowVisible(page); }));
    // Tab in the main dialog still moves there, gamma between the colour group and the buttons.
    ClickOn(program.Item(IDC_BRIGHTNESS_EDIT));
    PressKey(VK_TAB);
    EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_BRIGHTNESS_SLIDER));
    PressKey('G', {VK_MENU});
    ASSERT_EQ(FocusOf(program.dialog), program.Item(IDC_GAMMA_LIST));
    PressKey(VK_TAB, {VK_SHIFT});
    EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_RESET_COLOR_BUTTON));
    PressKey(VK_TAB);
    PressKey(VK_TAB);
    EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_ADVANCED_BUTTON));
}

TEST(Journey, AccessKeysTakeTheKeyboardToTheirControlsInEveryDialog) {
    {
        SProgram program("two-families");
        ASSERT_TRUE(program.WaitForMainDialog());
        EXPECT_EQ(program.Text(IDC_BRIGHTNESS_LABEL), L"&Brightness:");
        EXPECT_EQ(program.Text(IDC_SAVE_BUTTON), L"&Save");
        ClickOn(program.Item(IDC_DISPLAY_LIST));
        PressKey(VK_ESCAPE);  // the list closes again
        PressKey('C', {VK_MENU});
        EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_CONTRAST_EDIT));
        PressKey('G', {VK_MENU});
        EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_GAMMA_LIST));
        PressKey('B', {VK_MENU});
        EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_BRIGHTNESS_EDIT));
        // The advanced page's labels lead to their controls too.
        ClickOn(program.Item(IDC_ADVANCED_BUTTON));
        HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
        ASSERT_NE(page, nullptr);
        ClickOn(GetDlgItem(page, IDC_ENERGY_SMART_OFF));
        PressKey('S', {VK_MENU});
        EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_SHARPNESS_SLIDER));
        PressKey('E', {VK_MENU});
        EXPECT_EQ(FocusOf(page), GetDlgItem(page, IDC_ENERGY_SMART_OFF));
        EXPECT_TRUE(WindowsAre({program.dialog, page}));
    }
    {
        // Japanese writes the English letter in brackets, before the colon.
        SProgram program("two-families", InLanguage("ja"));
        ASSERT_TRUE(program.WaitForMainDialog());
        EXPECT_EQ(program.Text(IDC_BRIGHTNESS_LABEL), L"\u8F1D\u5EA6(&B):");
        ClickOn(program.Item(IDC_GAMMA_LIST));
        PressKey(VK_ESCAPE);
        PressKey('B', {VK_MENU});
        EXPECT_EQ(FocusOf(program.dialog), program.Item(IDC_BRIGHTNESS_EDIT));
    }
}

TEST(Journey, AWindowTheUserMovedStaysThereWhenTheDialogIsPlacedAgain) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    RECT before{};
    GetWindowRect(program.dialog, &before);
    // Dragged by its caption 120 pixels left and 80 up.
    const POINT caption{before.left + 60, before.top + GetSystemMetrics(SM_CYCAPTION) / 2 + 2};
    Drag(caption, {caption.x - 120, caption.y - 80}, 8);
    RECT moved{};
    GetWindowRect(program.dialog, &moved);
    ASSERT_EQ(moved.left, before.left - 120);
    ASSERT_EQ(moved.top, before.top - 80);
    // Another display re-initialises every control and places the window: it stays.
    PickBelow(program.Item(IDC_DISPLAY_LIST), 1);
    ASSERT_TRUE(WaitFor([&] { return SelectedText(program.Item(IDC_DISPLAY_LIST)) == L"Velor Studio 32"; }));
    RECT after{};
    GetWindowRect(program.dialog, &after);
    EXPECT_EQ(after.left, moved.left);
    EXPECT_EQ(after.top, moved.top);
    // And that is the place remembered when it closes.
    program.Close();
    const auto stored = AppRegistry::ReadLocation();
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->x, moved.left);
    EXPECT_EQ(stored->y, moved.top);
    EXPECT_EQ(program.exitCode.load(), 0);
}

TEST(Journey, SliderMovesDuringASearchReachNoDisplayAndTheDialogWorksAfterIt) {
    SProgram program("one-per-route");  // the serial and bridge displays take time to find
    ASSERT_TRUE(program.WaitForMainDialog());
    auto studio = DisplayOf(program, 0x1070);  // selected; its brightness is the maker's 0x6B
    ASSERT_TRUE(studio);
    constexpr uint8_t kStudioBrightness = 0x6B;
    CShortenedRealClock shortened(2);
    CScopedClock clock(shortened);
    studio->ClearTransactions();
    PostMessageW(program.dialog, CMainDialog::kSearchAgainMessage, 0, 0);
    ASSERT_TRUE(WaitFor([&] { return VisibleWindows().size() > 1; }));  // the wait window
    // A drag as the slider reports it, and the real mouse on the slider: the dialog takes no
    // input, and what arrives anyway finds no display while the list is rebuilt.
    HWND slider = program.Item(IDC_BRIGHTNESS_SLIDER);
    for (int position = 10; position <= 60; position += 10) {
        PostMessageW(program.dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position),
                     reinterpret_cast<LPARAM>(slider));
    }
    PostMessageW(program.dialog, WM_HSCROLL, MAKEWPARAM(TB_ENDTRACK, 0), reinterpret_cast<LPARAM>(slider));
    ClickOn(slider);
    EXPECT_TRUE(Answers(program.dialog));
    ASSERT_GT(VisibleWindows().size(), 1u);  // all of it happened while the search ran
    for (int i = 0; i < 200 && VisibleWindows().size() > 1; ++i) {
        EXPECT_TRUE(Answers(program.dialog));
        Sleep(50);
    }
    program.Settle();
    EXPECT_TRUE(SetsOf(*studio, kStudioBrightness).empty());
    EXPECT_TRUE(WindowsAre({program.dialog}));
    // The dialog works on the display found again.
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"55");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(SetsOf(*studio, kStudioBrightness), (std::vector<uint16_t>{55}));
}

TEST(Journey, DisplaysThatGoAndComeBackAreFoundAgainAndTheSelectedOneStaysSelected) {
    SProgram program("two-families");
    ASSERT_TRUE(program.WaitForMainDialog());
    auto canvas = program.Display(0);
    auto studio = program.Display(1);
    CVirtualMonitorConfiguration& api = program.machine.MonitorConfiguration();
    HWND list = program.Item(IDC_DISPLAY_LIST);
    PickBelow(list, 1);  // the user works on Studio 32, second in the list
    ASSERT_TRUE(WaitFor([&] { return SelectedText(list) == L"Velor Studio 32"; }));

    // Canvas 22 Pro is unplugged: Windows tells of a device change; after the desk settles the
    // program searches once and shows what is left, Studio 32 now first.
    api.SetUnreachable(canvas);
    const size_t listings = api.CallCount(EMcaCall::GetPhysicalMonitors);
    for (int i = 0; i < 3; ++i) {  // a burst of notifications
        PostMessageW(program.dialog, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
        Sleep(100);
    }
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 1; }, kSearchTimeMs));
    program.Settle();
    EXPECT_EQ(api.CallCount(EMcaCall::GetPhysicalMonitors) - listings, 2u);  // one search of two monitors
    EXPECT_EQ(SelectedText(list), L"Velor Studio 32");
    EXPECT_TRUE(WindowsAre({program.dialog}));

    // It comes back while the computer sleeps; on waking the program finds it again, and the
    // display the user works on stays selected though it is second in the list again.
    api.SetReachable(canvas);
    api.Replug(canvas);
    api.Replug(studio);
    PostMessageW(program.dialog, WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC, 0);
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 2; }, kSearchTimeMs));
    program.Settle();
    EXPECT_EQ(SelectedText(list), L"Velor Studio 32");
    studio->ClearTransactions();
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"42");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(studio->Value(0x6B), 42);         // the Studio family's brightness is the maker's 0x6B
    EXPECT_TRUE(WindowsAre({program.dialog}));  // no error box on the way
}

TEST(Journey, AnUnpluggedHidDisplayIsReportedClosedAndFoundAgainWhenItComesBack) {
    SProgram program("one-per-route");  // Studio 24, selected, is reached over USB (HID)
    ASSERT_TRUE(program.WaitForMainDialog());
    auto studio = DisplayOf(program, 0x1070);
    ASSERT_TRUE(studio);
    std::string path;
    for (const auto& hid : program.machine.Machine().hidInterfaces) {
        path = hid.display == studio ? hid.path : path;
    }
    ASSERT_FALSE(path.empty());
    HWND list = program.Item(IDC_DISPLAY_LIST);
    ASSERT_EQ(SelectedText(list), L"Velor Studio 24");

    // Unplugged: the change is reported as failed, not as done, and the program looks again.
    program.machine.Hid().SetUnplugged(path, true);
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"30");
    PressKey(VK_RETURN);
    HWND box = FindMessageBox({program.dialog});
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageTextOf(box).rfind(L"There was an error talking to the display.", 0), 0u);
    PressKey(VK_RETURN);
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 3; }, kSearchTimeMs));
    program.Settle();
    EXPECT_EQ(SelectedText(list), L"Velor Canvas 22 Pro");
    EXPECT_TRUE(WindowsAre({program.dialog}));

    // Plugged back in: Windows announces the device; once it has settled it is in the list.
    program.machine.Hid().SetUnplugged(path, false);
    // Sent, as Windows sends it: an arrival carries a pointer and cannot be posted.
    DEV_BROADCAST_HDR arrival{sizeof(arrival), DBT_DEVTYP_DEVICEINTERFACE, 0};
    SendMessageW(program.dialog, WM_DEVICECHANGE, DBT_DEVICEARRIVAL, reinterpret_cast<LPARAM>(&arrival));
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 4; }, kSearchTimeMs));
    program.Settle();
    // The display the user had chosen is selected again.
    EXPECT_EQ(SelectedText(list), L"Velor Studio 24");
    studio->ClearTransactions();
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"30");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(SetsOf(*studio, 0x6B), (std::vector<uint16_t>{30}));  // Studio's brightness code
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, TheDesksEventsAsTheDemoPlaysThemLeaveTheDialogWorking) {
    SProgram program("replug");
    ASSERT_TRUE(program.WaitForMainDialog());
    const SVirtualMachine& desk = program.machine.Machine();
    ASSERT_EQ(desk.timeline.size(), 2u);
    HWND list = program.Item(IDC_DISPLAY_LIST);
    // Unplugged (told by a broadcast device change): Studio 32 stands in.
    program.machine.Play(desk.timeline[0]);
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 1; }, kSearchTimeMs));
    EXPECT_EQ(SelectedText(list), L"Velor Studio 32");
    // Plugged in again: Canvas 22 Pro is back and selected again.
    program.machine.Play(desk.timeline[1]);
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 2; }, kSearchTimeMs));
    program.Settle();
    EXPECT_EQ(SelectedText(list), L"Velor Canvas 22 Pro");
    // The computer sleeps (meanwhile the brightness is turned to 40 on the display's own menu)
    // and wakes: every handle died; the program searched, shows the display as it is, and
    // writes land.
    auto canvas = program.Display(0);
    program.machine.Play({std::chrono::milliseconds(0), SDeskEvent::EKind::Sleep, nullptr});
    program.machine.Play(
        {std::chrono::milliseconds(0), SDeskEvent::EKind::MenuChange, canvas, vcpC_Luminance, 40});
    program.machine.Play({std::chrono::milliseconds(0), SDeskEvent::EKind::Wake, nullptr});
    const size_t listings = program.machine.MonitorConfiguration().CallCount(EMcaCall::GetPhysicalMonitors);
    ASSERT_TRUE(WaitFor(
        [&] {
            return program.machine.MonitorConfiguration().CallCount(EMcaCall::GetPhysicalMonitors) > listings;
        },
        kSearchTimeMs));
    ASSERT_TRUE(WaitFor([&] { return VisibleWindows().size() == 1; }));
    program.Settle();
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"40");
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"61");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(canvas->Value(vcpC_Luminance), 61);
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, ADisplaySwitchedOffAndOnIsSelectedAgainShowingWhatItKeptAndWorks) {
    SProgram program("power-cycle");
    ASSERT_TRUE(program.WaitForMainDialog());
    CShortenedRealClock shortened(2);  // the firmware starts on the real clock
    CScopedClock clock(shortened);
    auto canvas = program.Display(0);
    HWND list = program.Item(IDC_DISPLAY_LIST);
    ASSERT_EQ(SelectedText(list), L"Velor Canvas 22 Pro");
    // A change the user did not save, then the display is switched off and on.
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"33");
    PressKey(VK_RETURN);
    program.Settle();
    ASSERT_EQ(canvas->Value(vcpC_Luminance), 33);
    program.machine.Play(program.machine.Machine().timeline.at(0));

    // The search after the notification comes while the firmware still starts (Studio 32 stands
    // in); the program looks again and selects Canvas 22 Pro when it answers.
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 1; }, kSearchTimeMs));
    EXPECT_EQ(SelectedText(list), L"Velor Studio 32");
    ASSERT_TRUE(WaitFor([&] { return SendMessageW(list, CB_GETCOUNT, 0, 0) == 2; }, kSearchTimeMs));
    ASSERT_TRUE(WaitFor([&] { return VisibleWindows().size() == 1; }));
    program.Settle();
    EXPECT_EQ(SelectedText(list), L"Velor Canvas 22 Pro");
    // The dialog shows what the display kept (its saved 70), not the 33 the display lost.
    EXPECT_EQ(program.Text(IDC_BRIGHTNESS_EDIT), L"70");
    EXPECT_EQ(program.SliderPosition(IDC_BRIGHTNESS_SLIDER), 70);
    canvas->ClearTransactions();
    TypeInto(program.Item(IDC_BRIGHTNESS_EDIT), L"44");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(SetsOf(*canvas, vcpC_Luminance), (std::vector<uint16_t>{44}));
    EXPECT_TRUE(WindowsAre({program.dialog}));
}

TEST(Journey, TheOnlyDisplaySwitchedOffAndOnIsWaitedForNotTakenAsGone) {
    SProgram program("pen-computer");  // one display, through the graphics driver
    ASSERT_TRUE(program.WaitForMainDialog());
    CShortenedRealClock shortened(1);
    CScopedClock clock(shortened);
    auto slate = program.Display(0);
    program.machine.Play({std::chrono::milliseconds(0), SDeskEvent::EKind::PowerCycle, slate});
    // The first search finds nothing that answers: the "please wait" window stays while the
    // program looks again, and the no-device window never comes.
    ASSERT_TRUE(WaitFor([&] { return VisibleWindows().size() > 1; }, kSearchTimeMs));
    ASSERT_TRUE(WaitFor([&] { return VisibleWindows().size() == 1 || program.ended; }, kSearchTimeMs));
    ASSERT_FALSE(program.ended);
    program.Settle();
    EXPECT_EQ(SelectedText(program.Item(IDC_DISPLAY_LIST)), L"Velor Slate 13 Pro");
    slate->ClearTransactions();
    TypeInto(program.Item(IDC_CONTRAST_EDIT), L"45");
    PressKey(VK_RETURN);
    program.Settle();
    EXPECT_EQ(SetsOf(*slate, vcpC_Contrast), (std::vector<uint16_t>{45}));
    EXPECT_TRUE(WindowsAre({program.dialog}));
}
