// The command-line tool on Windows: the dialog's own discovery over the simulated machine under
// Wine, one display on each route.

#include <gtest/gtest.h>

#include <sstream>

#include "CommandLineTool.h"
#include "DisplayLockScope.h"
#include "SimulatedMachine.h"
#include "VirtualClock.h"
#include "WinDisplays.h"

TEST(WinDisplays, ListGetAndSetThroughTheWindowsDiscovery) {
    ScopeDisplayLocksToThisProcess();
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CSimulatedMachine machine(*VirtualMachine::Scenario("one-per-route"));
    CWinDisplays displays;
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(RunCommandLineTool({"list"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(),
              "0  Canvas 22 Pro  serial VC1060A40892  via graphics driver  firmware 3.1.2\n"
              "1  Studio 24  serial VC1070A40934  via HID  firmware 6.0.1\n"
              "2  Canvas 12  serial VC1040A40772  via serial  firmware 1.0.8\n"
              "3  Canvas 13 HD  serial VC1043A40811  via FTDI  firmware 2.0.5\n");  // as on Linux

    auto canvas = machine.Machine().monitors[1].display;  // the graphics driver's second monitor
    ASSERT_EQ(RunCommandLineTool({"set", "0", "contrast=37", "--save"}, displays, out, err), CliExit::kDone)
        << err.str();
    EXPECT_EQ(canvas->Value(0x12), 37);
    EXPECT_EQ(canvas->SavedValue(0x12), 37);
    out.str("");
    ASSERT_EQ(RunCommandLineTool({"get", "0", "contrast", "brightness"}, displays, out, err), CliExit::kDone);
    EXPECT_EQ(out.str(), "contrast = 37\nbrightness = 70\n");
    EXPECT_EQ(RunCommandLineTool({"set", "3", "brightness=101"}, displays, out, err), CliExit::kBadUsage);
}
