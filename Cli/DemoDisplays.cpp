#include "DemoDisplays.h"

#include "KeptProfiles.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>

#include "CVirtualDisplayConnector.h"
#include "DebugLog.h"
#include "EdidText.h"
#include "TextFile.h"
#include "VirtualMachine.h"

namespace {

struct SRouted {
    std::shared_ptr<CVirtualDisplay> display;
    const char* route;
    unsigned connectorType;
};

}  // namespace

CDemoDisplays::CDemoDisplays(std::string stateFile_I) : mStateFile(std::move(stateFile_I)) {}

CDemoDisplays::~CDemoDisplays() {
    Store();
}

std::string CDemoDisplays::DefaultStateFile() {
    if (const char* explicitFile = std::getenv("VLR_DEMO_STATE")) {
        return explicitFile;
    }
    const std::string folder = ProgramStateFolder(true);
    return folder.empty() ? std::string() : Utf8String(Utf8Path(folder) / "demo.json");
}

std::vector<SFoundDisplay>& CDemoDisplays::Displays() {
    if (mSearched) {
        return mDisplays;
    }
    mSearched = true;
    const SVirtualMachine machine = *VirtualMachine::Scenario("one-per-route");
    std::vector<SRouted> routed;
    for (const SVirtualMonitor& monitor : machine.monitors) {
        if (monitor.display && !monitor.ddcCiFails) {
            routed.push_back({monitor.display, "graphics driver", eConnectorDisplayPort});
        }
    }
    for (const SVirtualHidInterface& hid : machine.hidInterfaces) {
        if (hid.display) {
            routed.push_back({hid.display, "HID", eConnectorHID});
        }
    }
    for (const SVirtualComPort& port : machine.comPorts) {
        if (port.display) {
            routed.push_back({port.display, "serial", eConnectorSerial});
        }
    }
    for (const SVirtualFtdiBridge& bridge : machine.ftdiBridges) {
        if (bridge.display) {
            routed.push_back({bridge.display, "FTDI", eConnectorFTDI});
        }
    }
    for (const SRouted& entry : routed) {
        mVirtual.push_back(entry.display);
    }
    Load();
    for (const SRouted& entry : routed) {
        auto connector = std::make_shared<CVirtualDisplayConnector>(entry.display, entry.connectorType);
        connector->Open(0);
        auto display = std::make_shared<UiDisplayDelegate>(connector, entry.display->Model().edidProductCode);
        const ByteBuffer& edid = entry.display->Edid();
        mDisplays.push_back({DisplayModelName(entry.display->Model().monitorName),
                             entry.display->Model().serialText,
                             entry.route,
                             display,
                             false,
                             {Edid::ManufacturerId(edid), Edid::ProductCode(edid),
                              Edid::DescriptorText(edid, Edid::kTagSerialNumber), entry.route}});
    }
    return mDisplays;
}

// {"<serial>": {"<code>": [value, saved], ...}, ...}
void CDemoDisplays::Load() {
    if (mStateFile.empty()) {
        return;
    }
    std::error_code error;
    std::string problem;
    const std::optional<std::string> text = std::filesystem::exists(Utf8Path(mStateFile), error)
                                                ? ReadTextFile(mStateFile, problem)
                                                : std::nullopt;
    if (!text) {
        if (!problem.empty()) {
            DLog("Demo: %s; starting afresh\n", problem.c_str());
        }
        return;
    }
    const nlohmann::json state = nlohmann::json::parse(*text, nullptr, false);
    if (!state.is_object()) {
        DLog("Demo: %s is not a state file; starting afresh\n", mStateFile.c_str());
        return;
    }
    for (const auto& display : mVirtual) {
        auto it = state.find(display->Model().serialText);
        if (it == state.end() || !it->is_object()) {
            continue;
        }
        std::map<uint8_t, uint16_t> saved;
        std::map<uint8_t, uint16_t> current;
        for (const auto& [code, values] : it->items()) {
            const unsigned long number = std::strtoul(code.c_str(), nullptr, 16);
            if (number > 0xFF || !values.is_array() || values.size() != 2 ||
                !values[0].is_number_unsigned() || !values[1].is_number_unsigned() || values[0] > 0xFFFF ||
                values[1] > 0xFFFF) {
                continue;
            }
            current[static_cast<uint8_t>(number)] = values[0].template get<uint16_t>();
            saved[static_cast<uint8_t>(number)] = values[1].template get<uint16_t>();
        }
        display->RestoreSavedValues(saved);
        for (const auto& [code, value] : current) {
            display->SetValueFromMenu(code, value);
        }
    }
}

void CDemoDisplays::Store() const {
    if (mStateFile.empty() || !mSearched) {
        return;
    }
    nlohmann::json state = nlohmann::json::object();
    for (const auto& display : mVirtual) {
        nlohmann::json values = nlohmann::json::object();
        for (const auto& [code, saved] : display->SavedValues()) {
            char name[4];
            std::snprintf(name, sizeof(name), "%02X", code);
            values[name] = nlohmann::json::array({display->Value(code), saved});
        }
        state[display->Model().serialText] = values;
    }
    std::string problem;
    if (!WriteTextFile(mStateFile, state.dump(1) + "\n", problem)) {
        DLog("Demo: %s\n", problem.c_str());
    }
}
