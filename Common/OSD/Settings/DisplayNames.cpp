#include "DisplayNames.h"

#include <type_traits>

#include "SettingNames.h"
#include "codes.h"

std::vector<SNamedValue> OptionValuesOf(const VCPOptionBase& option_I) {
    std::vector<SNamedValue> values;
    auto tryType = [&]<typename E>() {
        const auto* typed = dynamic_cast<const VCPOptionCodeWithEnumerationT<E>*>(&option_I);
        if (typed == nullptr) {
            return;
        }
        for (uint32_t value : typed->OptionSet()) {
            std::string name;
            if constexpr (!std::is_same_v<E, uint32_t>) {
                name = OptionValueText<E>(value);
            }
            if (name == "Unsupported VPC Code") {
                name.clear();
            }
            values.push_back({static_cast<int32_t>(value), name});
        }
    };
    tryType.operator()<uint32_t>();
    tryType.operator()<colorPresetCode>();
    tryType.operator()<displayScalingCode>();
    tryType.operator()<ledBrightnessCode>();
    tryType.operator()<displayPresetCode>();
    tryType.operator()<colorSpaceCode>();
    tryType.operator()<gammaCode>();
    tryType.operator()<uniformityCompCode>();
    return values;
}

std::optional<ESetting> SettingOfCode(const UiDisplayDelegate& display_I, uint8_t code_I) {
    for (ESetting setting : AllSettings()) {
        if (display_I.Traits().SettingCode(setting) == code_I) {
            return setting;
        }
    }
    return std::nullopt;
}

std::string CodeLabel(const UiDisplayDelegate& display_I, uint8_t code_I) {
    std::string name = VCPCodeName(code_I);
    const bool makersCode = code_I >= 0xE0;
    if (name == "Unsupported VPC Code" || makersCode) {
        if (std::optional<ESetting> setting = SettingOfCode(display_I, code_I)) {
            return SettingName(*setting);
        }
    }
    return name == "Unsupported VPC Code" ? "vendor-specific code" : name;
}

std::string RevertLabel(const UiDisplayDelegate& display_I, uint8_t code_I) {
    std::optional<ESetting> setting = SettingOfCode(display_I, code_I);
    return setting ? SettingName(*setting) : CodeLabel(display_I, code_I);
}

std::vector<SNamedValue> NamedValues(UiDisplayDelegate& display_I, const STarget& target_I) {
    std::vector<SNamedValue> values;
    if (target_I.setting) {
        for (const SEntry& entry : display_I.GetSetting(*target_I.setting).entries) {
            values.push_back({entry.value, ChoiceName(entry.stringId)});
        }
    } else if (VCPOptionPtr option = display_I.Option(target_I.code)) {
        values = OptionValuesOf(*option);
    }
    return values;
}

std::string NameOfValue(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I) {
    for (const SNamedValue& named : NamedValues(display_I, target_I)) {
        if (named.value == value_I && !named.name.empty()) {
            return named.name;
        }
    }
    return {};
}

std::string Shown(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I) {
    const std::string name = NameOfValue(display_I, target_I, value_I);
    return std::to_string(value_I) + (name.empty() ? "" : " (" + name + ")");
}

std::optional<int32_t> ValueByText(UiDisplayDelegate& display_I, const STarget& target_I,
                                   const std::string& text_I) {
    if (std::optional<int32_t> number = ParseNumber(text_I)) {
        return number;
    }
    for (const SNamedValue& named : NamedValues(display_I, target_I)) {
        if (!named.name.empty() && SameName(named.name, text_I)) {
            return named.value;
        }
    }
    return std::nullopt;
}
