// The files the user and other programs write for the keeper and the tool, on any bytes: a
// profile, the list of kept profiles, the profiles per application and a studio file. The first
// byte picks the reader.

#include <cstddef>
#include <cstdint>
#include <string>

#include "ApplicationRules.h"
#include "KeptProfiles.h"
#include "Profile.h"
#include "StudioFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    if (size_I == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data_I) + 1, size_I - 1);
    std::string problem;
    switch (data_I[0] % 4) {
        case 0:
            if (std::optional<SProfile> profile = ProfileFromText(text, problem)) {
                // What is read is written back as a profile that reads the same.
                std::string again;
                const std::optional<SProfile> reread = ProfileFromText(ProfileText(*profile), again);
                if (!reread || reread->values.size() != profile->values.size()) {
                    __builtin_trap();
                }
            }
            break;
        case 1: {
            CKeptProfiles kept("");
            kept.LoadText(text, problem);
            for (const SKeptProfile& entry : kept.All()) {
                kept.Of(entry.model, entry.serial);
            }
            break;
        }
        case 3:
            if (const std::optional<SStudioFile> studio = StudioFromText(text, problem)) {
                // Every entry it kept is the one found for its own display.
                for (const SStudioEntry& entry : studio->entries) {
                    const SStudioEntry* found = StudioEntryFor(*studio, entry.model, "", entry.serial);
                    if (found == nullptr || (!entry.serial.empty() && found->serial != entry.serial)) {
                        __builtin_trap();
                    }
                }
            }
            break;
        default: {
            const CApplicationRules rules = CApplicationRules::FromText(text, "C:\\Profiles", problem);
            rules.ProfileFor(text.substr(0, 40));
            break;
        }
    }
    return 0;
}
