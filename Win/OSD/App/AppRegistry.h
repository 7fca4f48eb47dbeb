#pragma once
// The values that outlive a run, under HKEY_CURRENT_USER: the main dialog's last position and
// the power warning's "do not show again"; and a deployment's own help site, which an
// administrator sets for the machine (HKEY_LOCAL_MACHINE) or a user for themselves.

#include <optional>
#include <string>

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
// "HelpBaseAddress" of Software\Velor\OSD (a text such as "https://help.example.org"), the
// user's before the machine's; empty when neither is set.
std::wstring ReadHelpBaseAddress();

// Whether the keeper keeps the displays' profiles ("KeepSettings" of Software\Velor\OSD;
// on unless turned off).
bool ReadKeepSettings();
void WriteKeepSettings(bool on_I);
// The keeper's start at log-on: the "Velor Display Settings Keeper" value of
// Software\Microsoft\Windows\CurrentVersion\Run, which starts this program with /tray. The
// installer's component writes the same value.
bool StartsKeeperAtLogOn();
// False when the value could not be written or removed.
bool SetKeeperStartsAtLogOn(bool on_I);

}  // namespace AppRegistry
