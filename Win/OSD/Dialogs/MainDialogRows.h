#pragma once
// The main dialog's rows: the drop-downs of settings (one row each: the setting, its caption
// and list, the colour mode it shows in, whether a choice in it changes what the others show),
// the captions in the order access keys are handed out, and the rows the layout closes up when
// their controls are hidden. A drop-down below the colour group is its row here alone: its
// controls and their ids are made in code.

#include <cstdint>
#include <vector>

#include <windows.h>

#include "DialogLayout.h"
#include "MessageWindows.h"
#include "SettingTable.h"

namespace MainDialogRows {

struct SChoiceRow {
    ESetting setting;
    int label;
    int list;
    int32_t onlyInColorMode;  // 0: always shown
    bool changesOthers;
    // Below the colour group, made in code (its ids may be left 0); otherwise the template's.
    bool made;
};

const std::vector<SChoiceRow>& Choices();
// The row of the list; null for any other control.
const SChoiceRow* ChoiceOfList(int listId_I);
std::vector<MessageWindows::SCaption> Captions();
std::vector<CRowLayout::SRow> Layout();
// Makes the rows below the colour group (OnInitDialog, before anything else).
void CreateMadeRows(HWND dialog_I);

}  // namespace MainDialogRows
