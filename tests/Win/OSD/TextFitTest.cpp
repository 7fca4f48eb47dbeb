// Every text fits its control in every language: each dialog and message window of the real
// program is rendered in all fourteen interface languages, and the extent of every caption,
// label, button text and list entry, measured with the control's own font, is compared with
// the control's client rectangle. Needs an X display (Xvfb) under Wine, and the CJK font link
// of the test prefix (scripts/wine-env.sh) for Japanese, Korean and Chinese.

#include <gtest/gtest.h>

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include "DialogIds.h"
#include "LanguageProvider.h"
#include "ProgramDriver.h"

namespace {

const char* const kLanguageNames[] = {"de", "en", "es", "fr", "it", "ja",    "ko",
                                      "nl", "pl", "pt", "ru", "tr", "zh_CN", "zh_TW"};

// The size of a text in a control's font; with a width, as the control wraps it; with
// prefixes, an access key's "&" takes no room, as in captions.
SIZE Extent(HWND control, const std::wstring& text, int wrapWidth = 0, bool prefixes = false) {
    HDC dc = GetDC(control);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT rect{0, 0, wrapWidth > 0 ? wrapWidth : 0, 0};
    const UINT format =
        DT_CALCRECT | (prefixes ? 0 : DT_NOPREFIX) | (wrapWidth > 0 ? DT_WORDBREAK : DT_SINGLELINE);
    DrawTextW(dc, text.c_str(), -1, &rect, format);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

// Every text of the window's controls that does not fit, named by control id and text.
std::vector<std::wstring> Misfits(HWND window) {
    std::vector<std::wstring> misfits;
    for (HWND control = GetWindow(window, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        RECT client{};
        GetClientRect(control, &client);
        const LONG style = GetWindowLongW(control, GWL_STYLE);
        const std::wstring type = ClassOf(control);
        std::vector<std::wstring> texts;
        LONG room = client.right;
        bool wraps = false;
        bool prefixes = true;  // captions; list items show an "&" as it is
        if (_wcsicmp(type.c_str(), L"Static") == 0) {
            const LONG kind = style & SS_TYPEMASK;
            if (kind != SS_LEFT && kind != SS_CENTER && kind != SS_RIGHT && kind != SS_LEFTNOWORDWRAP) {
                continue;
            }
            wraps = kind != SS_LEFTNOWORDWRAP;
            prefixes = (style & SS_NOPREFIX) == 0;
            texts.push_back(TextOf(control));
        } else if (_wcsicmp(type.c_str(), L"Button") == 0) {
            const LONG kind = style & BS_TYPEMASK;
            if (kind == BS_GROUPBOX) {
                room -= 2 * 8;  // the frame's corners
            } else if ((kind == BS_CHECKBOX || kind == BS_AUTOCHECKBOX) && !(style & BS_PUSHLIKE)) {
                room -= GetSystemMetrics(SM_CXMENUCHECK) + 4;  // the box and its gap
            } else {
                room -= 2 * GetSystemMetrics(SM_CXEDGE) + 4;  // the button's edges
            }
            texts.push_back(TextOf(control));
        } else if (_wcsicmp(type.c_str(), L"ComboBox") == 0) {
            room -= GetSystemMetrics(SM_CXVSCROLL) + 6;  // the drop-down arrow and margins
            prefixes = false;
            const LRESULT count = SendMessageW(control, CB_GETCOUNT, 0, 0);
            for (LRESULT i = 0; i < count; ++i) {
                std::wstring item(static_cast<size_t>(SendMessageW(control, CB_GETLBTEXTLEN, i, 0)), L'\0');
                SendMessageW(control, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(item.data()));
                texts.push_back(item);
            }
        } else {
            continue;
        }
        for (const std::wstring& text : texts) {
            if (text.empty()) {
                continue;
            }
            const SIZE size = Extent(control, text, wraps ? client.right : 0, prefixes);
            const bool fits = wraps ? size.cx <= client.right && size.cy <= client.bottom : size.cx <= room;
            if (!fits) {
                misfits.push_back(std::to_wstring(GetDlgCtrlID(control)) + L" \"" + text + L"\" needs " +
                                  std::to_wstring(size.cx) + L"x" + std::to_wstring(size.cy) + L", has " +
                                  std::to_wstring(wraps ? client.right : room) + L"x" +
                                  std::to_wstring(client.bottom));
            }
        }
    }
    return misfits;
}

std::string Utf8(const std::vector<std::wstring>& lines) {
    std::string all;
    for (const std::wstring& line : lines) {
        const int size = WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, nullptr, 0, nullptr, nullptr);
        std::string text(static_cast<size_t>(size > 0 ? size - 1 : 0), '\0');
        WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, text.data(), size, nullptr, nullptr);
        all += "\n  " + text;
    }
    return all;
}

}  // namespace

