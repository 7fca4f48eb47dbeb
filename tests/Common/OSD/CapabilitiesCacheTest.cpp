// The capabilities cache: a second start takes the string from the cache and builds exactly the
// option map a fresh read builds, and an entry of another display, another firmware or a damaged
// file is never used.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "CapabilitiesCache.h"
#include "VirtualBench.h"

namespace {

constexpr uint8_t kCapabilitiesRequest = 0xF3;

size_t CapabilitiesReads(const CVirtualDisplay& display_I) {
    size_t reads = 0;
    for (const STransaction& t : display_I.Transactions()) {
        reads += t.request.size() > 3 && t.request[3] == kCapabilitiesRequest ? 1 : 0;
    }
    return reads;
}

// Everything Initialize builds, as text: options (codes, kinds, values, ranges), commands,
// the parsed capabilities, name and versions.
std::string Built(const CDisplay& display_I) {
    std::ostringstream out;
    out << display_I.MonitorName() << "|" << display_I.Protocol() << "|" << display_I.DisplayType() << "|"
        << display_I.MCCSVersion().major << "." << int(display_I.MCCSVersion().minor) << "\n";
    for (const auto& [code, option] : display_I.Options()) {
        out << int(code) << ": ";
        option->Print(out);
        out << " range " << option->GetRange().minimum << ".." << option->GetRange().maximum << "\n";
    }
    for (uint32_t command : display_I.Commands()) {
        out << "cmd " << command << "\n";
    }
    for (const auto& [key, value] : display_I.Capabilities()) {
        out << key << "=" << value << "\n";
    }
    return out.str();
}

struct SCacheFolder {
    std::filesystem::path folder;
    explicit SCacheFolder(const char* name_I) : folder(std::filesystem::temp_directory_path() / name_I) {
        std::filesystem::remove_all(folder);
    }
    ~SCacheFolder() { std::filesystem::remove_all(folder); }
    std::string File() const { return (folder / "capabilities.json").string(); }
};

SDisplayIdentity IdentityOf(const SVirtualDisplayModel& model_I, const char* route_I = "HID") {
    return {"VLR", model_I.edidProductCode, model_I.serialText, route_I};
}

// A start of a display object over the virtual display, with the cache.
struct SStart {
    std::unique_ptr<CDisplay> display;
    bool ok = false;
};
SStart Start(SVirtualBench& bench_I, const std::shared_ptr<CCapabilitiesCache>& cache_I,
             const SDisplayIdentity& identity_I) {
    SStart start;
    start.display = std::make_unique<CDisplay>(bench_I.connector, bench_I.display->Model().edidProductCode);
    start.display->UseCapabilitiesCache(cache_I, identity_I);
    start.ok = start.display->Initialize();
    return start;
}

}  // namespace

TEST(CapabilitiesCache, ACachedStartBuildsWhatAFreshStartBuildsOnEveryFamilyPreset) {
    SCacheFolder folder("vlr-caps-cache-presets");
    auto cache = std::make_shared<CCapabilitiesCache>(folder.File());
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SCOPED_TRACE(model.monitorName);
        SVirtualBench bench(model);
        SVirtualBench reference(model);
        ASSERT_TRUE(reference.cdisplay->Initialize());  // no cache: the reference path

        const SStart first = Start(bench, cache, IdentityOf(model));
        ASSERT_TRUE(first.ok);
        EXPECT_FALSE(first.display->CapabilitiesFromCache());
        EXPECT_GT(CapabilitiesReads(*bench.display), 0u);
        bench.display->ClearTransactions();

        const SStart second = Start(bench, cache, IdentityOf(model));
        ASSERT_TRUE(second.ok);
        EXPECT_TRUE(second.display->CapabilitiesFromCache());
        EXPECT_EQ(CapabilitiesReads(*bench.display), 0u);
        // One transaction: the firmware version the entry is checked against.
        EXPECT_EQ(bench.display->Transactions().size(), 1u);
        EXPECT_EQ(Built(*second.display), Built(*reference.cdisplay));
    }
}

