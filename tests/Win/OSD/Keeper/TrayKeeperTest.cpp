// The resident keeper as it runs on a desk: its hidden window hears the simulated machine's
// broadcasts (a display switched off and on), its thread reads, writes what drifted and reads
// back over the real discovery and connectors, it leaves alone the display the settings
// dialog shows, and it follows the application in front. Needs an X display (Xvfb) under Wine.

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <fstream>

#include "AppRegistry.h"
#include "CTrayKeeper.h"
#include "DialogIds.h"
#include "KeeperProcess.h"
#include "KeptProfiles.h"
#include "ProgramDriver.h"
#include "VirtualBench.h"
#include "codes.h"

namespace {

constexpr char kCanvasSerial[] = "VC1060A40892";  // Velor Canvas 22 Pro, over the graphics driver
constexpr char kStudioSerial[] = "VC1070A40934";  // Velor Studio 24, over HID

std::shared_ptr<CVirtualDisplay> DisplayOf(const CSimulatedMachine& machine, uint16_t edidProductCode) {
    for (const auto& display : machine.Machine().Displays()) {
        if (display->Model().edidProductCode == edidProductCode) {
            return display;
        }
    }
    return nullptr;
}

bool Read(const CVirtualDisplay& display, uint8_t code) {
    return display.CountRequests(0x01, code) != 0;
}

// The keeper's files in a folder of their own.
struct SFiles {
    std::filesystem::path folder;
    explicit SFiles(const char* name) {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        folder = std::filesystem::path(temp) / name;
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder / "profiles");
    }
    ~SFiles() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    SKeeperFiles Keeper() const {
        return {(folder / "kept.json").string(), (folder / "rules.json").string(),
                (folder / "profiles").string()};
    }
    std::string Write(const std::string& name, const std::string& text) const {
        const std::string path = (folder / name).string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    void Keep(const char* model, const char* serial, const std::string& profile) const {
        CKeptProfiles kept(Keeper().kept);
        std::string problem;
        kept.Load(problem);
        kept.Keep(model, serial, profile);
        ASSERT_TRUE(kept.Store(problem)) << problem;
    }
};

// The keeper on its own thread, as "/tray" runs it.
struct STray {
    std::thread ui;
    std::atomic<bool> ended{false};
    HWND window = nullptr;

    explicit STray(const SKeeperFiles& files) {
        AppRegistry::WriteKeepSettings(true);
        SStartupOptions options;
        options.languageName = "en";
        // Every search reads its displays: a display that is starting counts its start-up on the
        // virtual clock, which only the protocol's pauses move on.
        options.noCache = true;
        ui = std::thread([files, options, this] {
            CTrayKeeper keeper(options, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), files);
            keeper.Run();
            ended = true;
        });
        WaitFor([&] { return (window = FindWindowW(CTrayKeeper::kWindowClass, nullptr)) != nullptr; });
    }
    ~STray() {
        PostMessageW(window, WM_COMMAND, CTrayKeeper::kExitCommand, 0);
        ui.join();
    }
    void Foreground(const wchar_t* executable) const {
        PostMessageW(window, CTrayKeeper::kForegroundMessage, GlobalAddAtomW(executable), 0);
    }
};

// A restore round: the settle time, a search and the reads and writes.
constexpr int kRoundMs = 20000;

}  // namespace

