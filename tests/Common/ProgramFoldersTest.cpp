// Where the program keeps its files for the user: the system's places, whatever a shell sets.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "ProgramFolders.h"

namespace {

// Sets a variable for one test and puts back what it was.
class CScopedVariable {
public:
    CScopedVariable(const char* name_I, const char* value_I) : mName(name_I) {
        const char* had = std::getenv(name_I);
        mHad = had != nullptr;
        mValue = had != nullptr ? had : "";
        Set(value_I);
    }
    ~CScopedVariable() { Set(mHad ? mValue.c_str() : nullptr); }

private:
    void Set(const char* value_I) {
#if defined(_WIN32)
        _putenv_s(mName.c_str(), value_I != nullptr ? value_I : "");
#else
        value_I != nullptr ? setenv(mName.c_str(), value_I, 1) : unsetenv(mName.c_str());
#endif
    }
    std::string mName;
    std::string mValue;
    bool mHad = false;
};

}  // namespace

TEST(ProgramFolders, TheStateAndCacheFoldersAreTheSystemsPlacesWhateverAShellSets) {
#if defined(_WIN32)
    // Git Bash sets HOME and may set the XDG variables; cmd sets neither: both find the same notes.
    const std::string roaming = std::getenv("APPDATA");
    const std::string local = std::getenv("LOCALAPPDATA");
    const CScopedVariable home("HOME", "C:\\Users\\someone\\bash-home");
    const CScopedVariable state("XDG_STATE_HOME", "C:\\Users\\someone\\xdg-state");
    const CScopedVariable cache("XDG_CACHE_HOME", "C:\\Users\\someone\\xdg-cache");
    EXPECT_EQ(UserStateFolder(), roaming + "\\velor-display-settings");
    EXPECT_EQ(UserCacheFolder(), local + "\\Velor Display Settings");
#else
    const CScopedVariable home("HOME", "/home/someone");
    {
        const CScopedVariable state("XDG_STATE_HOME", "/var/lib/someone-state");
        const CScopedVariable cache("XDG_CACHE_HOME", "/var/cache/someone");
        EXPECT_EQ(UserStateFolder(), "/var/lib/someone-state/velor-display-settings");
        EXPECT_EQ(UserCacheFolder(), "/var/cache/someone/velor-display-settings");
    }
    const CScopedVariable state("XDG_STATE_HOME", nullptr);
    const CScopedVariable cache("XDG_CACHE_HOME", "");
    EXPECT_EQ(UserStateFolder(), "/home/someone/.local/state/velor-display-settings");
    EXPECT_EQ(UserCacheFolder(), "/home/someone/.cache/velor-display-settings");
#endif
}
