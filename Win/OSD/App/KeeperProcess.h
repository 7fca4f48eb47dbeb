#pragma once
// The keeper as another process sees it: its window's class (one keeper per session owns a
// window of it) and starting it, this program with /tray.

#include <string>

namespace KeeperProcess {

constexpr wchar_t kWindowClass[] = L"VelorDisplaySettings.Keeper";

// Whether a keeper runs in this session.
bool IsRunning();

// Starts this program as the keeper, with these options of the run that starts it ("/demo
// one-per-route /language de"); false when it did not start.
bool Start(const std::wstring& options_I);

// Replaces how the process is started (tests note the command line instead); nullptr puts
// CreateProcess back.
using Starter = bool (*)(const std::wstring& commandLine_I);
void SetStarter(Starter starter_I);

}  // namespace KeeperProcess
