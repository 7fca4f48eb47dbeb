#include "DialogImpl.h"

#include <algorithm>

#include "Assert.h"
#include "MessageWindows.h"

namespace {

struct SCreation {
    CDialogBase* dialog;
};

}  // namespace

INT_PTR CDialogBase::DoModal(HWND owner_I) {
    mModeless = false;
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(mTemplateId), owner_I,
                           &StartDialogProc, reinterpret_cast<LPARAM>(this));
}

HWND CDialogBase::Create(HWND owner_I) {
    mModeless = true;
    return CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(mTemplateId), owner_I,
                              &StartDialogProc, reinterpret_cast<LPARAM>(this));
}

void CDialogBase::DestroyWindow() {
    if (mModeless && IsWindow()) {
        ::DestroyWindow(m_hWnd);
    }
    if (mModeless) {
        m_hWnd = nullptr;
    }
}

INT_PTR CALLBACK CDialogBase::StartDialogProc(HWND window_I, UINT message_I, WPARAM wParam_I,
                                              LPARAM lParam_I) {
    CDialogBase* self = nullptr;
    if (message_I == WM_INITDIALOG) {
        self = reinterpret_cast<CDialogBase*>(lParam_I);
        self->m_hWnd = window_I;
        SetWindowLongPtrW(window_I, DWLP_USER, reinterpret_cast<LONG_PTR>(self));
    } else {
        self = reinterpret_cast<CDialogBase*>(GetWindowLongPtrW(window_I, DWLP_USER));
    }
    if (self == nullptr) {
        return FALSE;
    }
    LRESULT result = 0;
    const BOOL handled = self->ProcessWindowMessage(window_I, message_I, wParam_I, lParam_I, result);
    if (message_I == WM_NCDESTROY) {
        SetWindowLongPtrW(window_I, DWLP_USER, 0);
        self->m_hWnd = nullptr;
    }
    if (!handled) {
        return FALSE;
    }
    // WM_INITDIALOG answers the focus choice itself; other messages answer through DWLP_MSGRESULT.
    if (message_I == WM_INITDIALOG || message_I == WM_CTLCOLORDLG || message_I == WM_CTLCOLORSTATIC ||
        message_I == WM_CTLCOLOREDIT || message_I == WM_CTLCOLORBTN) {
        return static_cast<INT_PTR>(result);
    }
    SetWindowLongPtrW(window_I, DWLP_MSGRESULT, result);
    return TRUE;
}

bool SelectedComboValue(HWND dialog_I, int comboId_I, const std::vector<int32_t>& values_I,
                        int32_t& value_O) {
    const LRESULT idx = SendDlgItemMessageW(dialog_I, comboId_I, CB_GETCURSEL, 0, 0);
    const bool valid = idx >= 0 && static_cast<size_t>(idx) < values_I.size();
    VLR_ASSERT_AS(valid, "idx < mValues.size()");
    if (valid) {
        value_O = values_I[static_cast<size_t>(idx)];
    }
    return valid;
}

void ShowControl(HWND control_I, bool visible_I) {
    ShowWindow(control_I, visible_I ? SW_SHOW : SW_HIDE);
}

void FillChoiceCombo(HWND combo_I, const std::vector<SEntry>& entries_I, LANGID language_I,
                     std::vector<int32_t>& values_O) {
    SendMessageW(combo_I, CB_RESETCONTENT, 0, 0);
    values_O.clear();
    for (const SEntry& entry : entries_I) {
        SendMessageW(combo_I, CB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(MessageWindows::Text(entry.stringId, language_I).c_str()));
        values_O.push_back(entry.value);
    }
}

bool SelectChoice(HWND combo_I, const std::vector<int32_t>& values_I, int32_t value_I) {
    const auto it = std::find(values_I.begin(), values_I.end(), value_I);
    const bool found = it != values_I.end();
    SendMessageW(combo_I, CB_SETCURSEL, found ? static_cast<WPARAM>(it - values_I.begin()) : WPARAM(-1), 0);
    return found;
}
