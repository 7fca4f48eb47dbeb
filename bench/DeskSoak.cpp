// Soak on a moving desk: the keeper keeps a profile (brightness, contrast) on each of the demo's
// four displays while the command-line tool, on a thread of its own, applies other profiles
// (sharpness, colour temperature) to them; between operations the desk moves: a display is
// unplugged or plugged back in, the computer sleeps and wakes, a display is switched off and on
// (and answers nothing while it starts); a share of every display's answers are lost or garbled.
// Both hold the displays' locks as the real programs do. It checks:
//   - nothing hangs (a watchdog on real time);
//   - a failure is never reported as success: a profile the tool reports applied is on the
//     display unless the desk moved meanwhile, and a display the keeper reports restored has
//     its kept profile;
//   - every kept profile is back within its bound after the display answers again, or the
//     keeper said it gave up;
//   - saved values change only when a display's firmware forgets them as it is switched off
//     (neither the keeper nor the tool saves);
//   - nothing writes a value it had read as already there;
//   - memory in use does not grow.
// Prints the totals and every violation; exits 1 on any violation.
//
//   vlr_desk_soak [--steps N] [--rate R] [--seed S]

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

#include "CVirtualDisplay.h"
#include "CVirtualDisplayConnector.h"
#include "CliDisplays.h"
#include "CommandLineTool.h"
#include "DdcPackets.h"
#include "DisplayLock.h"
#include "EdidText.h"
#include "KeptProfiles.h"
#include "SettingsKeeper.h"
#include "SoakWatchdog.h"
#include "VirtualClock.h"
#include "VirtualDisplayPresets.h"

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr auto kRealTimeLimit = 20s;
// How long a display switched on again answers nothing.
constexpr auto kStartingUp = 2500ms;
// The keeper's bound: it settles, then tries again after 2, 4, 8 and 16 s; each round's own
// transactions (a few seconds at most, with retries) come on top.
constexpr auto kRestoreBound = CSettingsKeeper::kSettle + 2s + 4s + 8s + 16s + 20s;
constexpr uint8_t kSharpness = 0x87;
constexpr uint8_t kContrast = 0x12;

// The display's lock, waited for in real time: the other thread holds it for as long as its
// work takes on this machine, which the virtual clock knows nothing of.
std::unique_ptr<CDisplayLock> HoldInRealTime(const std::string& serial_I) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    std::unique_ptr<CDisplayLock> held;
    while (!(held = HoldDisplayLock(serial_I, 0ms)) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
    }
    return held;
}

struct SDeskDisplay {
    std::shared_ptr<CVirtualDisplay> display;
    std::string model;
    std::string serial;
    uint16_t productCode = 0;
    uint8_t brightnessCode = 0x10;
    uint16_t keptBrightness = 0;
    uint16_t keptContrast = 0;
    bool plugged = true;
    std::vector<std::weak_ptr<CVirtualDisplayConnector>> connectors;
    // The next keeper round must bring the kept profile back by then.
    std::optional<std::chrono::microseconds> restoreDue;
    std::map<uint8_t, uint16_t> saved;     // what the firmware keeps
    std::map<uint8_t, uint16_t> lastRead;  // the last value read of each code
};

struct STotals {
    unsigned long steps = 0;
    unsigned long deskEvents = 0;
    std::atomic<unsigned long> toolRuns{0};
    std::atomic<unsigned long> toolDone{0};
    std::atomic<unsigned long> toolFailed{0};    // the display did not answer or was in use
    std::atomic<unsigned long> toolNotFound{0};  // unplugged
    unsigned long restored = 0;
    unsigned long gaveUpAndSaid = 0;
    unsigned long faults = 0;
    std::atomic<unsigned long> violations{0};
};

std::mutex gPrintMutex;

template <typename... Args>
void Violation(STotals& totals_IO, const char* format_I, Args... args_I) {
    ++totals_IO.violations;
    std::lock_guard<std::mutex> lock(gPrintMutex);
    std::printf("VIOLATION step %lu: ", totals_IO.steps);
    std::printf(format_I, args_I...);
    std::printf("\n");
    std::fflush(stdout);
}

// The desk as the keeper and the tool find it: every search makes new connectors over the
// displays that are plugged in; a change on the desk kills the handles it should.
class CSoakDesk : public IKeeperDesk {
public:
    explicit CSoakDesk(std::vector<SDeskDisplay>& displays_I) : mDisplays(displays_I) {}

