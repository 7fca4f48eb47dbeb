#pragma once
// Makes a page's setting rows in code, from the setting table: a label, then by the setting's
// kind a drop-down, a slider, an Off/On pair, or a Start button with its state text. Rows are
// a fixed pitch apart in dialog units, in tab order before the template's own controls, and
// what the template holds below them moves down by as much as the rows take: a new row needs
// no coordinates.

#include <windows.h>

#include <cstddef>
#include <vector>

#include "SettingTable.h"

struct SSettingRowIds {
    ESetting setting;
    int label;
    int control;  // the drop-down, slider or Start button; an Off/On pair's Off
    int on;       // an Off/On pair's On; 0 for the others
    int state;    // the text beside a Start button; 0 for the others
};

// Gives a row that left its ids 0 ids of its own, past every id of the templates: from first_I,
// four per row by its index (label, control, On, state).
void MakeIds(SSettingRowIds& row_IO, size_t index_I, int firstId_I);

// Where a page's rows go, in dialog units: the first row's top, the distance between rows, the
// label's column and the control's.
struct SRowGeometry {
    int top = 10;
    int pitch = 18;
    int labelLeft = 10;
    int labelWidth = 140;
    int controlLeft = 154;
    int controlWidth = 130;
};

// Makes the rows from the geometry's top down and moves every control the template holds at
// or below that top, and the window's bottom, down by the height they take.
void CreateSettingRows(HWND dialog_I, const std::vector<SSettingRowIds>& rows_I,
                       const SRowGeometry& geometry_I);
