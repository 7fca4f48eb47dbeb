#include "RoutePlan.h"

#include "DiscoveryRules.h"

namespace Discovery {

SRoutePlan PlanRoutes(uint32_t connectionMode_I, bool matchByModel_I, uint16_t productCode_I,
                      bool searchInitializes_I) {
    SRoutePlan plan;
    plan.hidByModel = matchByModel_I && HidServesByModel(productCode_I);
    plan.expectedLegacyType = matchByModel_I ? ExpectedLegacyConnectorType(productCode_I) : kNoConnectorType;
    switch (connectionMode_I) {
        case eConnectionHidOnly: plan.order = {ERoute::Hid}; break;
        case eConnectionDisplayPortOnly: plan.order = {ERoute::GraphicsDriver}; break;
        case eConnectionLegacyOnly: plan.order = {ERoute::Legacy}; break;
        case eConnectionAll:
            if (!searchInitializes_I && ExpectedLegacyConnectorType(productCode_I) == eConnectorSerial) {
                plan.order = {ERoute::Hid, ERoute::Legacy, ERoute::GraphicsDriver};
            } else {
                plan.order = {ERoute::Hid, ERoute::GraphicsDriver, ERoute::Legacy};
            }
            break;
        default: break;  // no mode of the program: nothing is tried
    }
    return plan;
}

ERouteResult RunRoutePlan(const SRoutePlan& plan_I, const std::function<ERouteResult(ERoute)>& tryRoute_I) {
    for (ERoute route : plan_I.order) {
        const ERouteResult result = tryRoute_I(route);
        if (result != ERouteResult::NotServed) {
            return result;
        }
    }
    return ERouteResult::NotServed;
}

}  // namespace Discovery
