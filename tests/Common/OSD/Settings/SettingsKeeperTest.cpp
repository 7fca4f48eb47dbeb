// The keeper over virtual displays on a virtual clock: when it reads and writes after desk
// events, what it leaves alone (held displays, displays that kept their settings), how it
// backs off from a display that does not answer, and the profiles per application.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "CVirtualDisplayConnector.h"
#include "SettingsKeeper.h"
#include "TestFolder.h"
#include "VirtualBench.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

using namespace std::chrono_literals;

// A desk of virtual displays: each search makes new display objects over the same displays,
// as a fresh search does over the same monitors.
class CFakeDesk : public IKeeperDesk {
public:
    struct SDesked {
        std::string model;
        std::string serial;
        std::shared_ptr<CVirtualDisplay> display;
        uint16_t productCode;
    };
    std::vector<SDesked> desk;
    std::set<std::string> held;
    std::vector<std::vector<SKeeperResult>> notified;
    int searches = 0;

    void Add(const std::string& preset, const std::string& serial) {
        const SVirtualDisplayModel& model = *FindVirtualDisplayPreset(preset);
        desk.push_back({model.key, serial, std::make_shared<CVirtualDisplay>(model), model.edidProductCode});
    }
    std::vector<SFoundDisplay> Search() override {
        ++searches;
        std::vector<SFoundDisplay> found;
        for (const SDesked& entry : desk) {
            auto connector = std::make_shared<CVirtualDisplayConnector>(entry.display);
            connector->Open(0);
            found.push_back({entry.model,
                             entry.serial,
                             "HID",
                             std::make_shared<UiDisplayDelegate>(connector, entry.productCode),
                             false,
                             {}});
        }
        return found;
    }
    std::shared_ptr<void> TryHold(const std::string& serial) override {
        return held.count(serial) != 0 ? nullptr : std::make_shared<int>(0);
    }
    void Notify(const std::vector<SKeeperResult>& results) override { notified.push_back(results); }
};

struct SKeeperBench {
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    CTestFolder testFolder;
    const std::filesystem::path& folder = testFolder.Path();
    CFakeDesk desk;
    std::unique_ptr<CSettingsKeeper> keeper;

    explicit SKeeperBench(const char* name) : testFolder(name) {
        keeper = std::make_unique<CSettingsKeeper>(desk, (folder / "kept.json").string(),
                                                   (folder / "rules.json").string());
    }
    ~SKeeperBench() {
        EXPECT_EQ(clock.RewindsRefused(), 0u) << "the virtual clock was asked to run backwards";
    }

    std::string Write(const std::string& name, const std::string& text) {
        const std::string path = (folder / name).string();
        std::ofstream(path) << text;
        return path;
    }
    void Keep(const std::string& model, const std::string& serial, const std::string& profile) {
        CKeptProfiles kept((folder / "kept.json").string());
        std::string problem;
        kept.Load(problem);
        kept.Keep(model, serial, profile);
        ASSERT_TRUE(kept.Store(problem)) << problem;
    }
    // Runs the keeper for this long as its thread would: Poll when due.
    void RunFor(std::chrono::microseconds span) {
        const auto end = clock.Now() + span;
        while (clock.Now() < end) {
            const std::optional<std::chrono::microseconds> next = keeper->Poll();
            if (clock.Now() >= end) {
                break;  // the poll's own pauses reached the end
            }
            const auto step = next ? std::max(*next, std::chrono::microseconds(1000)) : end - clock.Now();
            clock.Advance(std::min(step, end - clock.Now()));
        }
        keeper->Poll();
    }
    CVirtualDisplay& Display(size_t index) { return *desk.desk.at(index).display; }
};

}  // namespace

