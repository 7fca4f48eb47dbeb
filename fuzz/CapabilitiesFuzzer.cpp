// The capabilities string as a display sends it: the outer parser, the option map for each
// code-table variant, the command list, and a display object's whole initialisation.

#include <cstddef>
#include <cstdint>
#include <string>

#include "CapabilitiesParser.h"
#include "FuzzInput.h"
#include "UiDisplayDelegate.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    UseVirtualClock();
    const std::string text(reinterpret_cast<const char*>(data_I), size_I);
    CapabilitiesMap caps = ParseCapabilitiesString(text);
    for (const SCodeVariants& variants :
         {SCodeVariants{}, SCodeVariants{true, false}, SCodeVariants{false, true}}) {
        const CodeInfoTable table = BuildCodeInfoTable(variants);
        CreateVCPCodeMap(variants, caps["vcp"], table);
        CreateVCPCodeMap(variants, text, table);
    }
    CreateCommandsVector(caps["cmds"]);
    CreateCommandsVector(text);
    // A pro model (fine gamma, no mccs_ver needed) and a battery model (the 0xF4 correction).
    for (uint16_t edid : {uint16_t(0x1060), uint16_t(0x1071)}) {
        UiDisplayDelegate display(nullptr, edid);
        if (display.Initialize(text)) {
            for (ESetting setting : {ESetting::Gamma, ESetting::ColorTemperature, ESetting::BatteryMode}) {
                display.GetSetting(setting);
            }
        }
    }
    return 0;
}
