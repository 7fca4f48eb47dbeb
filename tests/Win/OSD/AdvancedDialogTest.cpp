// The advanced page of the real program over a simulated machine, driven through its windows.
// Needs an X display (Xvfb) under Wine.

#include <gtest/gtest.h>

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <optional>
#include <set>

#include "CAdvancedDialog.h"
#include "DialogIds.h"
#include "LogCapture.h"
#include "ProgramDriver.h"
#include "SettingTable.h"
#include "VirtualDisplayPresets.h"
#include "codes.h"

namespace {

// The program with its second display (Studio 32: fan, LED, scan-mode aspect) selected and
// the advanced page open.
struct SAdvancedPage : SProgram {
    HWND page = nullptr;

    SAdvancedPage() : SProgram("two-families") {
        if (!WaitForMainDialog()) {
            return;
        }
        SendMessageW(Item(IDC_DISPLAY_LIST), CB_SETCURSEL, 1, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_DISPLAY_LIST, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(Item(IDC_DISPLAY_LIST)));
        Click(IDC_ADVANCED_BUTTON);
        page = FindDialog(kTitle, {dialog});
    }
    HWND PageItem(int id) const { return GetDlgItem(page, id); }
    void Choose(int comboId, int index, bool wait = true) {
        SendMessageW(PageItem(comboId), CB_SETCURSEL, index, 0);
        const WPARAM command = MAKEWPARAM(comboId, CBN_SELCHANGE);
        if (wait) {
            SendMessageW(page, WM_COMMAND, command, reinterpret_cast<LPARAM>(PageItem(comboId)));
        } else {
            PostMessageW(page, WM_COMMAND, command, reinterpret_cast<LPARAM>(PageItem(comboId)));
        }
    }
    void Press(int id, bool wait = true) {
        const WPARAM command = MAKEWPARAM(id, BN_CLICKED);
        if (wait) {
            SendMessageW(page, WM_COMMAND, command, reinterpret_cast<LPARAM>(PageItem(id)));
        } else {
            PostMessageW(page, WM_COMMAND, command, reinterpret_cast<LPARAM>(PageItem(id)));
        }
    }
    std::shared_ptr<CVirtualDisplay> Studio() const { return Display(1); }
};

}  // namespace

TEST(AdvancedDialog, ShowsTheSelectedDisplaysSettingsAndVersions) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    EXPECT_TRUE(IsWindowVisible(program.page));
    EXPECT_EQ(TextOf(program.PageItem(IDC_PROGRAM_VERSION)), L"6.4.3-1");
    EXPECT_EQ(TextOf(program.PageItem(IDC_FIRMWARE_VERSION)), L"6.1.0");
    EXPECT_TRUE(IsWindowVisible(program.PageItem(IDC_FAN_LIST)));
    EXPECT_EQ(TextOf(program.PageItem(IDC_ENERGY_SMART_ON)), L"On");
    // It follows the main dialog: to its right, or to its left where the right side has no
    // room, and never off the monitor.
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(program.dialog, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT& work = monitor.rcWork;
    RECT main{};
    RECT page{};
    GetWindowRect(program.dialog, &main);
    const int mainWidth = main.right - main.left;
    SetWindowPos(program.dialog, nullptr, work.left, work.top + 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    program.Settle();
    GetWindowRect(program.page, &page);
    EXPECT_EQ(page.left, work.left + mainWidth);
    EXPECT_EQ(page.top, work.top + 40);
    SetWindowPos(program.dialog, nullptr, work.right - mainWidth, work.top + 60, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
    program.Settle();
    GetWindowRect(program.page, &page);
    EXPECT_EQ(page.right, work.right - mainWidth);
    EXPECT_EQ(page.top, work.top + 60);
    EXPECT_GE(page.left, work.left);
}

TEST(AdvancedDialog, SharpnessIsWrittenAtMostOnceASecond) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    auto studio = program.Studio();
    studio->ClearTransactions();
    HWND slider = program.PageItem(IDC_SHARPNESS_SLIDER);
    const DWORD start = GetTickCount();
    int last = 0;
    for (int step = 0; GetTickCount() - start < 3000; ++step) {
        last = step % 5;
        SendMessageW(slider, TBM_SETPOS, TRUE, last);
        SendMessageW(program.page, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, last),
                     reinterpret_cast<LPARAM>(slider));
        Sleep(20);
    }
    EXPECT_LE(SetsOf(*studio, vcpC_Sharpness).size(), 3u);  // at most one a second while dragging
    // The position the drag ended at reaches the display at a later tick. (Wine's one-second
    // timer sometimes comes late, so the count while dragging is bounded from above only.)
    ASSERT_TRUE(WaitFor([&] {
        const auto writes = SetsOf(*studio, vcpC_Sharpness);
        return !writes.empty() && writes.back() == last;
    }));
}

