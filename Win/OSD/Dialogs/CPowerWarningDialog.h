#pragma once
// Asked before Save when the unsaved changes raise the display's power consumption: which
// settings do, whether to save them, and whether to ask again next time.

#include <cstdint>
#include <string>
#include <vector>

#include "DialogIds.h"
#include "DialogImpl.h"

class CPowerWarningDialog : public CDialogBase {
public:
    explicit CPowerWarningDialog(LANGID language_I) : CDialogBase(IDD_POWER_WARNING), mLanguage(language_I) {}

    // IDC_POWER_YES or IDC_POWER_NO (the close box and Escape count as No).
    INT_PTR Ask(HWND owner_I, const std::vector<uint32_t>& kinds_I, bool higherPower_I);
    bool DoNotShowAgain() const { return mDoNotShowAgain; }

    // The message and the list as the dialog shows them.
    std::wstring MessageText() const;
    std::wstring ListText() const;

    BEGIN_MSG_MAP(CPowerWarningDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    COMMAND_ID_HANDLER(IDC_POWER_YES, OnAnswer)
    COMMAND_ID_HANDLER(IDC_POWER_NO, OnAnswer)
    COMMAND_ID_HANDLER(IDCANCEL, OnAnswer)
    END_MSG_MAP()

private:
    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnAnswer(WORD, WORD id_I, HWND, BOOL&);

    LANGID mLanguage;
    std::vector<uint32_t> mKinds;
    bool mHigherPower = false;
    bool mDoNotShowAgain = false;
};
