#pragma once
// One run of the program after the command line was read: the "/help" box, or the main
// dialog and whatever window ends the run.

#include <windows.h>

#include "StartupOptions.h"

// The interface language the options ask for.
LANGID InterfaceLanguage(const SStartupOptions& options_I);

// Returns the process exit code.
int RunApplication(const SStartupOptions& options_I);
