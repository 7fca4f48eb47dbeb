#pragma once
// The mark every running copy of the program, the keeper and the command-line tool holds, so
// that the installer and the uninstaller do not replace files that are in use: a named mutex
// in the global namespace (seen from every session: another user's, and session 0 where device
// management runs the installer as SYSTEM) whose security descriptor lets every user open it to
// wait on it. The installer treats "access denied" as "running" too.

#include <windows.h>

constexpr wchar_t kInUseMarkName[] = L"Global\\VelorDisplaySettings.InUse";
// Held by every keeper besides the in-use mark: an installer waits for these to go before it
// asks a person to close the program.
constexpr wchar_t kKeeperMarkName[] = L"Global\\VelorDisplaySettings.Keeper";
// Set by an installer or uninstaller: every keeper, in every session, closes its devices and ends.
constexpr wchar_t kKeeperExitEventName[] = L"Global\\VelorDisplaySettings.KeeperExit";

class CInUseMark {
public:
    // Opens the mark, or creates it where no copy holds it yet; a failure only loses the mark.
    explicit CInUseMark(const wchar_t* name_I = kInUseMarkName);
    ~CInUseMark();
    CInUseMark(const CInUseMark&) = delete;
    CInUseMark& operator=(const CInUseMark&) = delete;

    bool Held() const { return mMark != nullptr; }

private:
    HANDLE mMark = nullptr;
};

// The installers' request to end, which a keeper waits on: an event every user may wait on and
// only the system and the administrators may set. Null when it cannot be had (the keeper then
// ends only when asked in its own session).
HANDLE OpenKeeperExitRequest();
