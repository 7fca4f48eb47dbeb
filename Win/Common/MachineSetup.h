#pragma once
// What the installer and the uninstaller ask of the command-line tool (hidden commands, since
// an installer's own strings and registry calls stop at 1,024 characters and it has no access
// lists): the program folder in and out of the machine's PATH, and the machine's folder under
// ProgramData made or checked before anything is written into it.
//   velor-display --machine-path add|remove|has FOLDER
//   velor-display --machine-folder BASE RELATIVE   (ProgramData, "Velor\Display Settings")
// Exit codes: 0 done (for has: the folder is on PATH), 1 not done (has: it is not), 2 bad use,
// and for --machine-folder 6 when the folder is refused (a link or junction, or another owner).

#include <ostream>
#include <string>
#include <vector>

constexpr int kMachineFolderRefused = 6;

// Whether the arguments are one of these commands.
bool IsMachineSetupCommand(const std::vector<std::string>& args_I);
// Runs it; what went wrong goes to err_O.
int RunMachineSetupCommand(const std::vector<std::string>& args_I, std::ostream& err_O);
