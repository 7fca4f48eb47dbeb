#pragma once
// The command-line tool: list, caps, get, set, save, reset, profiles, check, keep, restore and a
// studio's apply, over whatever displays the source finds, on Windows and on Linux. Returns the
// process's exit code.

#include <ostream>
#include <string>
#include <vector>

#include "CliDisplays.h"

namespace CliExit {
constexpr int kDone = 0;
constexpr int kBadUsage = 1;
constexpr int kNoSuchDisplay = 2;
constexpr int kCommunicationFailure = 3;
constexpr int kDrifted = 4;  // check: the display differs from the profile
constexpr int kChanged = 5;  // apply: a display was changed (with --check: would be)
}  // namespace CliExit

// args_I without the program name. changesFile_I keeps the unsaved changes between runs, for
// revert (empty: not kept); keptFile_I the profiles displays keep, for keep and restore;
// cacheFile_I the capabilities strings of the displays seen (empty: none are kept).
// showProgress_I: errors go to a person at a terminal, who is told what a long operation (a
// factory reset) is doing meanwhile.
int RunCommandLineTool(const std::vector<std::string>& args_I, IDisplaySource& source_I, std::ostream& out_O,
                       std::ostream& err_O, const std::string& changesFile_I = {},
                       const std::string& keptFile_I = {}, const std::string& cacheFile_I = {},
                       bool showProgress_I = false);
// Where the program keeps the changes: "changes.json" in its state folder (the demo's
// "demo-changes.json"); the kept profiles' file is DefaultKeptFile's.
std::string DefaultChangesFile(bool demo_I);
