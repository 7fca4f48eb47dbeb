#include "CTrayKeeper.h"

#include <shellapi.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "AppRegistry.h"
#include "ApplicationRules.h"
#include "CWinKeeperDesk.h"
#include "DebugLog.h"
#include "DeskChanges.h"
#include "DialogIds.h"
#include "DisplayLock.h"
#include "InUseMark.h"
#include "KeptProfiles.h"
#include "MessageWindows.h"
#include "ResourceUtils.h"
#include "SettingNames.h"
#include "SettingTable.h"
#include "TextFile.h"
#include "WinStrings.h"

namespace {

constexpr UINT kTrayMessage = WM_APP + 1;
constexpr UINT kNotifyMessage = WM_APP + 2;
constexpr UINT kIconId = 1;
constexpr UINT_PTR kForegroundTimer = 1;
constexpr UINT kForegroundPollMs = 500;
constexpr wchar_t kKeeperMutex[] = L"Local\\VelorDisplaySettings.Keeper";
// The keeper's rounds wait this long for a search of the settings dialog to end.
constexpr std::chrono::seconds kEveryDisplayWait{30};

// The interface texts of the keeper.
enum : uint32_t {
    kOpenText = 2950,
    kApplyProfileText = 2951,
    kKeepText = 2952,
    kRulesText = 2953,
    kExitText = 2954,
    kRestoredTitle = 2955,
    kRestoredText = 2956,      // "%1: %2 restored."
    kNotAnsweringText = 2957,  // "%1 did not answer; its settings could not be restored."
    kNotRestoredText = 2958,   // "%1: %2 could not be restored."
    kUnreadableText = 2959,    // "%1: the kept profile cannot be read."
    kNotRestoredTitle = 2960,
    kNoProfilesText = 2961,
    kMatchedText = 2962,  // "%1 already has its profile's settings."
    kKeepCurrentText = 2964,
    kKeptText = 2965,  // "%1 keeps its current settings."
    kKeptTitle = 2966,
    kProductTitle = 2000,
};

// The custom colour's adjustments and channels as the colour dialog names them.
constexpr std::pair<const char*, uint32_t> kColorWords[] = {
    {"hue", 2240}, {"saturation", 2241}, {"gain", 2242}, {"offset", 2243},
    {"red", 2244}, {"green", 2245},      {"blue", 2246},
};

std::mutex gNotificationMutex;
std::wstring gLastNotification;
HWND gKeeperWindow = nullptr;

std::wstring Text(uint32_t id_I, LANGID language_I) {
    return LoadTableString(id_I, language_I);
}

// A caption without its colon ("Brightness:" -> "Brightness", "Économie d'énergie :").
std::wstring Bare(std::wstring text_I) {
    while (!text_I.empty() && (text_I.back() == L':' || text_I.back() == L' ' || text_I.back() == 0x00A0 ||
                               text_I.back() == 0xFF1A)) {
        text_I.pop_back();
    }
    return text_I;
}

std::wstring SettingLabel(const std::string& name_I, LANGID language_I) {
    if (const std::optional<ESetting> setting = SettingByName(name_I)) {
        return Bare(Text(SettingCaptionId(*setting), language_I));
    }
    const size_t dash = name_I.find('-');
    std::wstring label;
    for (const std::string& word :
         {name_I.substr(0, dash), dash == std::string::npos ? "" : name_I.substr(dash + 1)}) {
        for (const auto& [known, id] : kColorWords) {
            if (word == known) {
                label += (label.empty() ? L"" : L" ") + Bare(Text(id, language_I));
            }
        }
    }
    return label.empty() ? Widen(name_I) : label;
}

std::wstring OwnPath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

std::wstring FileNameOf(const std::wstring& path_I) {
    const size_t slash = path_I.find_last_of(L"\\/");
    return slash == std::wstring::npos ? path_I : path_I.substr(slash + 1);
}

std::chrono::microseconds SteadyNow() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace

CTrayKeeper::CTrayKeeper(SStartupOptions options_I, LANGID language_I, SKeeperFiles files_I)
    : mOptions(std::move(options_I)), mLanguage(language_I), mFiles(std::move(files_I)) {
    mKeeping = AppRegistry::ReadKeepSettings();
}

CTrayKeeper::~CTrayKeeper() {
    Post({SCommand::EKind::Quit, {}, false});
    if (mWorker.joinable()) {
        mWorker.join();
    }
}

std::wstring CTrayKeeper::LastNotification() {
    std::lock_guard lock(gNotificationMutex);
    return gLastNotification;
}

int CTrayKeeper::Run() {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = &CTrayKeeper::WindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kWindowClass;
    RegisterClassExW(&windowClass);  // already there on a second run in one process
    // A hidden top-level window: broadcasts (device changes, power) reach only those.
    // Not the product title: the settings dialog takes a window of that title for a copy of
    // itself already running.
    mWindow = CreateWindowExW(WS_EX_TOOLWINDOW, kWindowClass, L"Velor Display Settings Keeper", WS_POPUP, 0,
                              0, 0, 0, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (mWindow == nullptr) {
        DLog("Keeper: no window (%lu)\n", GetLastError());
        return 2;
    }
    gKeeperWindow = mWindow;
    CDeskChangeRegistration deskChanges;
    deskChanges.Register(mWindow);
    mTaskbarCreated = RegisterWindowMessageW(L"TaskbarCreated");
    AddIcon();
    mHook =
        SetWinEventHook(EVENT_SYSTEM_FOREGROUND, EVENT_SYSTEM_FOREGROUND, nullptr,
                        &CTrayKeeper::ForegroundHook, 0, 0, WINEVENT_OUTOFCONTEXT | WINEVENT_SKIPOWNPROCESS);
    // Also asked twice a second: not every system sends the foreground event (Wine does not).
    SetTimer(mWindow, kForegroundTimer, kForegroundPollMs, nullptr);
    mWorker = std::thread([this] { Work(); });
    DLog("Keeper: running (keeping %s)\n", mKeeping ? "on" : "off");

    // Messages, and an installer's request to end (set for every keeper in every session).
    HANDLE exitRequest = OpenKeeperExitRequest();
    bool running = true;
    while (running) {
        const DWORD woken = MsgWaitForMultipleObjectsEx(exitRequest != nullptr ? 1 : 0, &exitRequest,
                                                        INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        if (exitRequest != nullptr && woken == WAIT_OBJECT_0) {
            DLog("Keeper: an installer asks every keeper to end\n");
            CloseHandle(exitRequest);
            exitRequest = nullptr;
            DestroyWindow(mWindow);
        }
        MSG message;
        while (running && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                running = false;
                break;
            }
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    if (exitRequest != nullptr) {
        CloseHandle(exitRequest);
    }
    if (mHook != nullptr) {
        UnhookWinEvent(mHook);
    }
    Post({SCommand::EKind::Quit, {}, false});
    mWorker.join();
    gKeeperWindow = nullptr;
    return 0;
}

LRESULT CALLBACK CTrayKeeper::WindowProc(HWND window_I, UINT message_I, WPARAM wParam_I, LPARAM lParam_I) {
    if (message_I == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam_I);
        SetWindowLongPtrW(window_I, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<CTrayKeeper*>(GetWindowLongPtrW(window_I, GWLP_USERDATA));
    if (self == nullptr || self->mWindow != window_I) {
        return DefWindowProcW(window_I, message_I, wParam_I, lParam_I);
    }
    return self->OnMessage(message_I, wParam_I, lParam_I);
}

// The executable of a window's process; empty for one of this program (the settings dialog in
// front, opened from the menu, keeps the profile in effect) or one that cannot be asked.
static std::wstring ExecutableOf(HWND window_I) {
    DWORD process = 0;
    if (window_I == nullptr || GetWindowThreadProcessId(window_I, &process) == 0 ||
        process == GetCurrentProcessId()) {
        return {};
    }
    HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
    if (handle == nullptr) {
        return {};
    }
    wchar_t path[MAX_PATH] = {};
    DWORD size = MAX_PATH;
    const BOOL named = QueryFullProcessImageNameW(handle, 0, path, &size);
    CloseHandle(handle);
    if (!named || _wcsicmp(FileNameOf(path).c_str(), FileNameOf(OwnPath()).c_str()) == 0) {
        return {};
    }
    return FileNameOf(path);
}

void CALLBACK CTrayKeeper::ForegroundHook(HWINEVENTHOOK, DWORD, HWND window_I, LONG, LONG, DWORD, DWORD) {
    const std::wstring executable = ExecutableOf(window_I);
    if (executable.empty() || gKeeperWindow == nullptr) {
        return;
    }
    if (const ATOM atom = GlobalAddAtomW(executable.c_str()); atom != 0) {
        PostMessageW(gKeeperWindow, kForegroundMessage, atom, 0);
    }
}

void CTrayKeeper::NoteForeground(const std::wstring& executable_I) {
    // The hook and the poll both report; only a change counts (each report restarts the wait
    // for the application to stay in front).
    if (executable_I.empty() || _wcsicmp(executable_I.c_str(), mForeground.c_str()) == 0) {
        return;
    }
    mForeground = executable_I;
    Post({SCommand::EKind::Foreground, Narrow(executable_I), false});
}

LRESULT CTrayKeeper::OnMessage(UINT message_I, WPARAM wParam_I, LPARAM lParam_I) {
    if (IsDeskChange(message_I, wParam_I, lParam_I)) {
        DLog("Keeper: the desk changed\n");
        Post({SCommand::EKind::DesktopChanged, {}, false});
    }
    if (message_I == mTaskbarCreated && mTaskbarCreated != 0) {
        AddIcon();  // the shell started again
        return 0;
    }
    switch (message_I) {
        case kTrayMessage:
            if (lParam_I == WM_RBUTTONUP || lParam_I == WM_CONTEXTMENU) {
                ShowMenu();
            } else if (lParam_I == WM_LBUTTONDBLCLK) {
                OpenSettings();
            }
            return 0;
        case kNotifyMessage: {
            std::unique_ptr<std::vector<SKeeperResult>> results(
                reinterpret_cast<std::vector<SKeeperResult>*>(lParam_I));
            ShowNotification(*results);
            return 0;
        }
        case kForegroundMessage: {
            wchar_t name[256] = {};
            const auto atom = static_cast<ATOM>(wParam_I);
            GlobalGetAtomNameW(atom, name, 256);
            GlobalDeleteAtom(atom);
            NoteForeground(name);
            return 0;
        }
        case WM_TIMER:
            if (wParam_I == kForegroundTimer) {
                NoteForeground(ExecutableOf(GetForegroundWindow()));
            }
            return 0;
        case WM_COMMAND: OnCommand(LOWORD(wParam_I)); return 0;
        case WM_CLOSE: DestroyWindow(mWindow); return 0;
        case WM_DESTROY: {
            NOTIFYICONDATAW icon{};
            icon.cbSize = sizeof(icon);
            icon.hWnd = mWindow;
            icon.uID = kIconId;
            Shell_NotifyIconW(NIM_DELETE, &icon);
            PostQuitMessage(0);
            return 0;
        }
        case WM_POWERBROADCAST:
        case WM_DEVICECHANGE: return TRUE;
        default: return DefWindowProcW(mWindow, message_I, wParam_I, lParam_I);
    }
}

void CTrayKeeper::AddIcon() {
    NOTIFYICONDATAW icon{};
    icon.cbSize = sizeof(icon);
    icon.hWnd = mWindow;
    icon.uID = kIconId;
    icon.uFlags = NIF_ICON | NIF_TIP | NIF_MESSAGE;
    icon.uCallbackMessage = kTrayMessage;
    // Shared: loaded once and freed by the system, however often the shell asks for the icon.
    icon.hIcon = static_cast<HICON>(
        LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_APPLICATION_ICON), IMAGE_ICON,
                   GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), LR_SHARED));
    lstrcpynW(icon.szTip, Text(kProductTitle, mLanguage).c_str(), ARRAYSIZE(icon.szTip));
    if (!Shell_NotifyIconW(NIM_ADD, &icon)) {
        DLog("Keeper: the notification area took no icon\n");
    }
}

std::vector<std::string> CTrayKeeper::Profiles() const {
    std::vector<std::string> profiles;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(Utf8Path(mFiles.profiles), error)) {
        if (entry.path().extension() == ".json") {
            profiles.push_back(Utf8String(entry.path()));
        }
    }
    std::sort(profiles.begin(), profiles.end());
    CKeptProfiles kept(mFiles.kept);
    std::string problem;
    kept.Load(problem);
    for (const SKeptProfile& entry : kept.All()) {
        if (std::find(profiles.begin(), profiles.end(), entry.profile) == profiles.end()) {
            profiles.push_back(entry.profile);
        }
    }
    return profiles;
}

void CTrayKeeper::ShowMenu() {
    HMENU menu = CreatePopupMenu();
    HMENU profiles = CreatePopupMenu();
    mMenuProfiles = Profiles();
    for (size_t i = 0; i < mMenuProfiles.size() && i < 50; ++i) {
        const std::wstring name = std::filesystem::path(Widen(mMenuProfiles[i])).stem().wstring();
        AppendMenuW(profiles, MF_STRING, kFirstProfileCommand + i, name.c_str());
    }
    if (mMenuProfiles.empty()) {
        AppendMenuW(profiles, MF_STRING | MF_GRAYED, 0, Text(kNoProfilesText, mLanguage).c_str());
    }
    AppendMenuW(menu, MF_STRING, kOpenCommand, Text(kOpenText, mLanguage).c_str());
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(profiles),
                Text(kApplyProfileText, mLanguage).c_str());
    AppendMenuW(menu, MF_STRING, kKeepCurrentCommand, Text(kKeepCurrentText, mLanguage).c_str());
    AppendMenuW(menu, MF_STRING | (mKeeping ? MF_CHECKED : MF_UNCHECKED), kKeepCommand,
                Text(kKeepText, mLanguage).c_str());
    AppendMenuW(menu, MF_STRING, kRulesCommand, Text(kRulesText, mLanguage).c_str());
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, kExitCommand, Text(kExitText, mLanguage).c_str());
    SetMenuDefaultItem(menu, kOpenCommand, FALSE);
    POINT at{};
    GetCursorPos(&at);
    // The menu closes when the user clicks elsewhere only if its window is in front.
    SetForegroundWindow(mWindow);
    TrackPopupMenu(menu, TPM_RIGHTBUTTON | TPM_BOTTOMALIGN, at.x, at.y, 0, mWindow, nullptr);
    PostMessageW(mWindow, WM_NULL, 0, 0);
    DestroyMenu(menu);
}

