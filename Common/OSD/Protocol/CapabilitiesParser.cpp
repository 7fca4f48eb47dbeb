#include "CapabilitiesParser.h"

#include <sstream>

#include "Assert.h"
#include "DebugLog.h"

CapabilitiesMap ParseCapabilitiesString(const std::string& capsStr_I) {
    CapabilitiesMap caps;
    std::string key;
    std::string value;
    int parens = 0;
    for (char c : capsStr_I) {
        if (c == '(') {
            if (parens >= 2) {
                value += c;
            }
            ++parens;
        } else if (c == ')') {
            if (parens >= 3) {
                value += c;
                --parens;
                continue;
            }
            VLR_ASSERT(parens != 0);
            if (!key.empty() && !value.empty()) {
                caps[key] = value;
            }
            key.clear();
            value.clear();
            --parens;
        } else if (parens == 1) {
            key += c;
        } else {
            VLR_ASSERT(parens != 0);
            value += c;
        }
    }
    VLR_ASSERT(parens == 0);
    return caps;
}

namespace {

template <typename E>
VCPOptionPtr MakeEnumerated(uint8_t code_I, const CCodeInfo& info_I, const std::string& optionSet_I) {
    return std::make_shared<VCPOptionCodeWithEnumerationT<E>>(code_I, info_I, optionSet_I);
}

VCPOptionPtr MakeEnumeratedByValueNames(EValueNames values_I, uint8_t code, const CCodeInfo& info_I,
                                        const std::string& optionSet) {
    switch (values_I) {
        case EValueNames::ColorPreset: return MakeEnumerated<colorPresetCode>(code, info_I, optionSet);
        case EValueNames::Gamma: return MakeEnumerated<gammaCode>(code, info_I, optionSet);
        case EValueNames::DisplayScaling: return MakeEnumerated<displayScalingCode>(code, info_I, optionSet);
        case EValueNames::UniformityComp: return MakeEnumerated<uniformityCompCode>(code, info_I, optionSet);
        case EValueNames::ColorSpace: return MakeEnumerated<colorSpaceCode>(code, info_I, optionSet);
        case EValueNames::LedBrightness: return MakeEnumerated<ledBrightnessCode>(code, info_I, optionSet);
        default: return MakeEnumerated<displayPresetCode>(code, info_I, optionSet);
    }
}

VCPOptionPtr MakeOption(uint8_t code, const SCodeVariants& variants_I, const std::string& optionSet,
                        const CodeInfoTable& codeInfo_I) {
    const CCodeInfo& info = codeInfo_I.at(code);
    const SVcpCodeRow* row = FindVcpCodeRow(code, variants_I);
    const EValueNames values = row != nullptr ? row->values : EValueNames::None;
    if (values != EValueNames::None) {
        if (code == vcpC_Gamma && variants_I.fineScaleGamma) {
            // Gamma on the fine-scale models: a continuous code although its values have
            // names. The option follows the code information (no option set, a range read
            // from the display), and the enumeration's checks do not apply.
            if (info.Continuous()) {
                return std::make_shared<VCPOptionSingleCode>(code, info);
            }
            return MakeEnumeratedByValueNames(values, code, info, optionSet);
        }
        VLR_ASSERT(!optionSet.empty());
        VLR_ASSERT_AS(!info.Continuous() && !info.Table(),
                      "!codeInfo_I.at(code).Continuous() && !codeInfo_I.at(code).Table()");
        return MakeEnumeratedByValueNames(values, code, info, optionSet);
    }
    switch (info.Type()) {
        case eTypeContinuous:
            DLog("Single Option %s\n", VCPCodeName(code).c_str());
            return std::make_shared<VCPOptionSingleCode>(code, info);
        case eTypeNonContinuous:
            if (optionSet.empty()) {
                DLog("Enumerated Option %s: Option Set <all>\n", VCPCodeName(code).c_str());
            } else {
                DLog("Enumerated Option %s: Option Set %s\n", VCPCodeName(code).c_str(), optionSet.c_str());
            }
            return std::make_shared<VCPOptionEnumerated>(code, info, optionSet);
        default: DLog("Table Option %s <Not Implemented>\n", VCPCodeName(code).c_str()); return nullptr;
    }
}

}  // namespace

VCPOptionsMap CreateVCPCodeMap(const SCodeVariants& variants_I, const std::string& vcpStr_I,
                               const CodeInfoTable& codeInfo_I) {
    VCPOptionsMap options;
    std::string key;
    std::string optionSet;
    int depth = 0;

    auto endEntry = [&]() {
        VLR_ASSERT(!key.empty());
        unsigned int code = 0;
        std::istringstream in(key);
        in >> std::hex >> code;  // "10", "0x10" and "010" all read as 0x10; garbage reads as 0
        if (code <= 0xFF && codeInfo_I.count(static_cast<uint8_t>(code)) != 0) {
            VCPOptionPtr option = MakeOption(static_cast<uint8_t>(code), variants_I, optionSet, codeInfo_I);
            if (option) {
                options[static_cast<uint8_t>(code)] = option;
            }
        }
        key.clear();
        optionSet.clear();
        depth = 0;
    };

    for (size_t i = 0; i < vcpStr_I.size(); ++i) {
        const char c = vcpStr_I[i];
        const bool last = i + 1 == vcpStr_I.size();
        if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        } else if (depth == 0) {
            if (c != ' ') {
                key += c;
            } else {
                endEntry();
                continue;  // a trailing blank has already ended the last entry
            }
        } else if (depth == 1) {
            optionSet += c;
        } else if (c == ' ') {
            // Nested groups are flattened: only their blanks are kept.
            optionSet += c;
        }
        if (last) {
            endEntry();
        }
    }
    return options;
}

std::vector<uint32_t> CreateCommandsVector(const std::string& cmdsStr_I) {
    DLogVerbose("Commands src: %s", cmdsStr_I.c_str());
    std::vector<uint32_t> commands;
    std::istringstream in(cmdsStr_I);
    in >> std::hex;
    uint32_t command = 0;
    while (in >> command) {
        commands.push_back(command);
    }
    if (DebugLog::IsOn(ELogLevel::Verbose)) {
        DLogVerbose("Commands parsed: \n");
        for (uint32_t cmd : commands) {
            std::string text = cmd <= 0xFF ? VCPCodeToString(static_cast<ddcCommandCodes>(cmd))
                                           : std::string("Code not found");
            DLogVerbose("%s (0x%X)\n", text.c_str(), cmd);
        }
    }
    return commands;
}
