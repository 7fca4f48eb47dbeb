// Renders the pictures the README shows: the real program over simulated machines, each
// window captured from the screen into a BMP file (scripts/screenshots turns them into PNG).
// Usage: vlr_screenshots.exe OUTPUT_FOLDER

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <cstdio>
#include <functional>
#include <string>
#include <thread>

#include "Application.h"
#include "DialogIds.h"
#include "MessageWindows.h"
#include "SimulatedMachine.h"
#include "VirtualMachine.h"

namespace {

constexpr wchar_t kTitle[] = L"Velor Display Settings";

HWND WaitForWindow(const std::function<HWND()>& find_I) {
    for (int i = 0; i < 1000; ++i) {
        if (HWND window = find_I()) {
            Sleep(300);  // let it paint
            return window;
        }
        Sleep(10);
    }
    return nullptr;
}

HWND FindVisible(const wchar_t* caption_I, int childId_I) {
    for (HWND found = nullptr; (found = FindWindowExW(nullptr, found, L"#32770", caption_I)) != nullptr;) {
        if (IsWindowVisible(found) && GetDlgItem(found, childId_I) != nullptr) {
            return found;
        }
    }
    return nullptr;
}

bool Capture(HWND window_I, const std::string& path_I) {
    RECT rect{};
    GetWindowRect(window_I, &rect);
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
    GdiFlush();
    const DWORD stride = ((static_cast<DWORD>(width) * 3 + 3) / 4) * 4;
    const DWORD imageSize = stride * static_cast<DWORD>(height);
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;
    header.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    header.bfSize = header.bfOffBits + imageSize;
    FILE* file = std::fopen(path_I.c_str(), "wb");
    const bool ok = file != nullptr;
    if (ok) {
        std::fwrite(&header, sizeof(header), 1, file);
        std::fwrite(&info.bmiHeader, sizeof(info.bmiHeader), 1, file);
        std::fwrite(bits, imageSize, 1, file);
        std::fclose(file);
    }
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", path_I.c_str());
    return ok;
}

int WINAPI KeepChanges(HWND, LPCWSTR, LPCWSTR, UINT, WORD, DWORD) {
    return IDYES;
}

enum class EShot { MainDialog, PowerWarning, AdvancedDialog, CustomColor };

void Command(HWND dialog_I, int id_I, int code_I, bool wait_I) {
    const WPARAM command = MAKEWPARAM(id_I, code_I);
    const LPARAM control = reinterpret_cast<LPARAM>(GetDlgItem(dialog_I, id_I));
    if (wait_I) {
        SendMessageW(dialog_I, WM_COMMAND, command, control);
    } else {
        PostMessageW(dialog_I, WM_COMMAND, command, control);
    }
}

void MainDialog(const std::string& folder_I, const char* language_I, const std::string& name_I,
                EShot shot_I) {
    CSimulatedMachine machine(*VirtualMachine::Scenario("two-families"));
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Velor");
    SStartupOptions options;
    options.languageName = language_I;
    std::thread ui([options] { RunApplication(options); });
    HWND dialog = WaitForWindow([] { return FindVisible(kTitle, IDC_DISPLAY_LIST); });
    const std::string path = folder_I + "\\" + name_I + ".bmp";
    if (dialog != nullptr) {
        switch (shot_I) {
            case EShot::MainDialog: Capture(dialog, path); break;
            case EShot::PowerWarning: {
                HWND edit = GetDlgItem(dialog, IDC_BRIGHTNESS_EDIT);
                SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"90"));
                Command(dialog, IDC_BRIGHTNESS_EDIT, EN_KILLFOCUS, true);
                Command(dialog, IDC_SAVE_BUTTON, BN_CLICKED, false);
                HWND warning =
                    WaitForWindow([] { return FindVisible(L"Additional Power Required", IDC_POWER_YES); });
                if (warning != nullptr) {
                    Capture(warning, path);
                    PostMessageW(warning, WM_COMMAND, IDC_POWER_NO, 0);
                }
                break;
            }
            case EShot::AdvancedDialog: {
                Command(dialog, IDC_ADVANCED_BUTTON, BN_CLICKED, true);
                HWND page = WaitForWindow([] { return FindVisible(kTitle, IDC_FACTORY_RESET); });
                if (page != nullptr) {
                    Capture(page, path);
                }
                break;
            }
            case EShot::CustomColor: {
                HWND mode = GetDlgItem(dialog, IDC_COLOR_SETTING_LIST);
                const LRESULT custom = SendMessageW(mode, CB_FINDSTRINGEXACT, WPARAM(-1),
                                                    reinterpret_cast<LPARAM>(L"Custom Color"));
                SendMessageW(mode, CB_SETCURSEL, custom, 0);
                Command(dialog, IDC_COLOR_SETTING_LIST, CBN_SELCHANGE, true);
                Command(dialog, IDC_CUSTOM_COLOR_BUTTON, BN_CLICKED, false);
                HWND colors = WaitForWindow([] { return FindVisible(L"Custom Color", IDC_COLOR_SWATCH); });
                if (colors != nullptr) {
                    Capture(colors, path);
                    PostMessageW(colors, WM_COMMAND, IDCANCEL, 0);
                }
                break;
            }
        }
        Sleep(200);
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    ui.join();
}

void NoDeviceWindow(const std::string& folder_I) {
    CSimulatedMachine machine(*VirtualMachine::Scenario("no-display"));
    SStartupOptions options;
    options.languageName = "en";
    std::thread ui([options] { RunApplication(options); });
    HWND window = WaitForWindow([] { return FindVisible(kTitle, IDC_NO_DEVICE_HEADING); });
    if (window != nullptr) {
        Capture(window, folder_I + "\\no-device.bmp");
        PostMessageW(window, WM_COMMAND, IDC_WINDOW_OK, 0);
    }
    ui.join();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::printf("usage: vlr_screenshots.exe OUTPUT_FOLDER\n");
        return 1;
    }
    const std::string folder = argv[1];
    MessageWindows::SetMessageBoxTimeoutFunction(&KeepChanges);
    // The main dialog in every language (the README shows English, German and Japanese; the
    // rest are rendered to be looked at).
    for (const char* language :
         {"en", "de", "ja", "es", "fr", "it", "ko", "nl", "pl", "pt", "ru", "tr", "zh_CN", "zh_TW"}) {
        MainDialog(folder, language, std::string("main-dialog-") + language, EShot::MainDialog);
    }
    MainDialog(folder, "ja", "advanced-dialog-ja", EShot::AdvancedDialog);
    MainDialog(folder, "en", "power-warning", EShot::PowerWarning);
    MainDialog(folder, "en", "advanced-dialog", EShot::AdvancedDialog);
    MainDialog(folder, "en", "custom-color", EShot::CustomColor);
    NoDeviceWindow(folder);
    return 0;
}
