#include "DemoMachine.h"

#include <windows.h>
// windows.h first: shlobj.h needs its types.
#include <shlobj.h>

#include <cstdio>
#include <filesystem>
#include <map>

#include "DebugLog.h"
#include "StringUtilities.h"
#include "TextFile.h"
#include "WinStrings.h"

namespace {

constexpr char kDefaultScenario[] = "one-per-route";

std::wstring DemoFolder() {
    wchar_t* appData = nullptr;
    std::wstring folder;
    if (SHGetKnownFolderPath(FOLDERID_RoamingAppData, KF_FLAG_CREATE, nullptr, &appData) == S_OK) {
        folder = std::wstring(appData) + L"\\Velor\\Display Settings Demo";
    }
    CoTaskMemFree(appData);
    return folder;
}

}  // namespace

CDemoMachine::CDemoMachine(const std::string& scenario_I) : mScenario(scenario_I) {
    std::optional<SVirtualMachine> machine = VirtualMachine::Scenario(mScenario);
    if (!machine) {
        DLog("Demo: no scenario %s; showing %s\n", mScenario.c_str(), kDefaultScenario);
        mScenario = kDefaultScenario;
        machine = VirtualMachine::Scenario(mScenario);
    }
    mMachine = std::make_unique<CSimulatedMachine>(std::move(*machine));
    Load();
    if (!mMachine->Machine().timeline.empty()) {
        mStop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        mTimeline = std::thread([this] {
            const DWORD start = GetTickCount();
            for (const SDeskEvent& event : mMachine->Machine().timeline) {
                const DWORD due = static_cast<DWORD>(event.at.count());
                const DWORD now = GetTickCount() - start;
                if (WaitForSingleObject(mStop, due > now ? due - now : 0) == WAIT_OBJECT_0) {
                    return;
                }
                mMachine->Play(event);
            }
        });
    }
}

CDemoMachine::~CDemoMachine() {
    if (mTimeline.joinable()) {
        SetEvent(mStop);
        mTimeline.join();
    }
    if (mStop != nullptr) {
        CloseHandle(mStop);
    }
    Store();
}

std::wstring CDemoMachine::StateFile(const std::string& scenario_I) {
    const std::wstring folder = DemoFolder();
    return folder.empty() ? std::wstring() : folder + L"\\" + Widen(scenario_I) + L".txt";
}

// One line per stored value: the display's serial number, the VCP code, the saved value and the
// current one (files of earlier versions have no current values: the display starts from the
// saved ones). Unsaved values stay between runs, as a display keeps them until it is switched off.
void CDemoMachine::Load() {
    const std::wstring path = StateFile(mScenario);
    FILE* file = path.empty() ? nullptr : _wfopen(path.c_str(), L"r");
    if (file == nullptr) {
        return;
    }
    std::map<std::string, std::map<uint8_t, uint16_t>> saved;
    std::map<std::string, std::map<uint8_t, uint16_t>> current;
    char line[128];
    while (std::fgets(line, sizeof(line), file) != nullptr) {
        char serial[32] = {};
        unsigned code = 0;
        unsigned value = 0;
        unsigned now = 0;
        const int read = std::sscanf(line, "%31s %x %u %u", serial, &code, &value, &now);
        if (read >= 3 && code <= 0xFF && value <= 0xFFFF && (read == 3 || now <= 0xFFFF)) {
            saved[serial][static_cast<uint8_t>(code)] = static_cast<uint16_t>(value);
            if (read == 4) {
                current[serial][static_cast<uint8_t>(code)] = static_cast<uint16_t>(now);
            }
        } else {
            DLog("Demo: ignoring a line of the saved settings: %s", line);
        }
    }
    std::fclose(file);
    for (const auto& display : mMachine->Machine().Displays()) {
        auto it = saved.find(display->Model().serialText);
        if (it != saved.end()) {
            display->RestoreSavedValues(it->second);
        }
        for (const auto& [code, value] : current[display->Model().serialText]) {
            display->SetValueFromMenu(code, value);
        }
    }
}

void CDemoMachine::Store() const {
    const std::wstring path = StateFile(mScenario);
    if (path.empty()) {
        return;
    }
    std::string text;
    for (const auto& display : mMachine->Machine().Displays()) {
        for (const auto& [code, value] : display->SavedValues()) {
            text += StringPrintf("%s %02X %u %u\n", display->Model().serialText.c_str(), code, value,
                                 display->Value(code));
        }
    }
    // Through the one writer: a link is written through, a device or folder left alone.
    std::string problem;
    if (!WriteTextFile(Utf8String(std::filesystem::path(path)), text, problem)) {
        DLog("Demo: the saved settings could not be stored: %s\n", problem.c_str());
    }
}
