#pragma once
// A display object over a virtual display, on a virtual clock: the test bed of the protocol
// tests. Header-only so that only test programs that link the virtual display include it.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CDisplay.h"
#include "CVirtualDisplay.h"
#include "CVirtualDisplayConnector.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

template <typename DisplayT = CDisplay>
struct TVirtualBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    std::shared_ptr<CVirtualDisplay> display;
    std::shared_ptr<CVirtualDisplayConnector> connector;
    std::unique_ptr<DisplayT> cdisplay;

    explicit TVirtualBench(const SVirtualDisplayModel& model_I) {
        display = std::make_shared<CVirtualDisplay>(model_I);
        connector = std::make_shared<CVirtualDisplayConnector>(display);
        connector->Open(0);
        cdisplay = std::make_unique<DisplayT>(connector, model_I.edidProductCode);
    }
    explicit TVirtualBench(const std::string& presetKey_I)
        : TVirtualBench(*FindVirtualDisplayPreset(presetKey_I)) {}
    ~TVirtualBench() {
        EXPECT_EQ(clock.RewindsRefused(), 0u) << "the virtual clock was asked to run backwards";
    }

    // Initialises and forgets the traffic and pauses that took.
    bool Initialize() {
        bool ok = cdisplay->Initialize();
        display->ClearTransactions();
        clock.ClearPauses();
        return ok;
    }
    // Initialises and reads every readable option once, as the dialogs do.
    bool InitializeAndReadAll() {
        bool ok = cdisplay->Initialize();
        for (const auto& entry : cdisplay->Options()) {
            cdisplay->GetVCPValue(entry.first, false);
        }
        display->ClearTransactions();
        clock.ClearPauses();
        return ok;
    }
};

using SVirtualBench = TVirtualBench<CDisplay>;

// The VCP codes a virtual display was asked to set (Set VCP Feature requests), in order.
inline std::vector<uint8_t> CodesWritten(const CVirtualDisplay& display_I) {
    std::vector<uint8_t> codes;
    for (const STransaction& t : display_I.Transactions()) {
        if (t.request.size() > 4 && t.request[3] == 0x03) {
            codes.push_back(t.request[4]);
        }
    }
    return codes;
}
