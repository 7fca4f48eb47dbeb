#pragma once
// The main dialog's rows: the drop-downs of settings (one row each: the setting, its caption
// and list, the colour mode it shows in, whether a choice in it changes what the others show),
// the captions in the order access keys are handed out, and the rows the layout closes up when
// their controls are hidden. A setting's drop-down on the main dialog is its row here and its
// two controls in the dialog template.

#include <cstdint>
#include <vector>

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
};

const std::vector<SChoiceRow>& Choices();
// The row of the list; null for any other control.
const SChoiceRow* ChoiceOfList(int listId_I);
std::vector<MessageWindows::SCaption> Captions();
std::vector<CRowLayout::SRow> Layout();

}  // namespace MainDialogRows
