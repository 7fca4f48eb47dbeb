#pragma once
// Where the program keeps its own files for the user who runs it, as the system names the
// places. Linux: $XDG_STATE_HOME (else ~/.local/state) and $XDG_CACHE_HOME (else ~/.cache),
// each with velor-display-settings/. Windows: the known folders, roaming application data with
// velor-display-settings\ and local application data with Velor Display Settings\; HOME and the
// XDG variables are not asked there (Git Bash sets them and cmd does not, and both must find the
// same revert notes and kept profiles). Empty when the system names no such place.

#include <string>

// The revert notes, the kept profiles, the profiles per application, the quiet tool's log.
std::string UserStateFolder();
// What can be made again: the displays' capabilities.
std::string UserCacheFolder();
