#include "DrmConnectors.h"

#include <algorithm>

#include "DebugLog.h"

namespace {

constexpr size_t kEdidBlock = 128;

// "i2c-5" from a link target such as "../../../i2c-5" or a folder name.
std::string I2cName(const std::string& text_I) {
    const std::string name = text_I.substr(text_I.find_last_of('/') + 1);
    return name.rfind("i2c-", 0) == 0 ? name : std::string();
}

}  // namespace

std::vector<SDrmConnector> FindDrmConnectors(ILinuxSystem& system_I, const std::string& sysfsDrm_I) {
    std::vector<SDrmConnector> found;
    std::vector<std::string> names = system_I.List(sysfsDrm_I);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        // Connectors are "cardN-<type>-<n>"; the cards themselves have no dash.
        if (name.rfind("card", 0) != 0 || name.find('-') == std::string::npos) {
            continue;
        }
        const std::string folder = sysfsDrm_I + "/" + name;
        std::optional<ByteBuffer> edid = system_I.Read(folder + "/edid");
        if (!edid || edid->empty()) {
            continue;  // nothing connected
        }
        if (edid->size() % kEdidBlock != 0) {
            DLog("FindDrmConnectors: %s has a truncated EDID (%u bytes); skipped\n", name.c_str(),
                 static_cast<unsigned>(edid->size()));
            continue;
        }
        SDrmConnector connector{name, *edid, {}};
        std::string bus = I2cName(system_I.LinkTarget(folder + "/ddc"));
        if (bus.empty()) {
            for (const std::string& entry : system_I.List(folder)) {
                if (!I2cName(entry).empty()) {
                    bus = entry;
                    break;
                }
            }
        }
        if (!bus.empty()) {
            connector.i2cDevice = "/dev/" + bus;
        }
        found.push_back(std::move(connector));
    }
    return found;
}