void CTrayKeeper::OnCommand(UINT command_I) {
    switch (command_I) {
        case kOpenCommand: OpenSettings(); break;
        case kKeepCommand:
            mKeeping = !mKeeping;
            AppRegistry::WriteKeepSettings(mKeeping);
            Post({SCommand::EKind::Keeping, {}, mKeeping});
            break;
        case kKeepCurrentCommand: Post({SCommand::EKind::KeepCurrent, {}, false}); break;
        case kRulesCommand: OpenRules(); break;
        case kExitCommand: DestroyWindow(mWindow); break;
        default:
            if (command_I >= kFirstProfileCommand &&
                command_I - kFirstProfileCommand < mMenuProfiles.size()) {
                Post({SCommand::EKind::Apply, mMenuProfiles[command_I - kFirstProfileCommand], false});
            }
            break;
    }
}

void CTrayKeeper::OpenSettings() {
    // The settings dialog is the same program without /tray (a copy already open comes forward).
    std::wstring command = L"\"" + OwnPath() + L"\"";
    const std::wstring options = ProgramOptions(mOptions);
    if (!options.empty()) {
        command += L" " + options;
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &process)) {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    } else {
        DLog("Keeper: the settings did not start (%lu)\n", GetLastError());
    }
}

void CTrayKeeper::OpenRules() {
    std::error_code error;
    if (!std::filesystem::exists(Utf8Path(mFiles.rules), error)) {
        std::string problem;
        if (!WriteTextFile(mFiles.rules, CApplicationRules::ExampleText(), problem)) {
            DLog("Keeper: %s\n", problem.c_str());
        }
    }
    // Notepad is on every Windows, whatever opens .json files there.
    const std::wstring file = L"\"" + Widen(mFiles.rules) + L"\"";
    ShellExecuteW(nullptr, L"open", L"notepad.exe", file.c_str(), nullptr, SW_SHOWNORMAL);
}

