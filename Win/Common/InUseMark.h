#pragma once
// The mark every running copy of the program, the keeper and the command-line tool holds, so
// that the installer and the uninstaller do not replace files that are in use: a named mutex
// in the global namespace (seen from every session: another user's, and session 0 where device
// management runs the installer as SYSTEM) whose security descriptor lets every user open it to
// wait on it. The installer treats "access denied" as "running" too.

#include <windows.h>

constexpr wchar_t kInUseMarkName[] = L"Global\\VelorDisplaySettings.InUse";

class CInUseMark {
public:
    // Opens the mark, or creates it where no copy holds it yet; a failure only loses the mark.
    CInUseMark();
    ~CInUseMark();
    CInUseMark(const CInUseMark&) = delete;
    CInUseMark& operator=(const CInUseMark&) = delete;

    bool Held() const { return mMark != nullptr; }

private:
    HANDLE mMark = nullptr;
};