    std::vector<SFoundDisplay> Search() override {
        const std::unique_ptr<CDisplayLock> every = HoldInRealTime(kEveryDisplay);
        std::vector<SFoundDisplay> found;
        for (auto& [display, connector] : Connect()) {
            found.push_back({display->model,
                             display->serial,
                             "graphics driver",
                             std::make_shared<UiDisplayDelegate>(connector, display->productCode),
                             false,
                             {}});
        }
        return found;
    }
    std::shared_ptr<void> TryHold(const std::string& serial_I) override {
        return std::shared_ptr<CDisplayLock>(HoldDisplayLock(serial_I, 0ms));
    }
    void Notify(const std::vector<SKeeperResult>& results_I) override {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const SKeeperResult& result : results_I) {
            notified.push_back(result);
        }
    }

    // The plugged displays with a new connector each.
    std::vector<std::pair<SDeskDisplay*, std::shared_ptr<CVirtualDisplayConnector>>> Connect() {
        std::lock_guard<std::mutex> lock(mMutex);
        std::vector<std::pair<SDeskDisplay*, std::shared_ptr<CVirtualDisplayConnector>>> found;
        for (SDeskDisplay& display : mDisplays) {
            if (!display.plugged) {
                continue;
            }
            auto connector = std::make_shared<CVirtualDisplayConnector>(display.display);
            connector->Open(0);
            std::erase_if(display.connectors, [](const auto& weak_I) { return weak_I.expired(); });
            display.connectors.push_back(connector);
            found.emplace_back(&display, connector);
        }
        return found;
    }
    // The display's handles die (unplugged, switched off, the machine slept).
    void KillHandles(SDeskDisplay& display_I) {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& weak : display_I.connectors) {
            if (auto connector = weak.lock()) {
                connector->Unplug();
            }
        }
        display_I.connectors.clear();
    }
    void SetPlugged(SDeskDisplay& display_I, bool plugged_I) {
        std::lock_guard<std::mutex> lock(mMutex);
        display_I.plugged = plugged_I;
    }
    bool IsPlugged(const SDeskDisplay& display_I) {
        std::lock_guard<std::mutex> lock(mMutex);
        return display_I.plugged;
    }
    std::vector<SKeeperResult> TakeNotified() {
        std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(notified, {});
    }

private:
    std::vector<SDeskDisplay>& mDisplays;
    std::mutex mMutex;
    std::vector<SKeeperResult> notified;
};

// What the tool finds when it runs: a search of its own over the same desk.
class CSoakToolSource : public IDisplaySource {
public:
    explicit CSoakToolSource(CSoakDesk& desk_I) : mDesk(desk_I) {}
    std::vector<SFoundDisplay>& Displays() override {
        if (!mSearched) {
            mSearched = true;
            for (auto& [display, connector] : mDesk.Connect()) {
                const ByteBuffer& edid = display->display->Edid();
                mDisplays.push_back({display->model,
                                     display->serial,
                                     "graphics driver",
                                     std::make_shared<UiDisplayDelegate>(connector, display->productCode),
                                     false,
                                     {Edid::ManufacturerId(edid), Edid::ProductCode(edid), display->serial,
                                      "graphics driver"}});
            }
        }
        return mDisplays;
    }

private:
    CSoakDesk& mDesk;
    bool mSearched = false;
    std::vector<SFoundDisplay> mDisplays;
};

