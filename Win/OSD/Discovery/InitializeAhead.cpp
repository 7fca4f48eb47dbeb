#include "InitializeAhead.h"

#include <algorithm>

#include "CWinDisplayConfigInterface.h"
#include "CWinI2CConnectorDP.h"
#include "ParallelWork.h"
#include "WinStrings.h"

void CInitializeAhead::Run() {
    // The channel the search would choose for each record by HID, claimed so that no two
    // records try one interface. The first read of an interface's serial number is the search's
    // own: its lines are written where the search reads it.
    std::vector<std::shared_ptr<Connector>> hidOf(mSearch.mDisplayInfos.size());
    for (size_t record = 0; record < mSearch.mDisplayInfos.size(); ++record) {
        const SDisplayInfo& info = mSearch.mDisplayInfos[record];
        const SRoutePlan plan = mSearch.PlanFor(info);
        if (std::find(plan.order.begin(), plan.order.end(), ERoute::Hid) == plan.order.end()) {
            continue;
        }
        const std::optional<size_t> chosen = Discovery::PairBySerialThenByModel(
            mSearch.mConnectorList.size(),
            [&](size_t i_I) {
                return mSearch.mConnectorList[i_I]->GetType() == eConnectorHID &&
                       mClaimed.count(mSearch.mConnectorList[i_I].get()) == 0;
            },
            [&](size_t i_I) { return Serial(*mSearch.mConnectorList[i_I], false); },
            Narrow(info.serialNumber), plan.hidByModel);
        if (chosen) {
            hidOf[record] = mSearch.mConnectorList[*chosen];
            mClaimed.insert(hidOf[record].get());
        }
    }
    RunForEach(mSearch.mDisplayInfos.size(), true,
               [&](size_t record_I) { RunRecord(mSearch.mDisplayInfos[record_I], hidOf[record_I]); });
}

void CInitializeAhead::RunRecord(const SDisplayInfo& info_I, const std::shared_ptr<Connector>& hid_I) {
    // What is written here outside the steps kept below is not the search's.
    DebugLog::CHeldLines stray;
    // The search's own plan, run the way the search runs it: each route the search would try,
    // on the channel it would choose.
    Discovery::RunRoutePlan(mSearch.PlanFor(info_I), [&](ERoute route_I) {
        switch (route_I) {
            case ERoute::Hid:
                return hid_I && Create(info_I, hid_I) ? ERouteResult::Served : ERouteResult::NotServed;
            case ERoute::GraphicsDriver: return DisplayPort(info_I);
            case ERoute::Legacy: return Legacy(info_I);
        }
        return ERouteResult::NotServed;
    });
}

ERouteResult CInitializeAhead::DisplayPort(const SDisplayInfo& info_I) {
    if (info_I.monitor == nullptr) {
        // Nothing more is tried ahead for this record: the search looks for its monitor once
        // more, and whether the driver then serves it is not known here.
        return ERouteResult::EndSearch;
    }
    SDisplayInfo record = info_I;
    record.owner = mSearch.mRecordOwner;
    SAheadDisplayPort ahead;
    ahead.connector = std::make_shared<CWinI2CConnectorDP>();
    ahead.monitor = info_I.monitor;
    {
        DebugLog::CHeldLines held;
        ahead.opened = ahead.connector->Open(record);
        ahead.lines = held.Take();
    }
    const std::shared_ptr<CWinI2CConnectorDP> connector = ahead.connector;
    const bool opened = ahead.opened;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mDisplayPort[info_I.deviceID] = std::move(ahead);
    }
    if (opened && Create(info_I, connector)) {
        return ERouteResult::Served;
    }
    if (mSearch.mStopOnDisplayPortError && !connector->LastCapabilitiesError().empty()) {
        return ERouteResult::EndSearch;  // the search ends at this record
    }
    return ERouteResult::NotServed;
}

ERouteResult CInitializeAhead::Legacy(const SDisplayInfo& info_I) {
    SearchPorts();
    std::shared_ptr<Connector> port;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const std::shared_ptr<Connector>& candidate : mPorts) {
            if (mClaimed.count(candidate.get()) == 0 &&
                Discovery::SameSerialNumber(mPortSerials[candidate.get()], Narrow(info_I.serialNumber))) {
                port = candidate;
                mClaimed.insert(candidate.get());
                break;
            }
        }
    }
    return port && Create(info_I, port) ? ERouteResult::Served : ERouteResult::NotServed;
}