TEST(TextFit, EveryTextFitsItsControlInEveryLanguage) {
    for (const char* language : kLanguageNames) {
        SCOPED_TRACE(language);
        SProgram program("two-families", InLanguage(language));
        ASSERT_TRUE(program.WaitForMainDialog());
        const LANGID id = CLanguageProvider().LanguageIdFromName(language);
        const std::wstring customColor = MessageWindows::Text(2007, id);

        // The main dialog, with every combo filled (Canvas 22 Pro offers all of them).
        EXPECT_EQ(Utf8(Misfits(program.dialog)), "") << "main dialog";

        // The advanced page: every caption is set, also those of rows this display hides.
        program.Click(IDC_ADVANCED_BUTTON);
        HWND page = FindDialog(kTitle, {program.dialog});
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(Utf8(Misfits(page)), "") << "advanced page";
        SendMessageW(page, WM_COMMAND, IDC_ADVANCED_OK, 0);

        // The power warning, with both sentences and both settings.
        program.Type(IDC_BRIGHTNESS_EDIT, L"99");
        program.ClickAndLeave(IDC_SAVE_BUTTON);
        HWND warning = nullptr;
        ASSERT_TRUE(WaitFor([&] {
            warning = FindDialog(MessageWindows::Text(2916, id).c_str());
            return warning != nullptr;
        }));
        EXPECT_EQ(Utf8(Misfits(warning)), "") << "power warning";
        PostMessageW(warning, WM_COMMAND, IDC_POWER_NO, 0);
        ASSERT_TRUE(WaitFor([&] { return !IsWindow(warning); }));

        // The custom colour dialog.
        HWND mode = program.Item(IDC_COLOR_SETTING_LIST);
        SendMessageW(
            mode, CB_SETCURSEL,
            SendMessageW(mode, CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(customColor.c_str())),
            0);
        SendMessageW(program.dialog, WM_COMMAND, MAKEWPARAM(IDC_COLOR_SETTING_LIST, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(mode));
        program.ClickAndLeave(IDC_CUSTOM_COLOR_BUTTON);
        HWND colours = nullptr;
        ASSERT_TRUE(WaitFor([&] { return (colours = FindDialog(customColor.c_str())) != nullptr; }));
        EXPECT_EQ(Utf8(Misfits(colours)), "") << "custom colour";
        PostMessageW(colours, WM_COMMAND, IDCANCEL, 0);
        ASSERT_TRUE(WaitFor([&] { return !IsWindow(colours); }));

        // The wait window, as the program makes it.
        HWND wait = MessageWindows::CreateWaitWindow(nullptr, id);
        ASSERT_NE(wait, nullptr);
        EXPECT_EQ(Utf8(Misfits(wait)), "") << "wait window";
        DestroyWindow(wait);
    }
}

TEST(TextFit, TheNoDeviceWindowFitsInEveryLanguage) {
    for (const char* language : kLanguageNames) {
        SCOPED_TRACE(language);
        SProgram program("no-display", InLanguage(language));
        HWND window = WaitForWindowWith(IDC_NO_DEVICE_HEADING);
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(Utf8(Misfits(window)), "") << "no-device window";
        PostMessageW(window, WM_COMMAND, IDC_WINDOW_OK, 0);
        program.ui.join();
    }
}