TEST(CapabilitiesCache, AnEntryServesOnlyTheSameDisplayRouteAndFirmware) {
    SCacheFolder folder("vlr-caps-cache-identity");
    auto cache = std::make_shared<CCapabilitiesCache>(folder.File());
    const SVirtualDisplayModel& model = VirtualDisplayPresets().front();
    const SDisplayIdentity identity = IdentityOf(model);
    const SFirmwareVersion firmware{1, 2, 3, 5, 0};
    cache->Store(identity, firmware, {"(prot(monitor))", "Name"});

    ASSERT_TRUE(cache->Find(identity, firmware));
    EXPECT_EQ(cache->Find(identity, firmware)->capabilities, "(prot(monitor))");
    EXPECT_EQ(cache->Find(identity, firmware)->monitorName, "Name");
    EXPECT_FALSE(cache->Find(identity, {1, 2, 4, 5, 0})) << "a firmware update";
    EXPECT_FALSE(cache->Find(identity, {})) << "a display that did not say its firmware";
    SDisplayIdentity other = identity;
    other.productCode = static_cast<uint16_t>(identity.productCode + 1);
    EXPECT_FALSE(cache->Find(other, firmware)) << "another model with the same serial number";
    other = identity;
    other.route = "graphics driver";
    EXPECT_FALSE(cache->Find(other, firmware)) << "the same display on another route";
    other = identity;
    other.serial += "X";
    EXPECT_FALSE(cache->Find(other, firmware));
    other = identity;
    other.serial.clear();
    cache->Store(other, firmware, {"(prot(monitor))", "Name"});
    EXPECT_FALSE(cache->Find(other, firmware)) << "nothing is kept for a display without a serial number";

    // A firmware update: the display is read again and its entry replaced.
    SVirtualDisplayModel updated = model;
    updated.firmware.build = static_cast<uint8_t>(model.firmware.build + 1);
    SVirtualBench before(model);
    ASSERT_TRUE(Start(before, cache, identity).ok);
    SVirtualBench after(updated);
    const SStart start = Start(after, cache, identity);
    ASSERT_TRUE(start.ok);
    EXPECT_FALSE(start.display->CapabilitiesFromCache());
    EXPECT_GT(CapabilitiesReads(*after.display), 0u);
    EXPECT_TRUE(cache->Find(identity, updated.firmware));
    EXPECT_FALSE(cache->Find(identity, model.firmware));
}

TEST(CapabilitiesCache, ADamagedEntryOrFileIsNeverUsedAndTheFreshReadReplacesIt) {
    SCacheFolder folder("vlr-caps-cache-damaged");
    auto cache = std::make_shared<CCapabilitiesCache>(folder.File());
    const SVirtualDisplayModel& model = VirtualDisplayPresets().front();
    const SDisplayIdentity identity = IdentityOf(model);
    auto rewrite = [&](auto change_I) {
        std::ifstream in(folder.File());
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        in.close();
        change_I(text);
        std::ofstream(folder.File(), std::ios::trunc) << text;
    };
    auto startReads = [&] {
        SVirtualBench bench(model);
        const SStart start = Start(bench, cache, identity);
        EXPECT_TRUE(start.ok);
        return start.ok && !start.display->CapabilitiesFromCache() && CapabilitiesReads(*bench.display) > 0;
    };
    EXPECT_TRUE(startReads()) << "an empty cache";
    EXPECT_FALSE(startReads()) << "the entry the first start made";

    // One code taken out of the string, the check value left as it was.
    rewrite([](std::string& text) {
        const size_t vcp = text.find("vcp(");
        ASSERT_NE(vcp, std::string::npos);
        text.erase(vcp + 4, 3);
    });
    EXPECT_TRUE(startReads()) << "a string changed behind its check value";
    EXPECT_FALSE(startReads()) << "the fresh read replaced it";

    for (const char* garbage :
         {"", "{", "[1,2,3]", "{\"capabilities-cache\": 1, \"entries\": 7}",
          "{\"capabilities-cache\": \"1\", \"entries\": []}",
          "{\"capabilities-cache\": 1, \"entries\": [{\"product\": \"x\", \"serial\": 3}]}"}) {
        SCOPED_TRACE(garbage);
        std::ofstream(folder.File(), std::ios::trunc) << garbage;
        EXPECT_TRUE(startReads());
        EXPECT_FALSE(startReads());
    }

    // A string with a valid check value that does not make a display (written by hand, say):
    // the display is read and the entry replaced.
    cache->Store(identity, model.firmware, {"(prot(monitor)type(lcd))", ""});
    EXPECT_TRUE(startReads());
    EXPECT_FALSE(startReads());
}