class CDeskSoak {
public:
    CDeskSoak(CVirtualClock& clock_I, uint32_t seed_I, double rate_I, const fs::path& folder_I)
        : mClock(clock_I), mRandom(seed_I), mFolder(folder_I), mDesk(mDisplays) {
        const char* presets[] = {"canvas-22-pro", "studio-24", "canvas-12", "canvas-13-hd"};
        CKeptProfiles kept((mFolder / "kept.json").string());
        unsigned index = 0;
        for (const char* key : presets) {
            const SVirtualDisplayModel& model = *FindVirtualDisplayPreset(key);
            SDeskDisplay display;
            display.display = std::make_shared<CVirtualDisplay>(model);
            display.model = model.monitorName;
            display.serial = model.serialText;
            display.productCode = model.edidProductCode;
            display.brightnessCode = display.display->Supports(0x6B) ? 0x6B : 0x10;
            display.keptBrightness = static_cast<uint16_t>(30 + 10 * index);
            display.keptContrast = static_cast<uint16_t>(60 - 5 * index);
            display.saved = display.display->SavedValues();
            const fs::path profile = mFolder / (std::string(key) + ".json");
            std::ofstream(profile) << "{\"settings\": {\"brightness\": " << display.keptBrightness
                                   << ", \"contrast\": " << display.keptContrast << "}}\n";
            kept.Keep(display.model, display.serial, profile.string());
            display.display->Faults().SetRate(rate_I, seed_I + index);
            mDisplays.push_back(std::move(display));
            ++index;
        }
        std::string problem;
        if (!kept.Store(problem)) {
            std::printf("%s\n", problem.c_str());
            std::exit(2);
        }
        mKeeper = std::make_unique<CSettingsKeeper>(mDesk, (mFolder / "kept.json").string(),
                                                    (mFolder / "rules.json").string());
        // The keeper starts as at log-on: every display answers.
        mKeeper->DesktopChanged();
        for (SDeskDisplay& display : mDisplays) {
            display.restoreDue = mClock.Now() + kRestoreBound;
        }
    }

    void Run(unsigned long steps_I, std::atomic<unsigned long>& progress_IO, STotals& totals_IO) {
        std::atomic<bool> stop{false};
        std::thread tool([&] { RunTool(stop, progress_IO, totals_IO); });
        size_t memoryAtTenth = 0;
        for (unsigned long step = 0; step < steps_I; ++step) {
            ++totals_IO.steps;
            MoveTheDesk(totals_IO);
            // Time passes with the keeper doing what is due.
            const auto until = mClock.Now() + std::chrono::milliseconds(500 + mRandom() % 4500);
            while (mClock.Now() < until) {
                const std::optional<std::chrono::microseconds> next = mKeeper->Poll();
                CheckNotified(totals_IO);
                mClock.Advance(std::min<std::chrono::microseconds>(next.value_or(500ms), 500ms));
                CheckRestores(totals_IO);
            }
            CheckTransactions(totals_IO);
            ++progress_IO;
            if (step == steps_I / 10) {
                memoryAtTenth = AllocatedBytes();
            }
        }
        stop = true;
        tool.join();
        CheckTransactions(totals_IO);
        const size_t memoryAtEnd = AllocatedBytes();
        if (steps_I >= 100 && memoryAtEnd > memoryAtTenth + 512 * 1024) {
            Violation(totals_IO, "memory grew from %zu to %zu bytes", memoryAtTenth, memoryAtEnd);
        }
    }

private:
    // One change on the desk now and then; a display that answers again must get its kept
    // profile back.
    void MoveTheDesk(STotals& totals_IO) {
        const unsigned roll = mRandom() % 100;
        if (roll >= 30) {
            return;
        }
        ++totals_IO.deskEvents;
        ++mDeskEpoch;
        SDeskDisplay& display = mDisplays[mRandom() % mDisplays.size()];
        if (roll < 10) {
            // Unplugged, or plugged back in.
            mDesk.SetPlugged(display, !display.plugged);
            if (!display.plugged) {
                mDesk.KillHandles(display);
                display.restoreDue.reset();
            } else {
                Answering(display);
            }
        } else if (roll < 18) {
            // The computer sleeps a while and wakes; every handle is new afterwards.
            for (SDeskDisplay& each : mDisplays) {
                each.display->AnswerNothingFor(std::chrono::hours(1));
                mDesk.KillHandles(each);
            }
            mClock.Advance(std::chrono::minutes(1 + mRandom() % 30));
            for (SDeskDisplay& each : mDisplays) {
                each.display->AnswerNothingFor(0ms);
                if (each.plugged) {
                    Answering(each);
                }
            }
        } else if (display.plugged) {
            // Switched off and on: the firmware keeps what it keeps and starts a while.
            display.display->PowerCycle();
            display.display->AnswerNothingFor(kStartingUp);
            mDesk.KillHandles(display);
            display.saved = display.display->SavedValues();
            Answering(display);
        }
        mKeeper->DesktopChanged();
    }

    void Answering(SDeskDisplay& display_I) {
        display_I.restoreDue = mClock.Now() + kRestoreBound;
        // The notes of an earlier round are not about this one.
        mGaveUp.erase(display_I.serial);
    }