TEST(SettingsKeeper, APowerCycledDisplayGetsItsProfileBackAfterItSettledAndOnlyWhatDrifted) {
    SKeeperBench bench("vlr-keeper-cycle");
    bench.desk.Add("canvas-22-pro", "S22");
    bench.desk.Add("studio-24", "S24");  // keeps no profile: never touched
    bench.Keep(
        "canvas-22-pro", "S22",
        bench.Write("p.json", R"({"settings": {"brightness": 64, "contrast": 45, "colour-mode": 1}})"));
    bench.Display(0).PowerCycle();
    bench.Display(0).ClearTransactions();

    bench.keeper->DesktopChanged();
    bench.RunFor(2900ms);
    EXPECT_TRUE(bench.Display(0).Transactions().empty());  // still settling
    bench.RunFor(200ms);
    EXPECT_EQ(CodesWritten(bench.Display(0)), (std::vector<uint8_t>{0x10, 0x12}));
    EXPECT_EQ(bench.Display(0).Value(0x10), 64);
    EXPECT_EQ(bench.Display(0).Value(0x12), 45);
    // Read, then written, then read back.
    const std::vector<STransaction> log = bench.Display(0).Transactions();
    const auto firstWrite = std::find_if(log.begin(), log.end(), [](const STransaction& t) {
        return t.request.size() > 4 && t.request[3] == 0x03;
    });
    ASSERT_NE(firstWrite, log.end());
    EXPECT_TRUE(std::any_of(log.begin(), firstWrite, [](const STransaction& t) {
        return t.request.size() > 4 && t.request[3] == 0x01 && t.request[4] == 0x10;
    }));
    EXPECT_TRUE(std::any_of(firstWrite + 1, log.end(), [](const STransaction& t) {
        return t.request.size() > 4 && t.request[3] == 0x01 && t.request[4] == 0x10;
    }));
    EXPECT_TRUE(CodesWritten(bench.Display(1)).empty());
    ASSERT_EQ(bench.desk.notified.size(), 1u);
    ASSERT_EQ(bench.desk.notified[0].size(), 1u);
    EXPECT_EQ(bench.desk.notified[0][0].kind, SKeeperResult::EKind::Restored);
    EXPECT_EQ(bench.desk.notified[0][0].settings, (std::vector<std::string>{"brightness", "contrast"}));

    // The machine wakes and nothing was lost: read, nothing written, nothing said.
    bench.Display(0).ClearTransactions();
    bench.keeper->DesktopChanged();
    bench.RunFor(60s);
    EXPECT_FALSE(bench.Display(0).Transactions().empty());
    EXPECT_TRUE(CodesWritten(bench.Display(0)).empty());
    EXPECT_EQ(bench.desk.notified.size(), 1u);
    EXPECT_FALSE(bench.keeper->Poll().has_value());  // nothing waiting: no polling on its own
}

TEST(SettingsKeeper, AHeldDisplayIsLeftAloneUntilItIsFreeAndADisplayThatDoesNotAnswerIsAskedLessAndLess) {
    SKeeperBench bench("vlr-keeper-held");
    bench.desk.Add("canvas-22-pro", "S22");
    bench.Keep("canvas-22-pro", "S22", bench.Write("p.json", R"({"settings": {"contrast": 45}})"));
    bench.desk.held.insert("S22");
    bench.keeper->DesktopChanged();
    bench.RunFor(4s);
    EXPECT_TRUE(bench.Display(0).Transactions().empty());
    bench.desk.held.clear();  // the dialog closed
    bench.RunFor(3s);
    EXPECT_EQ(bench.Display(0).Value(0x12), 45);

    // Switched off for good: tried at 3, 5, 9, 17 and 33 s, then one notification, then quiet.
    bench.Display(0).SetValueFromMenu(0x12, 50);
    bench.Display(0).Faults().FailNext(EFault::NoReply, 100000);
    const int searchesBefore = bench.desk.searches;
    bench.keeper->DesktopChanged();
    bench.RunFor(120s);
    EXPECT_EQ(bench.desk.searches - searchesBefore, 5);
    ASSERT_EQ(bench.desk.notified.size(), 2u);
    EXPECT_EQ(bench.desk.notified[1][0].kind, SKeeperResult::EKind::NotAnswering);
    EXPECT_FALSE(bench.keeper->Poll().has_value());

    // It comes back while being retried: restored on the next try.
    bench.Display(0).Faults().Clear();
    bench.Display(0).AnswerNothingFor(6s);
    bench.keeper->DesktopChanged();
    bench.RunFor(30s);
    EXPECT_EQ(bench.Display(0).Value(0x12), 45);
    EXPECT_EQ(bench.desk.notified.back()[0].kind, SKeeperResult::EKind::Restored);
}

