#pragma once
// One run of the program after the command line was read: the "/help" box, or the main
// dialog and whatever window ends the run.

#include <windows.h>

#include "StartupOptions.h"

// The interface language the options ask for.
LANGID InterfaceLanguage(const SStartupOptions& options_I);

// The process exit codes: 0 the program was closed (or handed over to a copy already
// running), 1 no supported display, 2 the error window (a display found but not reached),
// 3 a communication failure ended the program.
enum EExitCode : int { eExitClosed = 0, eExitNoDisplay = 1, eExitError = 2, eExitCommunicationFailure = 3 };

// Returns the process exit code. Holds the mutex "VelorDisplaySettings.Running" while it
// runs (the installer asks for it); a second start ends at once.
int RunApplication(const SStartupOptions& options_I);
