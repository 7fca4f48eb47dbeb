#include <gtest/gtest.h>

#include "CEdidBuilder.h"
#include "EdidText.h"
#include "StringUtilities.h"
#include "VirtualMachine.h"

TEST(VirtualMachine, ScenariosAreConsistentMachines) {
    const auto list = VirtualMachine::ScenarioList();
    ASSERT_GE(list.size(), 7u);
    for (const auto& [name, description] : list) {
        SCOPED_TRACE(name);
        const auto machine = VirtualMachine::Scenario(name);
        ASSERT_TRUE(machine.has_value());
        EXPECT_EQ(machine->name, name);
        EXPECT_FALSE(description.empty());
        for (const SVirtualMonitor& monitor : machine->monitors) {
            ASSERT_TRUE(monitor.registryEdid.has_value());
            if (monitor.display) {
                // The registry keeps the EDID the display itself reports.
                EXPECT_EQ(*monitor.registryEdid, monitor.display->Edid());
                EXPECT_EQ(monitor.hardwareId,
                          StringPrintf("MONITOR\\VLR%04X", Edid::ProductCode(monitor.display->Edid())));
            }
        }
        for (const SVirtualHidInterface& hid : machine->hidInterfaces) {
            if (hid.display) {
                EXPECT_EQ(hid.vendorId, kVelorUsbVendorId);
                EXPECT_EQ(hid.productId, hid.display->Model().tabletProductId);
            }
        }
    }
    EXPECT_FALSE(VirtualMachine::Scenario("no-such-machine").has_value());

    // One display per route in the demo machine, each named once.
    const auto routes = *VirtualMachine::Scenario("one-per-route");
    EXPECT_EQ(routes.Displays().size(), 4u);
    EXPECT_TRUE(VirtualMachine::Scenario("no-display")->Displays().empty());
}
