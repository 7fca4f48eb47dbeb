// The real program over a simulated machine on the real clock (every write costs the pause the
// firmware needs), measured from inside its process:
// - start-up: from the call that runs the program to its main dialog being shown, on the
//   demo's machine of four displays, and the process's working set then;
// - a slider drag of 40 thumb positions 10 ms apart, as a mouse delivers them: how long after
//   the last position the display reaches it, with and without skipping stale positions.
//
// A timing harness for the Windows build, run under Wine with an X display:
//   build/windows/bench/vlr_bench_program.exe

#include <windows.h>
// windows.h first: commctrl.h and psapi.h need its types.
#include <commctrl.h>
#include <psapi.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "Application.h"
#include "CMainDialog.h"
#include "DialogIds.h"
#include "SimulatedMachine.h"
#include "VirtualMachine.h"
#include "codes.h"

namespace {

HWND WaitForMainDialog() {
    for (int i = 0; i < 3000; ++i) {
        for (HWND found = nullptr;
             (found = FindWindowExW(nullptr, found, L"#32770", L"Velor Display Settings"));) {
            if (IsWindowVisible(found) && GetDlgItem(found, IDC_DISPLAY_LIST) != nullptr) {
                return found;
            }
        }
        Sleep(10);
    }
    return nullptr;
}

double MeasureDrag(bool skipStale_I) {
    CMainDialog::SetSkipStaleDragPositions(skipStale_I);
    CSimulatedMachine machine(*VirtualMachine::Scenario("two-families"));
    auto display = machine.Machine().monitors[0].display;
    SStartupOptions options;
    options.languageName = "en";
    std::thread ui([options] { RunApplication(options); });
    HWND dialog = WaitForMainDialog();
    double lag = -1;
    if (dialog != nullptr) {
        HWND slider = GetDlgItem(dialog, IDC_BRIGHTNESS_SLIDER);
        int position = 0;
        for (int step = 0; step < 40; ++step) {
            position = 20 + step;
            PostMessageW(dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position),
                         reinterpret_cast<LPARAM>(slider));
            Sleep(10);
        }
        const auto last = std::chrono::steady_clock::now();
        while (display->Value(vcpC_Luminance) != position) {
            Sleep(1);
        }
        lag = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - last).count();
        SendMessageW(dialog, WM_NULL, 0, 0);
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    ui.join();
    return lag;
}

double WorkingSetMB() {
    PROCESS_MEMORY_COUNTERS memory{};
    memory.cb = sizeof(memory);
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
    return static_cast<double>(memory.WorkingSetSize) / (1024.0 * 1024.0);
}

void MeasureStart() {
    // What Wine itself takes in a process, for comparison.
    const double before = WorkingSetMB();
    CSimulatedMachine machine(*VirtualMachine::Scenario("one-per-route"));
    SStartupOptions options;
    options.languageName = "en";
    const auto start = std::chrono::steady_clock::now();
    std::thread ui([options] { RunApplication(options); });
    HWND dialog = WaitForMainDialog();
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    std::printf("start-up to the main dialog: %.0f ms (4 displays); working set %.1f MB (%.1f MB before)\n",
                ms, WorkingSetMB(), before);
    if (dialog != nullptr) {
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    ui.join();
}

}  // namespace

int main() {
    MeasureStart();
    const double without = MeasureDrag(false);
    const double with = MeasureDrag(true);
    std::printf("display reaches the last drag position %.0f ms after it, sending every position\n", without);
    std::printf("display reaches the last drag position %.0f ms after it, skipping stale positions\n", with);
    return without < 0 || with < 0 ? 1 : 0;
}
