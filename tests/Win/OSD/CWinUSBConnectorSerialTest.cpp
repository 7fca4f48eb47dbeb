// The serial connector over a real COM port under Wine, wired to a virtual display served on
// a pseudo-terminal by vlr_virtual_display_host (see run-serial-tests.sh, which starts the
// hosts and links the COM ports).

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "DdcPackets.h"
#include "LogCapture.h"
#include "UiDisplayDelegate.h"
#include "Win32SerialPort.h"
#include "WinUSBConnector.h"

namespace {

// The COM port of a host started with the given role, from the environment.
std::string PortOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr ? value : "";
}

std::shared_ptr<CWinUSBConnector> OpenConnector(const std::string& port) {
    auto connector = std::make_shared<CWinUSBConnector>(std::make_unique<CWin32SerialPort>());
    EXPECT_TRUE(connector->Open(port)) << port;
    return connector;
}

#define REQUIRE_PORT(variable)                                                   \
    const std::string port = PortOf(variable);                                   \
    if (port.empty()) {                                                          \
        GTEST_SKIP() << variable " is not set: run through run-serial-tests.sh"; \
    }

}  // namespace

TEST(WinUSBConnectorSerial, GetSetCapabilitiesEdidAndFirmwareOverTheLine) {
    REQUIRE_PORT("VLR_COM_DISPLAY");
    auto connector = OpenConnector(port);
    ASSERT_TRUE(connector->IsOpen());
    CLogCapture log;

    ByteBuffer reply = connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0);
    EXPECT_EQ(reply, BuildSimulatedReply(0x01, 0x12, 50, 100));
    EXPECT_EQ(connector->SendRequest(BuildSetVCPRequest(0x12, 61), 0.07, 38, 0),
              (ByteBuffer{0x6E, 0x80, 0xBE}));
    EXPECT_EQ(connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
              BuildSimulatedReply(0x01, 0x12, 61, 100));

    const std::string caps = connector->CapabilitiesString();
    EXPECT_EQ(caps.rfind("(prot(monitor)type(LCD)model(Studio-24)", 0), 0u) << caps;
    EXPECT_EQ(caps.back(), ')');
    const ByteBuffer edid = connector->ReadEDID(-1);
    EXPECT_EQ(edid.size(), 256u);
    EXPECT_EQ(connector->MonitorName(), "Studio 24");
    EXPECT_EQ(connector->FWVersion(), (SFirmwareVersion{6, 0, 1, 5, 0}));
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(WinUSBConnectorSerial, ADisplayThatAnswersNothingGivesTheOneByteReply) {
    REQUIRE_PORT("VLR_COM_SILENT");
    auto connector = OpenConnector(port);
    CLogCapture log;
    EXPECT_EQ(connector->SendRequest(BuildGetVCPRequest(0x10), 0.07, 38, 0), ByteBuffer{0x50});
    EXPECT_TRUE(log.Contains("ReadFile empty ("));
    UiDisplayDelegate display(connector, 0x1070);
    EXPECT_FALSE(display.Initialize());
}

TEST(WinUSBConnectorSerial, AnAnswerLongerThan256BytesArrivesWhole) {
    REQUIRE_PORT("VLR_COM_LONG_EDID");
    auto connector = OpenConnector(port);
    const ByteBuffer edid = connector->ReadEDID(-1);
    EXPECT_EQ(edid.size(), 384u);
    EXPECT_EQ(connector->MonitorName(), "DELL UP2715K");
}

TEST(WinUSBConnectorSerial, ADisplayObjectRunsOverTheLine) {
    REQUIRE_PORT("VLR_COM_DISPLAY");
    auto connector = OpenConnector(port);
    CLogCapture log;
    UiDisplayDelegate display(connector, 0x1070);
    ASSERT_TRUE(display.Initialize());
    EXPECT_EQ(display.MonitorName(), "Studio 24");
    EXPECT_EQ(display.FirmwareVersionText(), "6.0.1");
    EXPECT_TRUE(display.SetVCPValueVerify(vcpC_Contrast, 44, 1));
    EXPECT_EQ(display.GetVCPValue(vcpC_Contrast, true).value, 44);
    EXPECT_TRUE(display.SetBrightness(33));
    EXPECT_TRUE(display.Save());
    EXPECT_TRUE(display.SetContrast(12));
    EXPECT_TRUE(display.Revert());
    EXPECT_EQ(display.GetVCPValue(vcpC_Contrast, true).value, 44);
    EXPECT_TRUE(log.Asserts().empty());
}

TEST(WinUSBConnectorSerial, APortLeftWithXonXoffAndNullStrippingStillCarriesEveryByte) {
    REQUIRE_PORT("VLR_COM_DISPLAY");
    {
        // The program that used the port before left it set for a text terminal.
        HANDLE previous = CreateFileA(("\\\\.\\" + port).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(previous, INVALID_HANDLE_VALUE);
        DCB settings{};
        settings.DCBlength = sizeof(settings);
        ASSERT_TRUE(GetCommState(previous, &settings));
        settings.fOutX = settings.fInX = TRUE;
        settings.fNull = TRUE;
        settings.fAbortOnError = TRUE;
        settings.fDtrControl = DTR_CONTROL_DISABLE;
        ASSERT_TRUE(SetCommState(previous, &settings));
        CloseHandle(previous);
    }
    {
        CWin32SerialPort raw;
        ASSERT_TRUE(raw.Open(port));
        const DCB& settings = raw.Settings();
        EXPECT_EQ(settings.BaudRate, 9600u);
        EXPECT_TRUE(settings.fBinary);
        EXPECT_FALSE(settings.fParity || settings.fOutX || settings.fInX || settings.fNull ||
                     settings.fErrorChar || settings.fAbortOnError || settings.fOutxCtsFlow ||
                     settings.fOutxDsrFlow || settings.fDsrSensitivity);
        EXPECT_EQ(settings.fDtrControl, static_cast<DWORD>(DTR_CONTROL_ENABLE));
        EXPECT_EQ(settings.fRtsControl, static_cast<DWORD>(RTS_CONTROL_ENABLE));
    }
    // XON and XOFF are values like any other in a reply.
    auto connector = OpenConnector(port);
    for (uint16_t value : {0x11, 0x13}) {
        EXPECT_EQ(connector->SendRequest(BuildSetVCPRequest(0x12, value), 0.07, 38, 0),
                  (ByteBuffer{0x6E, 0x80, 0xBE}));
        EXPECT_EQ(connector->SendRequest(BuildGetVCPRequest(0x12), 0.07, 38, 0),
                  BuildSimulatedReply(0x01, 0x12, value, 100));
    }
}
