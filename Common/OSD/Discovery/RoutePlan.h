#pragma once
// The one route order of display discovery. A plan is made for each monitor record from the
// connection mode, the matching option and the record's family row; every search (the
// Windows search, its "at once" run, the Linux search) runs it the same way: the routes in
// order, each tried only while no earlier one served the display, until one serves it or one
// ends the search. The systems supply only what each route does (their providers).

#include <cstdint>
#include <functional>
#include <vector>

enum class ERoute {
    Hid,             // the maker's HID control interface, paired by serial number then by model
    GraphicsDriver,  // the monitor's own DDC/CI channel (the graphics driver, or i2c-dev)
    Legacy,          // serial ports and USB-to-I2C bridges, paired by the serial number they read
};

struct SRoutePlan {
    std::vector<ERoute> order;
    // With matching by model: any free HID interface may serve the record when none reports
    // its serial number.
    bool hidByModel = false;
    // With matching by model: the connector type the record is reached over when its serial
    // number pairs with nothing (Discovery::kNoConnectorType when none is expected).
    unsigned expectedLegacyType = 0;
};

// What a route did for the record.
enum class ERouteResult {
    Served,     // a display answers over it: the plan ends
    NotServed,  // the next route is tried
    EndSearch,  // the search ends here (the graphics driver's error with stop-on-error set)
};

namespace Discovery {

// searchInitializes_I: whether the search initialises each display it pairs (the Windows
// search does; the Linux search leaves that to the program). A search that does not cannot
// tell that the graphics driver's channel leads nowhere, so the models reached over a serial
// line try their line first there.
SRoutePlan PlanRoutes(uint32_t connectionMode_I, bool matchByModel_I, uint16_t productCode_I,
                      bool searchInitializes_I);

// Runs the plan with the system's route actions; the result of the last route tried
// (NotServed when none served the record).
ERouteResult RunRoutePlan(const SRoutePlan& plan_I, const std::function<ERouteResult(ERoute)>& tryRoute_I);

}  // namespace Discovery
