#pragma once
// Initialising displays at once, as a way of running the search's own plan: each record's
// route plan is run on a thread of its own, on the channel the search would choose for each
// route (its HID interface by the search's pairing, its monitor through the graphics driver,
// the port or bridge that reads its serial number), and what came of it is kept with its log
// lines. The search then runs one record after another as always, and where it creates a
// display on a channel tried ahead it takes that display and writes those lines there, so
// that what is observable stays as one after another. Nothing is tried that the search's plan
// would not try first.

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DebugLog.h"
#include "DisplayInfo.h"
#include "RoutePlan.h"

class CDisplay;
class Connector;
class CWinDisplayConfigInterface;
class CWinI2CConnectorDP;

class CInitializeAhead {
public:
    explicit CInitializeAhead(CWinDisplayConfigInterface& search_I) : mSearch(search_I) {}

    // Runs every record's plan ahead, all at the same time; returns when all have ended.
    void Run();
    // Whether anything was tried ahead in this search.
    bool Tried() const { return !mAhead.empty(); }
    // Lets go of what the search did not take (graphics-driver connectors opened ahead close).
    void Forget();

    // For the search, in its own order:
    // the display tried ahead for the record on this connector (null: it did not answer);
    // none when it was not tried there.
    std::optional<std::shared_ptr<CDisplay>> TakeDisplay(const SDisplayInfo& info_I,
                                                         const Connector& connector_I);
    // The graphics-driver connector opened ahead for the record; false when there is none.
    bool TakeDisplayPort(const SDisplayInfo& info_I, std::shared_ptr<CWinI2CConnectorDP>& connector_O,
                         bool& opened_O);
    // Writes the lines of the port search made ahead; false when none was made.
    bool EmitPortSearch();
    // Writes the lines of the first read of the connector's serial number, made ahead.
    void EmitSerialLines(const Connector& connector_I);

private:
    using HeldLines = std::vector<DebugLog::CHeldLines::SLine>;
    struct SAhead {
        std::wstring deviceID;              // the record it was tried for
        std::shared_ptr<CDisplay> display;  // null: the initialisation failed
        HeldLines lines;
        bool used = false;
    };
    struct SAheadDisplayPort {
        std::shared_ptr<CWinI2CConnectorDP> connector;
        HMONITOR monitor = nullptr;
        bool opened = false;
        HeldLines lines;  // the connector's opening
    };

    void RunRecord(const SDisplayInfo& info_I, const std::shared_ptr<Connector>& hid_I);
    ERouteResult DisplayPort(const SDisplayInfo& info_I);
    ERouteResult Legacy(const SDisplayInfo& info_I);
    // Tries the display on the connector; true when it answered.
    bool Create(const SDisplayInfo& info_I, const std::shared_ptr<Connector>& connector_I);
    // The port and bridge search and each one's serial number, once, for every record.
    void SearchPorts();
    // A connector's serial number, holding the lines of its first read for the search.
    std::string Serial(Connector& connector_I, bool fromEdid_I);

    CWinDisplayConfigInterface& mSearch;
    std::mutex mMutex;
    std::mutex mPortsMutex;
    std::set<const Connector*> mClaimed;
    std::map<const Connector*, SAhead> mAhead;
    std::map<std::wstring, SAheadDisplayPort> mDisplayPort;  // by the record's device id
    bool mPortsSearched = false;
    HeldLines mPortSearchLines;
    std::map<const Connector*, HeldLines> mSerialLines;
    std::vector<std::shared_ptr<Connector>> mPorts;
    std::map<const Connector*, std::string> mPortSerials;
};