TEST(TrayKeeper, ADisplaySwitchedOffAndOnGetsItsKeptProfileBackReadThenOnlyWhatDriftedThenReadBack) {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedMachine machine(*VirtualMachine::Scenario("one-per-route"));
    auto canvas = DisplayOf(machine, 0x1060);
    ASSERT_TRUE(canvas);
    SFiles files("vlr-tray-cycle");
    // Kept as the command-line tool keeps it: by the model's name without the maker's.
    files.Keep("Canvas 22 Pro", kCanvasSerial,
               files.Write("canvas.json", R"({"settings": {"brightness": 40, "contrast": 45}})"));

    STray tray(files.Keeper());
    ASSERT_NE(tray.window, nullptr);
    EXPECT_FALSE(IsWindowVisible(tray.window));
    // Started at log-on: what the display keeps goes back.
    ASSERT_TRUE(WaitFor([&] { return canvas->Value(vcpC_Luminance) == 40; }, kRoundMs));
    EXPECT_TRUE(WaitFor([&] {
        return CTrayKeeper::LastNotification() ==
               L"Settings restored\nCanvas 22 Pro:\nBrightness, Contrast restored.";
    }));

    canvas->ClearTransactions();
    machine.Play({std::chrono::milliseconds(0), SDeskEvent::EKind::PowerCycle, canvas});
    ASSERT_TRUE(WaitFor(
        [&] { return canvas->Value(vcpC_Luminance) == 40 && canvas->Value(vcpC_Contrast) == 45; }, kRoundMs));
    EXPECT_EQ(CodesWritten(*canvas), (std::vector<uint8_t>{vcpC_Luminance, vcpC_Contrast}));
    // Each written value was read before and after.
    const std::vector<STransaction> log = canvas->Transactions();
    const auto write = std::find_if(log.begin(), log.end(), [](const STransaction& t) {
        return t.request.size() > 4 && t.request[3] == 0x03;
    });
    ASSERT_NE(write, log.end());
    const auto readsOf = [](auto from, auto to, uint8_t code) {
        return std::count_if(from, to, [code](const STransaction& t) {
            return t.request.size() > 4 && t.request[3] == 0x01 && t.request[4] == code;
        });
    };
    EXPECT_GT(readsOf(log.begin(), write, vcpC_Luminance), 0);
    EXPECT_GT(readsOf(write + 1, log.end(), vcpC_Luminance), 0);

    // The machine wakes with nothing lost: read, nothing written.
    canvas->ClearTransactions();
    machine.Play({std::chrono::milliseconds(0), SDeskEvent::EKind::Wake, nullptr});
    ASSERT_TRUE(WaitFor([&] { return Read(*canvas, vcpC_Contrast); }, kRoundMs));
    Sleep(500);
    EXPECT_TRUE(CodesWritten(*canvas).empty());
}

TEST(TrayKeeper, TheDisplayTheSettingsDialogShowsIsLeftAloneUntilTheDialogCloses) {
    auto program = std::make_unique<SProgram>("one-per-route");  // its dialog shows Studio 24 first
    ASSERT_TRUE(program->WaitForMainDialog());
    auto studio = DisplayOf(program->machine, 0x1070);
    ASSERT_TRUE(studio);
    SFiles files("vlr-tray-held");
    // Kept by a keeper of an earlier version, with the maker's name: still found.
    files.Keep("Velor Studio 24", kStudioSerial,
               files.Write("studio.json", R"({"settings": {"contrast": 31}})"));
    studio->ClearTransactions();

    STray tray(files.Keeper());
    Sleep(8000);  // the first round and a retry
    EXPECT_TRUE(CodesWritten(*studio).empty());
    EXPECT_EQ(studio->Value(vcpC_Contrast), 50);

    PostMessageW(program->dialog, WM_COMMAND, IDCANCEL, 0);
    ASSERT_TRUE(WaitFor([&] { return program->ended.load(); }));
    ASSERT_TRUE(WaitFor([&] { return studio->Value(vcpC_Contrast) == 31; }, 30000));
    EXPECT_EQ(CodesWritten(*studio), std::vector<uint8_t>{vcpC_Contrast});

    // The settings opened while the keeper runs (its menu's first item) show their dialog:
    // the keeper's window is no copy of the settings.
    program.reset();
    SProgram again("one-per-route");
    EXPECT_TRUE(again.WaitForMainDialog());
    EXPECT_EQ(again.exitCode.load(), -1);
}

