#include "MainDialogRows.h"

#include "DialogIds.h"
#include "SettingCodes.h"
#include "SettingRowControls.h"

namespace MainDialogRows {

namespace {

// The made rows' place, in dialog units: below the colour group, in the template's columns.
constexpr SRowGeometry kMadeRows{
    .top = 160, .pitch = 24, .labelLeft = 10, .labelWidth = 98, .controlLeft = 112, .controlWidth = 118};
// Ids for made rows that leave theirs 0, past every id of the templates.
constexpr int kFirstMadeId = 2100;

std::vector<SChoiceRow> WithIds(std::vector<SChoiceRow> rows_I) {
    for (size_t index = 0; index < rows_I.size(); ++index) {
        SSettingRowIds ids{rows_I[index].setting, rows_I[index].label, rows_I[index].list, 0, 0};
        MakeIds(ids, index, kFirstMadeId);
        rows_I[index].label = ids.label;
        rows_I[index].list = ids.control;
    }
    return rows_I;
}

}  // namespace

const std::vector<SChoiceRow>& Choices() {
    static const std::vector<SChoiceRow> rows = WithIds({
        {ESetting::ColorSettingMode, IDC_COLOR_SETTING_LABEL, IDC_COLOR_SETTING_LIST, 0, true, false},
        {ESetting::ColorTemperature, IDC_COLOR_TEMPERATURE_LABEL, IDC_COLOR_TEMPERATURE_LIST,
         eColorModeTemperature, true, false},
        {ESetting::ColorSpace, IDC_COLOR_SPACE_LABEL, IDC_COLOR_SPACE_LIST, eColorModeSpace, true, false},
        {ESetting::Gamma, IDC_GAMMA_LABEL, IDC_GAMMA_LIST, 0, false, true},
    });
    return rows;
}

void CreateMadeRows(HWND dialog_I) {
    std::vector<SSettingRowIds> made;
    for (const SChoiceRow& row : Choices()) {
        if (row.made) {
            made.push_back({row.setting, row.label, row.list, 0, 0});
        }
    }
    CreateSettingRows(dialog_I, made, kMadeRows);
}

const SChoiceRow* ChoiceOfList(int listId_I) {
    for (const SChoiceRow& row : Choices()) {
        if (row.list == listId_I) {
            return &row;
        }
    }
    return nullptr;
}

std::vector<MessageWindows::SCaption> Captions() {
    // The most used first; the drop-downs' captions after the display's.
    std::vector<MessageWindows::SCaption> captions = {
        {IDC_BRIGHTNESS_LABEL, SettingCaptionId(ESetting::Brightness), true},
        {IDC_CONTRAST_LABEL, SettingCaptionId(ESetting::Contrast), true},
        {IDC_SAVE_BUTTON, 2032, true},
        {IDC_DISPLAY_LABEL, 2001, true},
    };
    for (const SChoiceRow& row : Choices()) {
        captions.push_back({row.label, SettingCaptionId(row.setting), true});
    }
    captions.insert(captions.end(), {
                                        {IDC_CUSTOM_COLOR_BUTTON, 2025, true},
                                        {IDC_RESET_COLOR_BUTTON, 2036, true},
                                        {IDC_ADVANCED_BUTTON, 2031, true},
                                        {IDC_REVERT_BUTTON, 2033, true},
                                        {IDC_CUSTOM_COLOR_LABEL, 2026},
                                    });
    return captions;
}

std::vector<CRowLayout::SRow> Layout() {
    std::vector<CRowLayout::SRow> rows = {
        {{IDC_DISPLAY_LABEL, IDC_DISPLAY_LIST}},
        {{IDC_BRIGHTNESS_LABEL, IDC_BRIGHTNESS_EDIT, IDC_BRIGHTNESS_SLIDER}},
        {{IDC_CONTRAST_LABEL, IDC_CONTRAST_EDIT, IDC_CONTRAST_SLIDER}},
        {{}, IDC_COLOR_GROUP, 3},
        {{IDC_COLOR_SETTING_LABEL, IDC_COLOR_SETTING_LIST, IDC_CUSTOM_COLOR_BUTTON}},
        {{IDC_COLOR_TEMPERATURE_LABEL, IDC_COLOR_TEMPERATURE_LIST, IDC_COLOR_SPACE_LABEL,
          IDC_COLOR_SPACE_LIST, IDC_CUSTOM_COLOR_LABEL}},
        {{IDC_RESET_COLOR_BUTTON}}};
    for (const SChoiceRow& row : Choices()) {
        if (row.made) {
            rows.push_back({{row.label, row.list}});
        }
    }
    rows.push_back({{IDC_ADVANCED_BUTTON, IDC_SAVE_BUTTON, IDC_REVERT_BUTTON, IDC_HELP_BUTTON}});
    return rows;
}

}  // namespace MainDialogRows
