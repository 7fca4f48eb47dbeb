#include "SettingRowControls.h"

#include <commctrl.h>

namespace {

// In dialog units, as the template's own rows are laid out.
constexpr int kTop = 10;
constexpr int kPitch = 18;
constexpr int kLabelLeft = 10;
constexpr int kLabelWidth = 140;
constexpr int kControlLeft = 154;
constexpr int kControlWidth = 130;
constexpr int kHalfWidth = 63;
constexpr int kSecondLeft = 221;

struct SPlace {
    int x, y, width, height;
};

HWND Make(HWND dialog_I, HWND& after_IO, const wchar_t* type_I, DWORD style_I, int id_I, SPlace place_I) {
    RECT rect{place_I.x, place_I.y, place_I.x + place_I.width, place_I.y + place_I.height};
    MapDialogRect(dialog_I, &rect);
    HWND control = CreateWindowExW(WS_EX_NOPARENTNOTIFY, type_I, L"", WS_CHILD | WS_VISIBLE | style_I,
                                   rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                                   dialog_I, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id_I)),
                                   GetModuleHandleW(nullptr), nullptr);
    if (control == nullptr) {
        return nullptr;
    }
    SendMessageW(control, WM_SETFONT, SendMessageW(dialog_I, WM_GETFONT, 0, 0), FALSE);
    // Tab order is the order of the children: each row after the one before it.
    SetWindowPos(control, after_IO, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    after_IO = control;
    return control;
}

}  // namespace

void CreateSettingRows(HWND dialog_I, const std::vector<SSettingRowIds>& rows_I) {
    // What the template holds, moved down below the rows.
    RECT shift{0, 0, 0, kPitch * static_cast<int>(rows_I.size())};
    MapDialogRect(dialog_I, &shift);
    for (HWND child = GetWindow(dialog_I, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        RECT rect{};
        GetWindowRect(child, &rect);
        MapWindowPoints(nullptr, dialog_I, reinterpret_cast<POINT*>(&rect), 2);
        SetWindowPos(child, nullptr, rect.left, rect.top + shift.bottom, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    RECT window{};
    GetWindowRect(dialog_I, &window);
    SetWindowPos(dialog_I, nullptr, 0, 0, window.right - window.left,
                 window.bottom - window.top + shift.bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);

    HWND after = HWND_TOP;
    for (size_t index = 0; index < rows_I.size(); ++index) {
        const SSettingRowIds& row = rows_I[index];
        const int top = kTop + kPitch * static_cast<int>(index);
        Make(dialog_I, after, L"STATIC", SS_LEFT | WS_GROUP, row.label,
             {kLabelLeft, top + 2, kLabelWidth, 9});
        switch (SettingRowOf(row.setting).kind) {
            case ESettingKind::Slider:
                Make(dialog_I, after, TRACKBAR_CLASSW, TBS_HORZ | TBS_AUTOTICKS | WS_TABSTOP, row.control,
                     {kControlLeft - 4, top - 3, kControlWidth + 8, 16});
                break;
            case ESettingKind::OnOff:
                Make(dialog_I, after, L"BUTTON", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP, row.control,
                     {kControlLeft, top, kHalfWidth, 13});
                Make(dialog_I, after, L"BUTTON", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP, row.on,
                     {kSecondLeft, top, kHalfWidth, 13});
                break;
            case ESettingKind::Action: {
                Make(dialog_I, after, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, row.control,
                     {kControlLeft, top, kHalfWidth, 14});
                HWND state = Make(dialog_I, after, L"STATIC", SS_LEFT | WS_GROUP, row.state,
                                  {kSecondLeft, top + 3, kHalfWidth, 9});
                if (state != nullptr) {
                    ShowWindow(state, SW_HIDE);
                }
                break;
            }
            case ESettingKind::Choice:
            case ESettingKind::Hidden:
                Make(dialog_I, after, L"COMBOBOX", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, row.control,
                     {kControlLeft, top, kControlWidth, 100});
                break;
        }
    }
}
