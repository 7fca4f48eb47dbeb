#include "SettingRowControls.h"

#include <commctrl.h>

namespace {

// An Off/On pair's and a Start button's width, and the gap after the first, in dialog units.
constexpr int kHalfGap = 4;

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

void MakeIds(SSettingRowIds& row_IO, size_t index_I, int firstId_I) {
    if (row_IO.label != 0) {
        return;
    }
    const int first = firstId_I + 4 * static_cast<int>(index_I);
    const ESettingKind kind = SettingRowOf(row_IO.setting).kind;
    row_IO.label = first;
    row_IO.control = first + 1;
    row_IO.on = kind == ESettingKind::OnOff ? first + 2 : 0;
    row_IO.state = kind == ESettingKind::Action ? first + 3 : 0;
}

void CreateSettingRows(HWND dialog_I, const std::vector<SSettingRowIds>& rows_I,
                       const SRowGeometry& geometry_I) {
    const SRowGeometry& g = geometry_I;
    const int halfWidth = (g.controlWidth - kHalfGap) / 2;
    const int secondLeft = g.controlLeft + halfWidth + kHalfGap;
    // What the template holds from the rows' top down moves below the rows; the rows go after
    // the last control above them in tab order.
    RECT shift{0, g.top, 0, g.top + g.pitch * static_cast<int>(rows_I.size())};
    MapDialogRect(dialog_I, &shift);
    const int by = shift.bottom - shift.top;
    HWND after = HWND_TOP;
    bool below = false;
    for (HWND child = GetWindow(dialog_I, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        RECT rect{};
        GetWindowRect(child, &rect);
        MapWindowPoints(nullptr, dialog_I, reinterpret_cast<POINT*>(&rect), 2);
        if (rect.top < shift.top) {
            if (!below) {
                after = child;
            }
            continue;
        }
        below = true;
        SetWindowPos(child, nullptr, rect.left, rect.top + by, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    RECT window{};
    GetWindowRect(dialog_I, &window);
    SetWindowPos(dialog_I, nullptr, 0, 0, window.right - window.left, window.bottom - window.top + by,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);

    for (size_t index = 0; index < rows_I.size(); ++index) {
        const SSettingRowIds& row = rows_I[index];
        const int top = g.top + g.pitch * static_cast<int>(index);
        Make(dialog_I, after, L"STATIC", SS_LEFT | WS_GROUP, row.label,
             {g.labelLeft, top + 2, g.labelWidth, 9});
        switch (SettingRowOf(row.setting).kind) {
            case ESettingKind::Slider:
                Make(dialog_I, after, TRACKBAR_CLASSW, TBS_HORZ | TBS_AUTOTICKS | WS_TABSTOP, row.control,
                     {g.controlLeft - 4, top - 3, g.controlWidth + 8, 16});
                break;
            case ESettingKind::OnOff:
                Make(dialog_I, after, L"BUTTON", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP, row.control,
                     {g.controlLeft, top, halfWidth, 13});
                Make(dialog_I, after, L"BUTTON", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP, row.on,
                     {secondLeft, top, halfWidth, 13});
                break;
            case ESettingKind::Action: {
                Make(dialog_I, after, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, row.control,
                     {g.controlLeft, top, halfWidth, 14});
                HWND state = Make(dialog_I, after, L"STATIC", SS_LEFT | WS_GROUP, row.state,
                                  {secondLeft, top + 3, halfWidth, 9});
                if (state != nullptr) {
                    ShowWindow(state, SW_HIDE);
                }
                break;
            }
            case ESettingKind::Choice:
            case ESettingKind::Hidden:
                Make(dialog_I, after, L"COMBOBOX", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, row.control,
                     {g.controlLeft, top, g.controlWidth, 100});
                break;
        }
    }
}