    void CheckNotified(STotals& totals_IO) {
        for (const SKeeperResult& result : mDesk.TakeNotified()) {
            SDeskDisplay* display = Find(result.serial);
            if (display == nullptr) {
                continue;
            }
            if (result.kind == SKeeperResult::EKind::Restored && !HasKeptProfile(*display)) {
                std::string settings;
                for (const std::string& setting : result.settings) {
                    settings += " " + setting;
                }
                Violation(totals_IO, "%s reported restored (%s) but has brightness %u, contrast %u",
                          display->model.c_str(), settings.c_str(),
                          display->display->Value(display->brightnessCode),
                          display->display->Value(kContrast));
            }
            if (result.kind == SKeeperResult::EKind::Failed ||
                result.kind == SKeeperResult::EKind::NotAnswering) {
                mGaveUp.insert(display->serial);
            }
        }
    }

    void CheckRestores(STotals& totals_IO) {
        for (SDeskDisplay& display : mDisplays) {
            if (!display.restoreDue) {
                continue;
            }
            if (HasKeptProfile(display)) {
                ++totals_IO.restored;
                display.restoreDue.reset();
            } else if (mClock.Now() > *display.restoreDue) {
                if (mGaveUp.count(display.serial) != 0) {
                    ++totals_IO.gaveUpAndSaid;
                } else {
                    Violation(totals_IO,
                              "%s: kept profile not back %lld s after it answered again, nothing said",
                              display.model.c_str(),
                              static_cast<long long>(
                                  std::chrono::duration_cast<std::chrono::seconds>(kRestoreBound).count()));
                }
                display.restoreDue.reset();
            }
        }
    }

    bool HasKeptProfile(const SDeskDisplay& display_I) const {
        return display_I.display->Value(display_I.brightnessCode) == display_I.keptBrightness &&
               display_I.display->Value(kContrast) == display_I.keptContrast;
    }

    // Saved values and the writes in the displays' logs; each display's log is read and
    // cleared while its lock is held, so no run of the tool is in the middle of it.
    void CheckTransactions(STotals& totals_IO) {
        for (SDeskDisplay& display : mDisplays) {
            const std::unique_ptr<CDisplayLock> held = HoldInRealTime(display.serial);
            if (!held) {
                Violation(totals_IO, "%s: its lock was not let go in 10 s", display.model.c_str());
                continue;
            }
            if (display.display->SavedValues() != display.saved) {
                Violation(totals_IO, "%s: saved values changed", display.model.c_str());
                display.saved = display.display->SavedValues();
            }
            for (const STransaction& transaction : display.display->Transactions()) {
                totals_IO.faults += transaction.fault != EFault::None ? 1 : 0;
                const SHostRequest request = DecodeHostRequest(transaction.request);
                if (request.command == ddcCC_GetVCPFeatureRequest && transaction.fault == EFault::None &&
                    transaction.reply.size() >= 11 && transaction.reply[3] == 0x00) {
                    display.lastRead[request.vcpCode] =
                        static_cast<uint16_t>(transaction.reply[8] << 8 | transaction.reply[9]);
                } else if (request.command == ddcCC_SetVCPFeatureRequest && transaction.request.size() >= 7) {
                    const uint16_t value =
                        static_cast<uint16_t>(transaction.request[5] << 8 | transaction.request[6]);
                    const auto read = display.lastRead.find(request.vcpCode);
                    if (read != display.lastRead.end() && read->second == value &&
                        IsSetting(request.vcpCode)) {
                        Violation(totals_IO, "%s: wrote 0x%02X=%u, which it had just read",
                                  display.model.c_str(), request.vcpCode, value);
                    }
                    display.lastRead.erase(request.vcpCode);
                }
            }
            display.display->ClearTransactions();
        }
    }

    // The codes whose writes the check above covers: the profiles' settings. (Actions and the
    // preset codes are written as commands, whatever they read.)
    bool IsSetting(uint8_t code_I) const {
        return code_I == 0x10 || code_I == 0x6B || code_I == kContrast || code_I == kSharpness;
    }

