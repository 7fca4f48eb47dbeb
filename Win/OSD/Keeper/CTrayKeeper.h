#pragma once
// The resident keeper ("/tray"): an icon in the notification area whose menu opens the
// settings, applies a profile, turns keeping on and off, opens the profiles per application
// and ends it; a hidden window that hears of displays arriving, the machine waking and
// displays switched on; a hook on the window in front for the profiles per application; and a
// thread that runs the keeper, so that the icon answers while displays are read and written.
// One per user session.

#include <windows.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "KeeperProcess.h"
#include "SettingsKeeper.h"
#include "StartupOptions.h"

// Where the keeper's files are.
struct SKeeperFiles {
    std::string kept;
    std::string rules;
    std::string profiles;  // the folder whose profiles the menu offers
};

class CTrayKeeper {
public:
    CTrayKeeper(SStartupOptions options_I, LANGID language_I, SKeeperFiles files_I);
    ~CTrayKeeper();
    CTrayKeeper(const CTrayKeeper&) = delete;
    CTrayKeeper& operator=(const CTrayKeeper&) = delete;

    // Runs until Exit is chosen (or the window is closed); the process exit code.
    int Run();

    // The hidden window's class, by which a second start and the tests find it.
    static constexpr const wchar_t* kWindowClass = KeeperProcess::kWindowClass;
    // The window in front changed: wParam is an atom naming its executable (the hook posts it;
    // the tests post it as another application would make it).
    static constexpr UINT kForegroundMessage = WM_APP + 3;
    // The menu's commands, as WM_COMMAND to the window.
    enum : UINT {
        kOpenCommand = 1,
        kKeepCommand = 2,
        kRulesCommand = 3,
        kExitCommand = 4,
        kKeepCurrentCommand = 5,
        kFirstProfileCommand = 100,
    };
    // The notification the keeper showed last (title, a line break, text), for the tests.
    static std::wstring LastNotification();

private:
    struct SCommand {
        enum class EKind { DesktopChanged, Foreground, Keeping, Apply, KeepCurrent, Quit } kind;
        std::string text;
        bool on = false;
    };

    static LRESULT CALLBACK WindowProc(HWND window_I, UINT message_I, WPARAM wParam_I, LPARAM lParam_I);
    static void CALLBACK ForegroundHook(HWINEVENTHOOK, DWORD, HWND window_I, LONG, LONG, DWORD, DWORD);
    LRESULT OnMessage(UINT message_I, WPARAM wParam_I, LPARAM lParam_I);
    // The application in front, from the hook or the poll: handed on when it changed.
    void NoteForeground(const std::wstring& executable_I);
    void AddIcon();
    void ShowMenu();
    void OnCommand(UINT command_I);
    void OpenSettings();
    void OpenRules();
    // The profiles the menu offers: the profiles folder's and the kept ones, each once.
    std::vector<std::string> Profiles() const;
    void ShowNotification(const std::vector<SKeeperResult>& results_I);

    void Post(SCommand command_I);
    void Work();

    SStartupOptions mOptions;
    LANGID mLanguage;
    SKeeperFiles mFiles;
    HWND mWindow = nullptr;
    HWINEVENTHOOK mHook = nullptr;
    bool mKeeping = true;
    UINT mTaskbarCreated = 0;
    std::vector<std::string> mMenuProfiles;
    std::wstring mForeground;

    std::mutex mMutex;
    std::condition_variable mWake;
    std::deque<SCommand> mCommands;
    std::thread mWorker;
};

// Runs the keeper unless one runs in this session already; the process exit code.
int RunTrayKeeper(const SStartupOptions& options_I, LANGID language_I);