void CTrayKeeper::ShowNotification(const std::vector<SKeeperResult>& results_I) {
    if (results_I.empty()) {
        return;
    }
    std::wstring text;
    bool allRestored = true;
    bool kept = false;
    for (const SKeeperResult& result : results_I) {
        // Two to a line: Wine's notification does not wrap long lines.
        std::wstring settings;
        for (size_t i = 0; i < result.settings.size(); ++i) {
            settings +=
                (i == 0 ? L"" : (i % 2 == 0 ? L",\n" : L", ")) + SettingLabel(result.settings[i], mLanguage);
        }
        const std::wstring model = Widen(result.model);
        std::wstring line;
        switch (result.kind) {
            case SKeeperResult::EKind::Restored:
                line = MessageWindows::Filled(
                    Text(settings.empty() ? kMatchedText : kRestoredText, mLanguage), model, settings);
                break;
            case SKeeperResult::EKind::Failed:
                line = MessageWindows::Filled(Text(kNotRestoredText, mLanguage), model, settings);
                allRestored = false;
                break;
            case SKeeperResult::EKind::NotAnswering:
                line = MessageWindows::Filled(Text(kNotAnsweringText, mLanguage), model, {});
                allRestored = false;
                break;
            case SKeeperResult::EKind::Kept:
                line = MessageWindows::Filled(Text(kKeptText, mLanguage), model, {});
                kept = true;
                break;
            case SKeeperResult::EKind::ProfileUnreadable:
                line = MessageWindows::Filled(Text(kUnreadableText, mLanguage), model, {});
                allRestored = false;
                break;
        }
        text += (text.empty() ? L"" : L"\n") + line;
    }
    const std::wstring title =
        Text(!allRestored ? kNotRestoredTitle : (kept ? kKeptTitle : kRestoredTitle), mLanguage);
    {
        std::lock_guard lock(gNotificationMutex);
        gLastNotification = title + L"\n" + text;
    }
    DLog("Keeper: %s\n", Narrow(title + L": " + text).c_str());
    NOTIFYICONDATAW icon{};
    icon.cbSize = sizeof(icon);
    icon.hWnd = mWindow;
    icon.uID = kIconId;
    icon.uFlags = NIF_INFO;
    icon.dwInfoFlags = allRestored ? NIIF_INFO : NIIF_WARNING;
    lstrcpynW(icon.szInfoTitle, title.c_str(), ARRAYSIZE(icon.szInfoTitle));
    lstrcpynW(icon.szInfo, text.c_str(), ARRAYSIZE(icon.szInfo));
    Shell_NotifyIconW(NIM_MODIFY, &icon);
}

