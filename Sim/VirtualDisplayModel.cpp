#include "VirtualDisplayModel.h"

#include "StringUtilities.h"

std::string BuildCapabilitiesString(const SVirtualDisplayModel& model_I) {
    std::string vcp;
    for (const SVirtualControl& control : model_I.controls) {
        if (!control.listed) {
            continue;
        }
        if (!vcp.empty()) {
            vcp += ' ';
        }
        vcp += StringPrintf("%02X", control.code);
        std::string values;
        if (control.listedValues) {
            values = *control.listedValues;
        } else {
            for (uint16_t value : control.allowed) {
                if (!values.empty()) {
                    values += ' ';
                }
                values += StringPrintf("%02X", value);
            }
        }
        if (!values.empty()) {
            vcp += "(" + values + ")";
        }
    }
    std::string model = model_I.monitorName;
    for (char& c : model) {
        if (c == ' ') {
            c = '-';
        }
    }
    std::string caps = "(prot(monitor)type(LCD)model(" + model + ")cmds(01 02 03 0C E3 F3)vcp(" + vcp + ")";
    if (model_I.listsMccsVersion) {
        caps += "mccs_ver(2.2)";
    }
    return caps + ")";
}
