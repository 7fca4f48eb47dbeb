#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "CI2CConnectorFTDI.h"
#include "CI2CConnectorTI.h"
#include "LogCapture.h"
#include "SystemLibrary.h"

namespace {

// Where the build put the planted FTD2XX.dll (next to nothing the program trusts).
std::wstring PlantedFolder() {
    wchar_t path[MAX_PATH] = {};
    MultiByteToWideChar(CP_UTF8, 0, VLR_PLANTED_DLL_DIR, -1, path, MAX_PATH);
    return path;
}

}  // namespace

TEST(BridgeLibraries, WithoutTheDriversThereAreNoDevicesAndNoCrash) {
    UnloadFtd2xxApi();
    CLogCapture log;
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 0);
    EXPECT_TRUE(log.Contains("Ftd2xxApi: FTD2XX.dll is not installed; no FTDI devices\n"));
    CI2CConnectorFTDI ftdi;
    EXPECT_FALSE(ftdi.Open(0));
    EXPECT_FALSE(ftdi.IsOpen());
    EXPECT_EQ(ftdi.GetType(), 1u);

    EXPECT_EQ(CI2CConnectorTI::DeviceCount(), 0);
    EXPECT_TRUE(log.Contains("CI2CConnectorTI: TUSB3x10_I2C_API.dll is not installed; no TI devices\n"));
    CI2CConnectorTI ti;
    EXPECT_FALSE(ti.Open(0));
    EXPECT_EQ(ti.GetType(), 2u);
    EXPECT_TRUE(ti.ReadEDID(-1).empty());
}

TEST(BridgeLibraries, ADriverPlantedInTheWorkingDirectoryIsNotLoaded) {
    const std::wstring planted = PlantedFolder() + L"\\FTD2XX.dll";
    ASSERT_NE(GetFileAttributesW(planted.c_str()), INVALID_FILE_ATTRIBUTES);
    wchar_t previous[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, previous);

    ASSERT_TRUE(SetCurrentDirectoryW(PlantedFolder().c_str()));
    UnloadFtd2xxApi();
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 0);
    EXPECT_EQ(GetModuleHandleW(L"FTD2XX.dll"), nullptr);
    SetCurrentDirectoryW(previous);

    // The same library beside the program is the driver's place and is used.
    const std::wstring beside = ProgramDirectory() + L"\\FTD2XX.dll";
    ASSERT_TRUE(CopyFileW(planted.c_str(), beside.c_str(), FALSE));
    UnloadFtd2xxApi();
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 42);

    // But the system directory comes first, so a copy beside a downloaded program cannot stand in
    // for the installed driver.
    const std::wstring system = SystemDirectory() + L"\\FTD2XX.dll";
    ASSERT_TRUE(CopyFileW((PlantedFolder() + L"\\system\\FTD2XX.dll").c_str(), system.c_str(), FALSE));
    UnloadFtd2xxApi();
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 7);
    UnloadFtd2xxApi();
    EXPECT_TRUE(DeleteFileW(system.c_str()));

    // A library that lacks functions the connector calls is not used at all.
    ASSERT_TRUE(CopyFileW((PlantedFolder() + L"\\partial\\FTD2XX.dll").c_str(), beside.c_str(), FALSE));
    CLogCapture log;
    EXPECT_EQ(Ftd2xxApi(), nullptr);
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 0);
    CI2CConnectorFTDI ftdi;
    EXPECT_FALSE(ftdi.Open(0));
    EXPECT_TRUE(log.Contains("Ftd2xxApi: FTD2XX.dll has no FT_Open\n"));
    EXPECT_TRUE(log.Contains("Ftd2xxApi: FTD2XX.dll lacks functions this program calls; no FTDI devices\n"));
    UnloadFtd2xxApi();
    EXPECT_TRUE(DeleteFileW(beside.c_str()));
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 0);
    UnloadFtd2xxApi();
}

TEST(BridgeLibraries, TheTiLibraryIsLookedForButNeverLoaded) {
    const std::wstring beside = ProgramDirectory() + L"\\TUSB3x10_I2C_API.dll";
    ASSERT_TRUE(CopyFileW((PlantedFolder() + L"\\TUSB3x10_I2C_API.dll").c_str(), beside.c_str(), FALSE));
    SetEnvironmentVariableW(L"VLR_FAKE_DRIVER_RAN", nullptr);
    CLogCapture log;
    EXPECT_EQ(CI2CConnectorTI::DeviceCount(), 0);
    EXPECT_TRUE(log.Contains("CI2CConnectorTI: TUSB3x10_I2C_API.dll is installed, but its interface"));
    EXPECT_EQ(GetEnvironmentVariableW(L"VLR_FAKE_DRIVER_RAN", nullptr, 0), 0u);  // none of its code ran
    EXPECT_TRUE(DeleteFileW(beside.c_str()));
}

namespace {

std::vector<std::pair<std::wstring, DWORD>> gLoads;

// Windows 7 without the update that brought the search flags: every flag of theirs is refused.
HMODULE WINAPI OldWindowsLoader(LPCWSTR name_I, HANDLE, DWORD flags_I) {
    gLoads.emplace_back(name_I, flags_I);
    if ((flags_I & 0xFF00) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

}  // namespace

TEST(BridgeLibraries, WithoutTheSearchFlagsLibrariesLoadByFullPath) {
    gLoads.clear();
    SetLibraryLoader(&OldWindowsLoader);
    EXPECT_EQ(LoadTrustedLibrary(L"FTD2XX.dll", ELibraryLocation::SystemThenApplicationDir), nullptr);
    EXPECT_EQ(LoadTrustedLibrary(L"hid.dll", ELibraryLocation::SystemOnly), nullptr);
    SetLibraryLoader(nullptr);
    const std::vector<std::pair<std::wstring, DWORD>> expected = {
        {L"FTD2XX.dll", 0x800},
        {SystemDirectory() + L"\\FTD2XX.dll", LOAD_WITH_ALTERED_SEARCH_PATH},
        {ProgramDirectory() + L"\\FTD2XX.dll", LOAD_WITH_ALTERED_SEARCH_PATH},
        {L"hid.dll", 0x800},
        {SystemDirectory() + L"\\hid.dll", LOAD_WITH_ALTERED_SEARCH_PATH},
    };
    EXPECT_EQ(gLoads, expected);
}
