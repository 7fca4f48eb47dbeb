#include <gtest/gtest.h>

#include <string>

#include "CI2CConnectorFTDI.h"
#include "CI2CConnectorTI.h"
#include "LogCapture.h"

namespace {

std::wstring Folder(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L"\\/"));
}

std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return Folder(path);
}

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
    const std::wstring beside = ProgramFolder() + L"\\FTD2XX.dll";
    ASSERT_TRUE(CopyFileW(planted.c_str(), beside.c_str(), FALSE));
    UnloadFtd2xxApi();
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 42);
    UnloadFtd2xxApi();
    EXPECT_TRUE(DeleteFileW(beside.c_str()));
    EXPECT_EQ(CI2CConnectorFTDI::DeviceCount(), 0);
    UnloadFtd2xxApi();
}
