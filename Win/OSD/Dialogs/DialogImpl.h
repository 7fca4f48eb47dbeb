#pragma once
// The smallest dialog base that gives the program's dialogs the shape of ATL's CDialogImpl: a
// class per dialog template with a message map of typed handlers. Each handler returns the
// message's result and sets bHandled_O to false to let the system's default run.
//
//   BEGIN_MSG_MAP(CMyDialog)
//       MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
//       COMMAND_ID_HANDLER(IDCANCEL, OnCancel)
//       COMMAND_HANDLER(1305, CBN_SELCHANGE, OnDisplayChanged)
//   END_MSG_MAP()

#include <windows.h>

#include <cstdint>
#include <vector>

#include "SettingCodes.h"

class CDialogBase {
public:
    explicit CDialogBase(UINT templateId_I) : mTemplateId(templateId_I) {}
    virtual ~CDialogBase() { DestroyWindow(); }
    CDialogBase(const CDialogBase&) = delete;
    CDialogBase& operator=(const CDialogBase&) = delete;

    // Runs the dialog modally; the result of EndDialog, or -1 when it cannot be created.
    INT_PTR DoModal(HWND owner_I = nullptr);
    // Creates it modeless (hidden unless the template says visible).
    HWND Create(HWND owner_I);
    void DestroyWindow();
    BOOL EndDialog(INT_PTR result_I) { return ::EndDialog(m_hWnd, result_I); }

    HWND GetDlgItem(int id_I) const { return ::GetDlgItem(m_hWnd, id_I); }
    bool IsWindow() const { return m_hWnd != nullptr && ::IsWindow(m_hWnd) != FALSE; }
    UINT TemplateId() const { return mTemplateId; }

    HWND m_hWnd = nullptr;

protected:
    // The message map; true when a handler took the message.
    virtual BOOL ProcessWindowMessage(HWND window_I, UINT message_I, WPARAM wParam_I, LPARAM lParam_I,
                                      LRESULT& result_O) = 0;

private:
    static INT_PTR CALLBACK StartDialogProc(HWND window_I, UINT message_I, WPARAM wParam_I, LPARAM lParam_I);

    UINT mTemplateId;
    bool mModeless = false;
};

// The value behind the selected item of a combo whose items stand for values_I, in order;
// false (and an assertion) when the selection has no value.
bool SelectedComboValue(HWND dialog_I, int comboId_I, const std::vector<int32_t>& values_I, int32_t& value_O);

// Shows or hides a control.
void ShowControl(HWND control_I, bool visible_I);
// Fills a combo with a setting's labelled choices in the interface language; values_O gets
// the value behind each item, in order.
void FillChoiceCombo(HWND combo_I, const std::vector<SEntry>& entries_I, LANGID language_I,
                     std::vector<int32_t>& values_O);
// Selects the item whose value is given, or none; false when no item has the value.
bool SelectChoice(HWND combo_I, const std::vector<int32_t>& values_I, int32_t value_I);

#define BEGIN_MSG_MAP(theClass)                                                                     \
    BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult) \
        override {                                                                                  \
        (void)hWnd;                                                                                 \
        BOOL bHandled = TRUE;

#define MESSAGE_HANDLER(msg, func)                      \
    if (uMsg == (msg)) {                                \
        bHandled = TRUE;                                \
        lResult = func(uMsg, wParam, lParam, bHandled); \
        if (bHandled)                                   \
            return TRUE;                                \
    }

#define COMMAND_ID_HANDLER(id, func)                                                              \
    if (uMsg == WM_COMMAND && LOWORD(wParam) == (id)) {                                           \
        bHandled = TRUE;                                                                          \
        lResult = func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled); \
        if (bHandled)                                                                             \
            return TRUE;                                                                          \
    }

// Every control's notification of this code (after the handlers by id above it).
#define COMMAND_CODE_HANDLER(code, func)                                                          \
    if (uMsg == WM_COMMAND && HIWORD(wParam) == (code)) {                                         \
        bHandled = TRUE;                                                                          \
        lResult = func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled); \
        if (bHandled)                                                                             \
            return TRUE;                                                                          \
    }

#define COMMAND_HANDLER(id, code, func)                                                           \
    if (uMsg == WM_COMMAND && LOWORD(wParam) == (id) && HIWORD(wParam) == (code)) {               \
        bHandled = TRUE;                                                                          \
        lResult = func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled); \
        if (bHandled)                                                                             \
            return TRUE;                                                                          \
    }

#define END_MSG_MAP() \
    (void)bHandled;   \
    return FALSE;     \
    }
