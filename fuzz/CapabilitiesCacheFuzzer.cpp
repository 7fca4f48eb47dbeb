// The capabilities cache on any bytes, as another program or a broken disk may leave it: looked
// up, stored into and looked up again. A damaged file must read as no entry, never as a wrong one.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "CapabilitiesCache.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    // In the temporary folder scripts/fuzz gives the run (TMPDIR), which it removes.
    static const std::string file = (std::filesystem::temp_directory_path() /
                                     ("vlr-fuzz-capabilities-" + std::to_string(getpid()) + ".json"))
                                        .string();
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data_I), static_cast<std::streamsize>(size_I));
    }
    CCapabilitiesCache cache(file);
    const SDisplayIdentity identity{"VLR", 0x1060, "VC1060A40892", "graphics driver"};
    const SFirmwareVersion firmware{3, 1, 2};
    cache.Find(identity, firmware);
    const CCapabilitiesCache::SEntry entry{"(prot(monitor)vcp(10 12))", "Canvas 22 Pro"};
    cache.Store(identity, firmware, entry);
    const std::optional<CCapabilitiesCache::SEntry> found = cache.Find(identity, firmware);
    // What was just stored is found whatever the file held before (or the file cannot be written).
    if (found && (found->capabilities != entry.capabilities || found->monitorName != entry.monitorName)) {
        __builtin_trap();
    }
    return 0;
}
