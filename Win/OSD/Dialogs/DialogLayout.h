#pragma once
// Where the controls and windows of the dialogs go: rows that close up around the rows a
// display does not offer, and a window placed beside another without covering it.

#include <windows.h>

#include <map>
#include <vector>

// A dialog's rows, top to bottom. A row whose controls are all hidden gives its height to the
// rows below it, and the window shrinks by as much; shown again, it takes its place back.
class CRowLayout {
public:
    struct SRow {
        std::vector<int> ids;  // the controls of the row
        int groupBox = 0;      // a group box that frames the next `inner` rows (0: none)
        int inner = 0;
    };

    explicit CRowLayout(std::vector<SRow> rows_I) : mRows(std::move(rows_I)) {}

    // Places every row of the dialog from the template's positions, noted at the first call.
    void Apply(HWND dialog_I);

private:
    int Top(size_t row_I) const;
    void Move(HWND dialog_I, int id_I, int shift_I) const;
    // Lays out rows [first, end) and returns how far the rows below them move up.
    int Place(HWND dialog_I, size_t first_I, size_t end_I, int shift_I) const;

    std::vector<SRow> mRows;
    std::map<int, RECT> mOriginal;  // client coordinates of every control at the first layout
    int mOriginalHeight = 0;        // of the window
};

// The position of a window of size_I beside owner_I inside work_I without covering the owner:
// to its right, else its left, else below, else above; where none fits, the side with the most
// room, kept inside the work area.
POINT PlaceBeside(const RECT& owner_I, SIZE size_I, const RECT& work_I);