TEST(AdvancedDialog, CancelRestoresTheSevenSettingsOnlyAndOkKeepsChanges) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    auto studio = program.Studio();
    // Fan speed alone: Cancel writes nothing back.
    const uint16_t fan = studio->Value(vcpC_FanSpeed);
    const LRESULT fanNow = SendMessageW(program.PageItem(IDC_FAN_LIST), CB_GETCURSEL, 0, 0);
    program.Choose(IDC_FAN_LIST, fanNow == 0 ? 1 : 0);
    EXPECT_NE(studio->Value(vcpC_FanSpeed), fan);
    studio->ClearTransactions();
    program.Press(IDC_ADVANCED_CANCEL);
    EXPECT_FALSE(IsWindowVisible(program.page));
    EXPECT_TRUE(studio->Transactions().empty() || SetsOf(*studio, vcpC_FanSpeed).empty());

    // Aspect and power LED: Cancel puts both back.
    program.Click(IDC_ADVANCED_BUTTON);
    const uint16_t aspect = studio->Value(vcpC_ScanMode);
    const uint16_t led = studio->Value(vcpC_LedBrightness);
    const LRESULT aspectNow = SendMessageW(program.PageItem(IDC_ASPECT_LIST), CB_GETCURSEL, 0, 0);
    program.Choose(IDC_ASPECT_LIST, aspectNow == 0 ? 1 : 0);
    const LRESULT ledItems = SendMessageW(program.PageItem(IDC_LED_LIST), CB_GETCOUNT, 0, 0);
    const LRESULT ledNow = SendMessageW(program.PageItem(IDC_LED_LIST), CB_GETCURSEL, 0, 0);
    program.Choose(IDC_LED_LIST, static_cast<int>((ledNow + 1) % ledItems));
    EXPECT_NE(studio->Value(vcpC_ScanMode), aspect);
    EXPECT_NE(studio->Value(vcpC_LedBrightness), led);
    program.Press(IDCANCEL);
    EXPECT_EQ(studio->Value(vcpC_ScanMode), aspect);
    EXPECT_EQ(studio->Value(vcpC_LedBrightness), led);

    // OK keeps a change as an unsaved change of the main dialog.
    program.Click(IDC_ADVANCED_BUTTON);
    program.Choose(IDC_ASPECT_LIST, aspectNow == 0 ? 1 : 0);
    program.Press(IDC_ADVANCED_OK);
    EXPECT_NE(studio->Value(vcpC_ScanMode), aspect);
    EXPECT_TRUE(IsWindowEnabled(program.Item(IDC_SAVE_BUTTON)));
}