TEST(TrayKeeper, TheApplicationInFrontGetsItsProfileOnceItStaysThereAndLeavingPutsTheKeptOneBack) {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedMachine machine(*VirtualMachine::Scenario("one-per-route"));
    auto canvas = DisplayOf(machine, 0x1060);
    SFiles files("vlr-tray-rules");
    files.Keep("Velor Canvas 22 Pro", kCanvasSerial,
               files.Write("kept-srgb.json", R"({"settings": {"colour-mode": 2, "colour-space": "srgb"}})"));
    files.Write("adobe.json", R"({"settings": {"colour-mode": "space", "colour-space": "adobe-rgb"}})");
    files.Write("rules.json", R"({"rules": [{"application": "Paint.exe", "profile": "adobe.json"}]})");
    const uint8_t space = 0xE3;

    // A window of this process in front: the keeper's poll of the foreground passes over it,
    // and the applications come from the posted reports alone.
    HWND own = CreateWindowExW(0, L"STATIC", L"test", WS_POPUP | WS_VISIBLE, 0, 0, 10, 10, nullptr, nullptr,
                               nullptr, nullptr);
    SetForegroundWindow(own);
    STray tray(files.Keeper());
    ASSERT_TRUE(WaitFor([&] { return canvas->Value(space) == 0; }, kRoundMs));  // the kept sRGB
    Sleep(1000);
    canvas->ClearTransactions();

    // Alt-tab passes over the paint program: nothing changes.
    tray.Foreground(L"PAINT.EXE");
    Sleep(500);
    tray.Foreground(L"explorer.exe");
    Sleep(3000);
    EXPECT_TRUE(CodesWritten(*canvas).empty());

    tray.Foreground(L"paint.exe");
    ASSERT_TRUE(WaitFor([&] { return canvas->Value(space) == 1; }));  // Adobe RGB
    tray.Foreground(L"explorer.exe");
    ASSERT_TRUE(WaitFor([&] { return canvas->Value(space) == 0; }));
    const std::vector<uint8_t> written = CodesWritten(*canvas);
    EXPECT_EQ(std::set<uint8_t>(written.begin(), written.end()), std::set<uint8_t>{space});
    DestroyWindow(own);
}

TEST(TrayKeeper, TheLogOnStartIsRegisteredAndRemoved) {
    ASSERT_TRUE(AppRegistry::SetKeeperStartsAtLogOn(true));
    EXPECT_TRUE(AppRegistry::StartsKeeperAtLogOn());
    wchar_t value[MAX_PATH + 20] = {};
    DWORD size = sizeof(value);
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Run",
                           L"Velor Display Settings Keeper", RRF_RT_REG_SZ, nullptr, value, &size),
              ERROR_SUCCESS);
    const std::wstring command = value;
    EXPECT_EQ(command.substr(command.size() - 7), L"\" /tray");
    EXPECT_EQ(command.front(), L'"');
    ASSERT_TRUE(AppRegistry::SetKeeperStartsAtLogOn(false));
    EXPECT_FALSE(AppRegistry::StartsKeeperAtLogOn());
    EXPECT_TRUE(AppRegistry::SetKeeperStartsAtLogOn(false));  // already gone: nothing to do
}

namespace {
std::vector<std::wstring> gStarted;
bool NoteStart(const std::wstring& commandLine) {
    gStarted.push_back(commandLine);
    return true;
}
}  // namespace

TEST(TrayKeeper, TheAdvancedPagesBoxRegistersTheLogOnStartStartsTheKeeperOnceAndRemovesIt) {
    AppRegistry::SetKeeperStartsAtLogOn(false);
    gStarted.clear();
    KeeperProcess::SetStarter(&NoteStart);
    SProgram program("one-per-route", InLanguage("en"));
    ASSERT_TRUE(program.WaitForMainDialog());
    ClickOn(program.Item(IDC_ADVANCED_BUTTON));
    HWND page = WaitForWindowWith(IDC_FACTORY_RESET, {program.dialog});
    ASSERT_NE(page, nullptr);
    HWND box = GetDlgItem(page, IDC_KEEPER_AT_LOGON);
    ASSERT_TRUE(IsWindowVisible(box));
    EXPECT_EQ(TextOf(box), L"Start the settings &keeper at log-on");
    EXPECT_EQ(SendMessageW(box, BM_GETCHECK, 0, 0), BST_UNCHECKED);

    ClickOn(box);
    ASSERT_TRUE(WaitFor([&] { return AppRegistry::StartsKeeperAtLogOn(); }));
    EXPECT_EQ(SendMessageW(box, BM_GETCHECK, 0, 0), BST_CHECKED);
    ASSERT_EQ(gStarted.size(), 1u);
    EXPECT_EQ(gStarted[0].substr(gStarted[0].find(L"\" ")), L"\" /tray /language en");
    EXPECT_TRUE(WindowsAre({program.dialog, page}));

    ClickOn(box);
    ASSERT_TRUE(WaitFor([&] { return !AppRegistry::StartsKeeperAtLogOn(); }));
    EXPECT_EQ(gStarted.size(), 1u);
    KeeperProcess::SetStarter(nullptr);
}
