#pragma once
// The values that outlive a run, under HKEY_CURRENT_USER: the main dialog's last position and
// the power warning's "do not show again".

#include <optional>

struct SWindowPosition {
    int x = 0;
    int y = 0;
};

namespace AppRegistry {

// Both "X" and "Y" of Software\Velor\OSD\Location, or nothing when either is missing.
std::optional<SWindowPosition> ReadLocation();
void WriteLocation(const SWindowPosition& position_I);
bool ReadIgnorePowerWarning();
void WriteIgnorePowerWarning();

}  // namespace AppRegistry