TEST(SettingsKeeper, AProfilePerApplicationFollowsTheForegroundOnceItIsStableAndGoesBack) {
    SKeeperBench bench("vlr-keeper-rules");
    bench.desk.Add("canvas-22-pro", "S22");  // keeps sRGB
    bench.desk.Add("studio-24", "S24");      // keeps nothing: gets its own values back
    bench.Keep("canvas-22-pro", "S22",
               bench.Write("kept.json.profile", R"({"settings": {"colour-mode": 2, "colour-space": 0}})"));
    bench.Write("adobe.json", R"({"settings": {"colour-mode": "space", "colour-space": "adobe-rgb"}})");
    bench.Write("rules.json", R"({"rules": [{"application": "Paint.exe", "profile": "adobe.json"}]})");
    const int32_t studioSpace = bench.Display(1).Value(0xE3);

    // Alt-tabbing past the paint program changes nothing.
    bench.keeper->ForegroundChanged("C:\\Apps\\PAINT.EXE");
    bench.RunFor(1s);
    bench.keeper->ForegroundChanged("C:\\Windows\\explorer.exe");
    bench.RunFor(5s);
    EXPECT_TRUE(CodesWritten(bench.Display(0)).empty());

    bench.keeper->ForegroundChanged("C:\\Apps\\paint.exe");
    bench.RunFor(1400ms);
    EXPECT_TRUE(CodesWritten(bench.Display(0)).empty());
    bench.RunFor(200ms);
    EXPECT_EQ(bench.Display(0).Value(0xE3), 1);  // Adobe RGB on both
    EXPECT_EQ(bench.Display(1).Value(0xE3), 1);

    bench.Display(0).ClearTransactions();
    bench.keeper->ForegroundChanged("C:\\Windows\\explorer.exe");
    bench.RunFor(2s);
    EXPECT_EQ(bench.Display(0).Value(0xE3), 0);            // its kept sRGB
    EXPECT_EQ(bench.Display(1).Value(0xE3), studioSpace);  // what it had
    // Only the colour space was touched on the way back.
    const std::vector<uint8_t> written = CodesWritten(bench.Display(0));
    EXPECT_EQ(std::set<uint8_t>(written.begin(), written.end()), std::set<uint8_t>{0xE3});
    EXPECT_TRUE(bench.keeper->RuleInEffect().empty());
}

TEST(SettingsKeeper, KeepingWhatADisplayHasNowMakesItComeBackAfterAPowerCycle) {
    SKeeperBench bench("vlr-keeper-current");
    bench.desk.Add("canvas-22-pro", "S22");
    bench.Display(0).SetValueFromMenu(0x10, 35);  // calibrated, not saved on the display
    const std::vector<SKeeperResult> kept = bench.keeper->KeepCurrent((bench.folder / "profiles").string());
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept[0].kind, SKeeperResult::EKind::Kept);
    EXPECT_TRUE(std::filesystem::exists(bench.folder / "profiles" / "canvas-22-pro S22.json"));
    EXPECT_TRUE(CodesWritten(bench.Display(0)).empty());  // keeping only reads

    bench.Display(0).PowerCycle();
    EXPECT_EQ(bench.Display(0).Value(0x10), 70);
    bench.keeper->DesktopChanged();
    bench.RunFor(5s);
    EXPECT_EQ(bench.Display(0).Value(0x10), 35);
}

