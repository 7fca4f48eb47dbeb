#pragma once
// Display discovery: finds every attached pen display of the maker, decides over which
// transport each is reached, and creates one initialised display object per display that
// answers. Monitors come from the monitor setup class (hardware ids carrying "\VLR"); control
// channels from HID interfaces, the graphics driver, serial ports and the USB-to-I2C bridges.
// Each monitor record is paired with a channel by the HID serial number, through the graphics
// driver, or by the serial number a serial or bridge connector reads from the display's EDID.
//
// Every system call goes through DiscoverySystemApi(); every pause through the process clock.
// Init may run again for a fresh search once the previous displays have been released.

#include <windows.h>
// windows.h first: setupapi.h needs its types.
#include <setupapi.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "CDisplay.h"
#include "CapabilitiesCache.h"
#include "Connector.h"
#include "DebugLog.h"
#include "DiscoveryRules.h"
#include "DisplayInfo.h"
#include "FoundDisplay.h"
#include "InitializeAhead.h"
#include "RoutePlan.h"
#include "SearchOptions.h"

class CWinI2CConnectorDP;

class CWinDisplayConfigInterface {
public:
    // The program's one discovery object.
    static const std::shared_ptr<CWinDisplayConfigInterface>& Instance();
    // A separate one (tests, benchmarks).
    static std::shared_ptr<CWinDisplayConfigInterface> Create();

    // Every option of the search at once, as a program's options ask for it.
    void Configure(const SSearchOptions& options_I);

    void SetConnectionMode(uint32_t mode_I) { mConnectionMode = mode_I; }
    uint32_t ConnectionMode() const { return mConnectionMode; }
    void SetMatchByModel(bool on_I) { mMatchByModel = on_I; }
    void SetStopOnDisplayPortError(bool on_I) { mStopOnDisplayPortError = on_I; }
    // The interface language: model names are looked up in it, and displays whose menu
    // language the program sets get it.
    void SetInterfaceLanguage(LANGID languageId_I);

    // Displays on different channels are initialised at the same time (the default is one
    // after another, the reference the tests of initialisation check). What is observable stays
    // as one after another: each display's log lines together and in order, the same records
    // in the same order, the same displays on the same channels.
    void SetInitializeAtOnce(bool on_I) { mInitializeAtOnce = on_I; }
    // Where displays find and keep their capabilities strings; null: every display is read.
    void SetCapabilitiesCache(std::shared_ptr<CCapabilitiesCache> cache_I) {
        mCapabilitiesCache = std::move(cache_I);
    }
    // Told, from the search's threads, how many of the monitors found have a display ready.
    void SetProgressCallback(std::function<void(size_t ready, size_t found)> callback_I) {
        mProgress = std::move(callback_I);
    }

    // The whole search. True when at least one display was found and no error text was left.
    bool Init();

    const std::vector<SDisplayInfo>& DisplayInfos() const { return mDisplayInfos; }
    // The displays found, as every program keeps them (discovery has initialised each).
    std::vector<SFoundDisplay> Found() const;
    std::vector<std::shared_ptr<CDisplay>> Displays() const;
    const std::vector<std::shared_ptr<Connector>>& Connectors() const { return mConnectorList; }
    // Empty after a normal search; otherwise what the interface shows.
    const std::string& ErrorText() const { return mErrorText; }
    // Lets go of every display and connector.
    void Clear();

    // The steps of the search, each usable on its own.
    void FindDisplays();
    void GetMonitorIDs(HDEVINFO devices_I);
    // False when there is no device at the index.
    bool GetNextMonitorID(HDEVINFO devices_I, DWORD index_I);
    void GetSerialNumAndName(HDEVINFO devices_I, SP_DEVINFO_DATA& device_I, const std::string& hardwareId_I,
                             SDisplayInfo& info_O);
    void FindVcpHIDDevices();
    bool OpenDevice(const std::string& devicePath_I);
    void FindSerialPorts();
    // The record's display over the connector, initialised (or null): the one initialised
    // ahead for this connector where there is one, else initialised now.
    std::shared_ptr<CDisplay> CreateDisplay(const SDisplayInfo& info_I,
                                            std::shared_ptr<Connector> connector_I);
    void SetLanguage(CDisplay& display_I);
    // Matches one record with its monitor handle (MonitorEnumProc's matching role). The index
    // must name a record.
    bool MatchMonitorHandle(int index_I);

    static BOOL CALLBACK MonitorEnumProc(HMONITOR monitor_I, HDC context_I, LPRECT rect_I, LPARAM self_I);

    SDisplayInfo& CurrentDisplayInfo() {
        return mCurrentDisplayInfo != nullptr ? *mCurrentDisplayInfo : mEmptyInfo;
    }

private:
    CWinDisplayConfigInterface() = default;

    std::shared_ptr<CDisplay> CreateDisplayNow(const SDisplayInfo& info_I,
                                               std::shared_ptr<Connector> connector_I);

    // Initialising at once runs each record's plan ahead (CInitializeAhead); the search takes
    // what came of it where it would have tried the same.
    friend class CInitializeAhead;
    CInitializeAhead mAhead{*this};
    void ForgetAhead();
    // One more display is ready: the progress callback is told.
    void NoteReady();
    std::mutex mReadyMutex;
    size_t mReady = 0;

    // The record's route plan, the same for the search and for initialising ahead.
    SRoutePlan PlanFor(const SDisplayInfo& info_I) const;
    // The routes for one record.
    void ServeByHid(SDisplayInfo& info_I, const SRoutePlan& plan_I);
    // False when the connector's error text ends the search.
    bool ServeByDisplayPort(SDisplayInfo& info_I, bool& failed_O, std::string& error_O);
    void ServeByLegacyPairing(SDisplayInfo& info_I, const SRoutePlan& plan_I, bool& portsSearched_IO);
    // Closes and drops the connectors no display took.
    void ReleaseUnusedConnectors();
    bool IsTaken(const std::shared_ptr<Connector>& connector_I) const;

    std::wstring GroupString(const char* group_I, uint16_t productId_I) const;
    bool IsMakersOwnComputer() const;

    uint32_t mConnectionMode = eConnectionAll;
    bool mMatchByModel = true;
    bool mStopOnDisplayPortError = false;
    LANGID mLanguageId = 0;
    int mInterfaceLanguage = 0;
    std::vector<SDisplayInfo> mDisplayInfos;
    std::vector<std::shared_ptr<Connector>> mConnectorList;
    bool mEnumerating = false;
    SDisplayInfo* mCurrentDisplayInfo = nullptr;
    SDisplayInfo mEmptyInfo;
    // Marks the records handed to graphics-driver connectors. The connectors keep their own
    // copy of the record, so they need not keep discovery alive (that would be a cycle through
    // the displays discovery holds).
    std::shared_ptr<void> mRecordOwner = std::make_shared<int>(0);
    std::string mErrorText;
    bool mInitializeAtOnce = false;
    std::shared_ptr<CCapabilitiesCache> mCapabilitiesCache;
    std::function<void(size_t, size_t)> mProgress;
};