TEST(AdvancedDialog, OffOnPairsAndLcdConditioning) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    auto studio = program.Studio();
    program.Press(IDC_ENERGY_SMART_ON);
    EXPECT_EQ(studio->Value(vcpC_EnergySmart), 1);
    EXPECT_EQ(IsDlgButtonChecked(program.page, IDC_ENERGY_SMART_ON), BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(program.page, IDC_ENERGY_SMART_OFF), BST_UNCHECKED);
    program.Press(IDC_ENERGY_SMART_OFF);
    EXPECT_EQ(studio->Value(vcpC_EnergySmart), 0);
    EXPECT_EQ(IsDlgButtonChecked(program.page, IDC_ENERGY_SMART_ON), BST_UNCHECKED);

    // Studio 32 has no LCD conditioning; Canvas 22 Pro has.
    EXPECT_FALSE(IsWindowVisible(program.PageItem(IDC_LCD_CONDITIONING_START)));
    SendMessageW(program.Item(IDC_DISPLAY_LIST), CB_SETCURSEL, 0, 0);
    SendMessageW(program.dialog, WM_COMMAND, MAKEWPARAM(IDC_DISPLAY_LIST, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(program.Item(IDC_DISPLAY_LIST)));
    program.Click(IDC_ADVANCED_BUTTON);
    ASSERT_TRUE(IsWindowVisible(program.PageItem(IDC_LCD_CONDITIONING_START)));
    auto canvas = program.Display(0);

    // Start: the unsaved changes are dropped first, then 0xEA = 1.
    program.Type(IDC_CONTRAST_EDIT, L"33");
    const uint16_t saved = canvas->SavedValue(vcpC_Contrast);
    canvas->ClearTransactions();
    program.Press(IDC_LCD_CONDITIONING_START, false);
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        return (box = FindDialog(kTitle, {program.dialog, program.page})) != nullptr;
    }));
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_EQ(SetsOf(*canvas, vcpC_LCDConditioning), (std::vector<uint16_t>{1}));
    EXPECT_EQ(canvas->Value(vcpC_Contrast), saved);
    EXPECT_EQ(program.Text(IDC_CONTRAST_EDIT), std::to_wstring(saved));
}

TEST(AdvancedDialog, AFailedWriteHereEndsTheProgram) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    program.machine.MonitorConfiguration().FailNext(EMcaCall::SetVCPFeature, McaError::kI2CErrorReceivingData,
                                                    20);
    const LRESULT fanNow = SendMessageW(program.PageItem(IDC_FAN_LIST), CB_GETCURSEL, 0, 0);
    program.Choose(IDC_FAN_LIST, fanNow == 0 ? 1 : 0, false);
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        return (box = FindDialog(kTitle, {program.dialog, program.page})) != nullptr;
    }));
    EXPECT_EQ(MessageTextOf(box).rfind(L"Communication Failure... Exiting...", 0), 0u);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    program.ui.join();  // the program has ended
    EXPECT_FALSE(IsWindow(program.dialog));
    EXPECT_EQ(program.exitCode.load(), 3);
}

TEST(AdvancedDialog, FactoryResetAsksRunsAndRebuilds) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    auto studio = program.Studio();
    // Cancel in the question: nothing happens.
    program.Press(IDC_FACTORY_RESET, false);
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        return (box = FindDialog(kTitle, {program.dialog, program.page})) != nullptr;
    }));
    PostMessageW(box, WM_COMMAND, IDCANCEL, 0);
    ASSERT_TRUE(WaitFor([&] { return !IsWindow(box); }));
    program.Settle();
    EXPECT_TRUE(SetsOf(*studio, vcpC_RestoreFactoryDefaults).empty());

    // OK: the reset runs behind the wait window, then both dialogs come back.
    program.Press(IDC_FACTORY_RESET, false);
    ASSERT_TRUE(WaitFor([&] {
        return (box = FindDialog(kTitle, {program.dialog, program.page})) != nullptr;
    }));
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(WaitFor([&] { return SetsOf(*studio, vcpC_RestoreFactoryDefaults).size() == 1; }));
    ASSERT_TRUE(WaitFor([&] { return IsWindowVisible(program.dialog) && IsWindowVisible(program.page); }));
    program.Settle();
    EXPECT_EQ(SendMessageW(program.Item(IDC_DISPLAY_LIST), CB_GETCOUNT, 0, 0), 2);
}

TEST(AdvancedDialog, AFactoryResetThatLosesTheDisplaysEndsInTheNoDeviceWindow) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    // After the reset neither display answers the search again.
    program.machine.MonitorConfiguration().FailNext(EMcaCall::GetCapabilitiesStringLength,
                                                    McaError::kI2CErrorReceivingData, 10);
    program.Press(IDC_FACTORY_RESET, false);
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        return (box = FindDialog(kTitle, {program.dialog, program.page})) != nullptr;
    }));
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    HWND window = WaitForWindowWith(IDC_NO_DEVICE_HEADING);
    ASSERT_NE(window, nullptr);
    PostMessageW(window, WM_COMMAND, IDC_WINDOW_OK, 0);
    program.ui.join();
}