void CTrayKeeper::Post(SCommand command_I) {
    {
        std::lock_guard lock(mMutex);
        mCommands.push_back(std::move(command_I));
    }
    mWake.notify_one();
}

void CTrayKeeper::Work() {
    const HWND window = mWindow;
    CWinKeeperDesk desk(mOptions, mLanguage, [window](const std::vector<SKeeperResult>& results_I) {
        auto* copy = new std::vector<SKeeperResult>(results_I);
        if (!PostMessageW(window, kNotifyMessage, 0, reinterpret_cast<LPARAM>(copy))) {
            delete copy;
        }
    });
    CSettingsKeeper keeper(desk, mFiles.kept, mFiles.rules, &SteadyNow);
    keeper.SetKeeping(mKeeping);
    keeper.DesktopChanged();  // started at log-on: what the displays keep goes back
    for (;;) {
        std::optional<CSettingsKeeper::Duration> next;
        {
            // Never at the same time as the settings dialog's search.
            const std::unique_ptr<CDisplayLock> every = HoldDisplayLock(kEveryDisplay, kEveryDisplayWait);
            next = keeper.Poll();
        }
        std::deque<SCommand> commands;
        {
            std::unique_lock lock(mMutex);
            const auto waiting = [this] { return !mCommands.empty(); };
            if (next) {
                mWake.wait_for(lock, *next, waiting);
            } else {
                mWake.wait(lock, waiting);
            }
            commands.swap(mCommands);
        }
        for (const SCommand& command : commands) {
            switch (command.kind) {
                case SCommand::EKind::DesktopChanged: keeper.DesktopChanged(); break;
                case SCommand::EKind::Foreground: keeper.ForegroundChanged(command.text); break;
                case SCommand::EKind::Keeping: keeper.SetKeeping(command.on); break;
                case SCommand::EKind::Apply:
                case SCommand::EKind::KeepCurrent: {
                    const std::unique_ptr<CDisplayLock> every =
                        HoldDisplayLock(kEveryDisplay, kEveryDisplayWait);
                    desk.Notify(command.kind == SCommand::EKind::Apply ? keeper.ApplyNow(command.text)
                                                                       : keeper.KeepCurrent(mFiles.profiles));
                    break;
                }
                case SCommand::EKind::Quit: return;
            }
        }
    }
}

int RunTrayKeeper(const SStartupOptions& options_I, LANGID language_I) {
    HANDLE running = CreateMutexW(nullptr, FALSE, kKeeperMutex);
    if (running != nullptr && GetLastError() == ERROR_ALREADY_EXISTS) {
        DLog("Keeper: one runs in this session already\n");
        CloseHandle(running);
        return 0;
    }
    // Installers in any session see it running, and wait for it to end when they ask it to.
    const CInUseMark inUse;
    const CInUseMark keeperMark(kKeeperMarkName);
    const bool demo = !options_I.demoScenario.empty();
    int exitCode = 0;
    {
        CTrayKeeper keeper(options_I, language_I,
                           {DefaultKeptFile(demo), DefaultRulesFile(demo), DefaultProfilesFolder(demo)});
        exitCode = keeper.Run();
    }
    if (running != nullptr) {
        CloseHandle(running);
    }
    return exitCode;
}
