#include "DialogLayout.h"

#include <algorithm>

namespace {

bool Shown(HWND dialog_I, int id_I) {
    HWND control = GetDlgItem(dialog_I, id_I);
    return control != nullptr && (GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

}  // namespace

int CRowLayout::Top(size_t row_I) const {
    const SRow& row = mRows[row_I];
    int top = INT_MAX;
    if (row.groupBox != 0) {
        top = mOriginal.at(row.groupBox).top;
    }
    for (int id : row.ids) {
        top = std::min(top, static_cast<int>(mOriginal.at(id).top));
    }
    return top;
}

void CRowLayout::Move(HWND dialog_I, int id_I, int shift_I) const {
    const RECT& original = mOriginal.at(id_I);
    SetWindowPos(GetDlgItem(dialog_I, id_I), nullptr, original.left, original.top - shift_I, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int CRowLayout::Place(HWND dialog_I, size_t first_I, size_t end_I, int shift_I) const {
    int shift = shift_I;
    for (size_t i = first_I; i < end_I;) {
        const SRow& row = mRows[i];
        const size_t next = i + 1 + static_cast<size_t>(row.inner);
        // The height a hidden row gives back: down to the next row; the last row of a group
        // gives back its distance from the row above it (the group's margin stays).
        const int top = Top(i);
        int height = 0;
        if (next < end_I) {
            height = Top(next) - top;
        } else if (i > first_I) {
            height = top - Top(i - 1);
        }
        bool visible = false;
        for (int id : row.ids) {
            visible = visible || Shown(dialog_I, id);
        }
        for (int id : row.ids) {
            Move(dialog_I, id, shift);
        }
        if (row.groupBox != 0) {
            Move(dialog_I, row.groupBox, shift);
            if (Shown(dialog_I, row.groupBox)) {
                const int inner = Place(dialog_I, i + 1, next, shift) - shift;
                const RECT& box = mOriginal.at(row.groupBox);
                SetWindowPos(GetDlgItem(dialog_I, row.groupBox), nullptr, 0, 0, box.right - box.left,
                             box.bottom - box.top - inner, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
                shift += inner;
            } else {
                Place(dialog_I, i + 1, next, shift);
                shift += height;
            }
        } else if (!visible) {
            shift += height;
        }
        i = next;
    }
    return shift;
}

void CRowLayout::Apply(HWND dialog_I) {
    if (mOriginal.empty()) {
        for (const SRow& row : mRows) {
            std::vector<int> ids = row.ids;
            if (row.groupBox != 0) {
                ids.push_back(row.groupBox);
            }
            for (int id : ids) {
                RECT rect{};
                GetWindowRect(GetDlgItem(dialog_I, id), &rect);
                MapWindowPoints(nullptr, dialog_I, reinterpret_cast<POINT*>(&rect), 2);
                mOriginal[id] = rect;
            }
        }
        RECT window{};
        GetWindowRect(dialog_I, &window);
        mOriginalHeight = window.bottom - window.top;
    }
    const int shift = Place(dialog_I, 0, mRows.size(), 0);
    RECT window{};
    GetWindowRect(dialog_I, &window);
    SetWindowPos(dialog_I, nullptr, 0, 0, window.right - window.left, mOriginalHeight - shift,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(dialog_I, nullptr, TRUE);
}

POINT PlaceBeside(const RECT& owner_I, SIZE size_I, const RECT& work_I) {
    const LONG width = size_I.cx;
    const LONG height = size_I.cy;
    auto clampX = [&](LONG x) { return std::max(work_I.left, std::min(x, work_I.right - width)); };
    auto clampY = [&](LONG y) { return std::max(work_I.top, std::min(y, work_I.bottom - height)); };
    const LONG right = work_I.right - owner_I.right;
    const LONG left = owner_I.left - work_I.left;
    const LONG below = work_I.bottom - owner_I.bottom;
    const LONG above = owner_I.top - work_I.top;
    if (right >= width) {
        return {owner_I.right, clampY(owner_I.top)};
    }
    if (left >= width) {
        return {owner_I.left - width, clampY(owner_I.top)};
    }
    if (below >= height) {
        return {clampX(owner_I.left), owner_I.bottom};
    }
    if (above >= height) {
        return {clampX(owner_I.left), owner_I.top - height};
    }
    // Nowhere free: the side with the most room, covering as little as the work area allows.
    const LONG most = std::max({right, left, below, above});
    if (most == right) {
        return {clampX(owner_I.right), clampY(owner_I.top)};
    }
    if (most == left) {
        return {clampX(owner_I.left - width), clampY(owner_I.top)};
    }
    if (most == below) {
        return {clampX(owner_I.left), clampY(owner_I.bottom)};
    }
    return {clampX(owner_I.left), clampY(owner_I.top - height)};
}