TEST(AdvancedDialog, EveryFamilyShowsItsPagesWithoutABadValue) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SCOPED_TRACE(model.key);
        SVirtualMachine machine;
        machine.monitors = {VirtualMachine::MonitorOf(std::make_shared<CVirtualDisplay>(model), 0)};
        SStartupOptions options;
        options.debugOutput = true;
        CLogCapture log;
        SProgram program(std::move(machine), options);
        ASSERT_TRUE(program.WaitForMainDialog());
        program.Click(IDC_ADVANCED_BUTTON);
        HWND page = FindDialog(kTitle, {program.dialog});
        ASSERT_NE(page, nullptr);
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(page, IDC_FACTORY_RESET)));
        EXPECT_FALSE(TextOf(GetDlgItem(page, IDC_FIRMWARE_VERSION)).empty());
        // Every visible choice has an item selected: the display's value is among the entries.
        // (Battery mode may be none of its choices: the firmware reports 0 on mains power.)
        for (int combo : {IDC_ASPECT_LIST, IDC_LED_LIST, IDC_UNIFORMITY_LIST, IDC_FAN_LIST}) {
            if (IsWindowVisible(GetDlgItem(page, combo))) {
                EXPECT_GE(SendDlgItemMessageW(page, combo, CB_GETCURSEL, 0, 0), 0) << combo;
            }
        }
        EXPECT_FALSE(log.Contains("Oops - bad combo value"));
        EXPECT_FALSE(log.Contains("idx < mValues.size()"));
    }
}

TEST(AdvancedDialog, EveryControlOfTheWindowThatSetsSomethingHasItsSettingsRow) {
    SAdvancedPage program;
    ASSERT_NE(program.page, nullptr);
    // Each list, slider and Off/On button of the real window maps to the setting of its kind,
    // and the On buttons say so; a control that maps to nothing would set nothing (or, as it
    // once did, another setting).
    int lists = 0;
    int offOn = 0;
    for (HWND child = GetWindow(program.page, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t type[64] = {};
        GetClassNameW(child, type, 64);
        const int id = GetDlgCtrlID(child);
        const LONG style = GetWindowLongW(child, GWL_STYLE);
        bool on = false;
        const std::optional<ESetting> setting = CAdvancedDialog::SettingOfControl(id, on);
        SCOPED_TRACE(testing::Message() << "control " << id);
        if (_wcsicmp(type, L"ComboBox") == 0) {
            ASSERT_TRUE(setting.has_value());
            EXPECT_EQ(SettingRowOf(*setting).kind, ESettingKind::Choice);
            ++lists;
        } else if (_wcsicmp(type, TRACKBAR_CLASSW) == 0) {
            ASSERT_TRUE(setting.has_value());
            EXPECT_EQ(*setting, ESetting::Sharpness);
        } else if (_wcsicmp(type, L"Button") == 0 && (style & BS_PUSHLIKE) != 0) {
            ASSERT_TRUE(setting.has_value());
            EXPECT_EQ(SettingRowOf(*setting).kind, ESettingKind::OnOff);
            EXPECT_EQ(on, id == IDC_ENERGY_SMART_ON || id == IDC_DYNAMIC_CONTRAST_ON ||
                              id == IDC_AUTO_POWER_DOWN_ON);
            ++offOn;
        } else if (_wcsicmp(type, L"Static") == 0) {
            EXPECT_FALSE(setting.has_value());  // labels set nothing
        }
    }
    EXPECT_EQ(lists, 5);  // aspect, LED, uniformity, fan, battery
    EXPECT_EQ(offOn, 6);
    // Each setting the page shows has one row, with its caption on its label.
    std::set<ESetting> seen;
    for (const CAdvancedDialog::SSettingControls& controls : CAdvancedDialog::SettingControls()) {
        EXPECT_TRUE(seen.insert(controls.setting).second);
        EXPECT_NE(SettingRowOf(controls.setting).kind, ESettingKind::Hidden);
    }
    EXPECT_EQ(TextOf(program.PageItem(IDC_FAN_LABEL)), L"&Fan Speed:");
    EXPECT_EQ(TextOf(program.PageItem(IDC_LCD_CONDITIONING_LABEL)), L"LCD Conditioning:");
}