TEST(SettingsKeeper, ADisplayThatAnswersButDoesNotTakeAValueIsNeverCalledRestored) {
    SKeeperBench bench("vlr-keeper-refused");
    bench.desk.Add("canvas-22-pro", "S22");
    bench.Keep("canvas-22-pro", "S22", bench.Write("p.json", R"({"settings": {"contrast": 45}})"));
    bench.Display(0).SetValueFromMenu(0x12, 50);
    // Every contrast write is lost; everything else answers.
    bench.Display(0).Faults().FailNext(EFault::NoReply, 100000, 0x03, 0x12);
    bench.keeper->DesktopChanged();
    bench.RunFor(120s);
    EXPECT_EQ(bench.Display(0).Value(0x12), 50);
    ASSERT_EQ(bench.desk.notified.size(), 1u);  // said once, when the keeper gave up
    ASSERT_EQ(bench.desk.notified[0].size(), 1u);
    EXPECT_EQ(bench.desk.notified[0][0].kind, SKeeperResult::EKind::Failed);
    EXPECT_EQ(bench.desk.notified[0][0].settings, std::vector<std::string>{"contrast"});

    // The writes get through again after a few lost ones: restored on a later try, and said.
    bench.Display(0).Faults().Clear();
    bench.Display(0).Faults().FailNext(EFault::NoReply, 6, 0x03, 0x12);
    bench.keeper->DesktopChanged();
    bench.RunFor(120s);
    EXPECT_EQ(bench.Display(0).Value(0x12), 45);
    ASSERT_EQ(bench.desk.notified.size(), 2u);
    EXPECT_EQ(bench.desk.notified[1][0].kind, SKeeperResult::EKind::Restored);
}

TEST(SettingsKeeper, AProfileKeptUnderTheModelsNameWithOrWithoutTheMakersIsOneEntryAndComesBack) {
    EXPECT_EQ(DisplayModelName("Velor Canvas 22 Pro"), "Canvas 22 Pro");
    EXPECT_EQ(DisplayModelName("Canvas 22 Pro"), "Canvas 22 Pro");
    EXPECT_EQ(DisplayModelName("Velor "), "Velor ");  // nothing left to name: as it is

    SKeeperBench bench("vlr-keeper-names");
    bench.desk.Add("canvas-22-pro", "S22");
    bench.desk.desk[0].model = "Canvas 22 Pro";  // as every search names it now
    // Kept by a keeper of an earlier version, then again by the tool: one entry, the newer.
    bench.Keep("Velor Canvas 22 Pro", "S22", bench.Write("old.json", R"({"settings": {"brightness": 20}})"));
    bench.Keep("Canvas 22 Pro", "S22", bench.Write("new.json", R"({"settings": {"brightness": 33}})"));
    CKeptProfiles kept((bench.folder / "kept.json").string());
    std::string problem;
    ASSERT_TRUE(kept.Load(problem)) << problem;
    ASSERT_EQ(kept.All().size(), 1u);
    EXPECT_EQ(kept.Of("Velor Canvas 22 Pro", "S22").value_or(SKeptProfile{}).profile,
              (bench.folder / "new.json").string());

    bench.Display(0).PowerCycle();
    bench.keeper->DesktopChanged();
    bench.RunFor(5s);
    EXPECT_EQ(bench.Display(0).Value(0x10), 33);
}

TEST(SettingsKeeper, ADisplayThatStoppedAnsweringIsInitialisedAfreshBeforeTheMenuUsesItAgain) {
    SKeeperBench bench("vlr-keeper-silent");
    bench.desk.Add("canvas-22-pro", "S22");
    const std::string profile = bench.Write("p.json", R"({"settings": {"contrast": 45}})");
    ASSERT_EQ(bench.keeper->ApplyNow(profile).at(0).kind, SKeeperResult::EKind::Restored);
    const size_t introductions = bench.Display(0).CountRequests(ddcCC_CapabilitiesRequest);
    ASSERT_GT(introductions, 0u);

    // Switched off meanwhile: nothing answers, and the tray menu's profile fails.
    bench.Display(0).SetValueFromMenu(0x12, 50);
    bench.Display(0).Faults().FailNext(EFault::NoReply, 100000);
    EXPECT_EQ(bench.keeper->ApplyNow(profile).at(0).kind, SKeeperResult::EKind::Failed);

    // Back on: the display is asked who it is again, not trusted from before it went silent.
    bench.Display(0).Faults().Clear();
    EXPECT_EQ(bench.keeper->ApplyNow(profile).at(0).kind, SKeeperResult::EKind::Restored);
    EXPECT_GT(bench.Display(0).CountRequests(ddcCC_CapabilitiesRequest), introductions);
    EXPECT_EQ(bench.Display(0).Value(0x12), 45);
}