bool CInitializeAhead::Create(const SDisplayInfo& info_I, const std::shared_ptr<Connector>& connector_I) {
    SAhead ahead;
    ahead.deviceID = info_I.deviceID;
    {
        DebugLog::CHeldLines held;
        ahead.display = mSearch.CreateDisplayNow(info_I, connector_I);
        ahead.lines = held.Take();
    }
    const bool answered = ahead.display != nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mAhead[connector_I.get()] = std::move(ahead);
    }
    if (answered) {
        mSearch.NoteReady();
    }
    return answered;
}

void CInitializeAhead::SearchPorts() {
    std::lock_guard<std::mutex> lock(mPortsMutex);
    if (mPortsSearched) {
        return;
    }
    {
        DebugLog::CHeldLines held;
        const size_t before = mSearch.mConnectorList.size();
        mSearch.FindSerialPorts();
        mPortSearchLines = held.Take();
        mPorts.assign(mSearch.mConnectorList.begin() + static_cast<std::ptrdiff_t>(before),
                      mSearch.mConnectorList.end());
    }
    // Each one's serial number from its display's EDID, all at the same time. A port with no
    // display of ours is asked too, where the search might have found its display first.
    std::vector<std::string> serials(mPorts.size());
    RunForEach(mPorts.size(), true, [&](size_t i_I) { serials[i_I] = Serial(*mPorts[i_I], true); });
    std::lock_guard<std::mutex> aheadLock(mMutex);
    for (size_t i = 0; i < mPorts.size(); ++i) {
        mPortSerials[mPorts[i].get()] = serials[i];
    }
    mPortsSearched = true;
}

std::string CInitializeAhead::Serial(Connector& connector_I, bool fromEdid_I) {
    DebugLog::CHeldLines held;
    if (fromEdid_I) {
        // SerialNumber writes its lines at every call: only the read itself is held for the search.
        connector_I.LoadEDID();
    }
    HeldLines firstRead = held.Take();
    std::string serial = connector_I.SerialNumber(-1);
    if (!fromEdid_I) {
        firstRead = held.Take();  // the interface writes its lines at the first read only
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (!firstRead.empty()) {
        mSerialLines[&connector_I] = std::move(firstRead);
    }
    return serial;
}

void CInitializeAhead::Forget() {
    // A display port opened ahead for a record the search served otherwise is let go.
    for (auto& entry : mDisplayPort) {
        if (entry.second.connector) {
            entry.second.connector->Close();
        }
    }
    mDisplayPort.clear();
    mAhead.clear();
    mClaimed.clear();
    mSerialLines.clear();
    mPortSearchLines.clear();
    mPorts.clear();
    mPortSerials.clear();
    mPortsSearched = false;
}

std::optional<std::shared_ptr<CDisplay>> CInitializeAhead::TakeDisplay(const SDisplayInfo& info_I,
                                                                       const Connector& connector_I) {
    const auto ahead = mAhead.find(&connector_I);
    if (ahead == mAhead.end() || ahead->second.used || ahead->second.deviceID != info_I.deviceID) {
        return std::nullopt;
    }
    ahead->second.used = true;
    DebugLog::CHeldLines::Emit(ahead->second.lines);
    return ahead->second.display;
}

bool CInitializeAhead::TakeDisplayPort(const SDisplayInfo& info_I,
                                       std::shared_ptr<CWinI2CConnectorDP>& connector_O, bool& opened_O) {
    const auto ahead = mDisplayPort.find(info_I.deviceID);
    if (ahead == mDisplayPort.end() || ahead->second.monitor != info_I.monitor) {
        return false;
    }
    connector_O = ahead->second.connector;
    opened_O = ahead->second.opened;
    DebugLog::CHeldLines::Emit(ahead->second.lines);
    mDisplayPort.erase(ahead);
    return true;
}

bool CInitializeAhead::EmitPortSearch() {
    if (!mPortsSearched) {
        return false;
    }
    DebugLog::CHeldLines::Emit(mPortSearchLines);
    return true;
}

void CInitializeAhead::EmitSerialLines(const Connector& connector_I) {
    const auto held = mSerialLines.find(&connector_I);
    if (held != mSerialLines.end()) {
        DebugLog::CHeldLines::Emit(held->second);
        mSerialLines.erase(held);
    }
}