    // The tool applies profiles again and again, as a script on the machine would.
    void RunTool(std::atomic<bool>& stop_I, std::atomic<unsigned long>& progress_IO, STotals& totals_IO) {
        std::mt19937 random(mRandom());
        const std::string file = (mFolder / "tool-profile.json").string();
        const char* temperatures[] = {"5000k", "6500k", "9300k"};
        while (!stop_I) {
            SDeskDisplay& display = mDisplays[random() % mDisplays.size()];
            const unsigned sharpness = random() % 5;
            std::ofstream(file) << "{\"settings\": {\"sharpness\": " << sharpness
                                << ", \"colour-temperature\": \"" << temperatures[random() % 3] << "\"}}\n";
            const unsigned long epoch = mDeskEpoch;
            CSoakToolSource source(mDesk);
            std::ostringstream out;
            std::ostringstream err;
            const int code = RunCommandLineTool({"profile", "apply", display.serial, file}, source, out, err);
            ++totals_IO.toolRuns;
            if (code == CliExit::kDone) {
                ++totals_IO.toolDone;
                const std::unique_ptr<CDisplayLock> held = HoldInRealTime(display.serial);
                if (epoch == mDeskEpoch && held && display.display->Value(kSharpness) != sharpness) {
                    Violation(totals_IO, "%s: the tool reported the profile applied, sharpness is %u, not %u",
                              display.model.c_str(), display.display->Value(kSharpness), sharpness);
                }
            } else if (code == CliExit::kCommunicationFailure) {
                ++totals_IO.toolFailed;
            } else if (code == CliExit::kNoSuchDisplay &&
                       (epoch != mDeskEpoch || !mDesk.IsPlugged(display))) {
                ++totals_IO.toolNotFound;
            } else {
                Violation(totals_IO, "the tool ended with exit code %d: %s", code, err.str().c_str());
            }
            ++progress_IO;
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 3));
        }
    }

    SDeskDisplay* Find(const std::string& serial_I) {
        for (SDeskDisplay& display : mDisplays) {
            if (display.serial == serial_I) {
                return &display;
            }
        }
        return nullptr;
    }

    CVirtualClock& mClock;
    std::mt19937 mRandom;
    fs::path mFolder;
    std::vector<SDeskDisplay> mDisplays;
    CSoakDesk mDesk;
    std::unique_ptr<CSettingsKeeper> mKeeper;
    std::atomic<unsigned long> mDeskEpoch{0};
    std::set<std::string> mGaveUp;
};

}  // namespace

int main(int argc, char** argv) {
    unsigned long steps = 2000;
    double rate = 0.02;
    uint32_t seed = 1;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--steps") == 0 && hasValue) {
            steps = std::strtoul(argv[++i], nullptr, 10);
        } else if (std::strcmp(argv[i], "--rate") == 0 && hasValue) {
            rate = std::strtod(argv[++i], nullptr);
        } else if (std::strcmp(argv[i], "--seed") == 0 && hasValue) {
            seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 10));
        } else {
            std::fprintf(stderr, "usage: vlr_desk_soak [--steps N] [--rate R] [--seed S]\n");
            return 2;
        }
    }
    // Locks of its own, beside any real program's.
    setenv("VLR_DISPLAY_LOCK_SCOPE", ("desk-soak-" + std::to_string(getpid()) + "-").c_str(), 1);
    const fs::path folder = fs::temp_directory_path() / ("vlr-desk-soak-" + std::to_string(getpid()));
    fs::create_directories(folder / "runtime");
    // The lock files go in a runtime folder of the soak's own, removed with everything else.
    setenv("XDG_RUNTIME_DIR", (folder / "runtime").c_str(), 1);

    CVirtualClock clock;
    CScopedClock scoped(clock);
    std::atomic<unsigned long> progress{0};
    CSoakWatchdog watchdog(progress, kRealTimeLimit, "a step or a tool run");

    STotals totals;
    {
        CDeskSoak soak(clock, seed, rate, folder);
        soak.Run(steps, progress, totals);
    }
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    std::printf(
        "steps %lu, desk events %lu, tool runs %lu (%lu done, %lu failed or found the display in use and "
        "said so, %lu found it unplugged), kept profiles restored %lu, given up and said %lu, faults "
        "injected %lu, violations %lu\n",
        totals.steps, totals.deskEvents, totals.toolRuns.load(), totals.toolDone.load(),
        totals.toolFailed.load(), totals.toolNotFound.load(), totals.restored, totals.gaveUpAndSaid,
        totals.faults, totals.violations.load());
    return totals.violations == 0 ? 0 : 1;
}
