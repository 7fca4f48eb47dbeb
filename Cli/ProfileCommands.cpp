// profile save, profile apply and check.

#include "Tool.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Clock.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "ParallelWork.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

int CTool::ProfileSave(SFoundDisplay& found_I, const std::string& file_I) {
    std::string problem;
    if (!WriteProfileFile(file_I, CaptureProfile(*found_I.display, found_I.model, found_I.serial), problem)) {
        mErr << problem << "\n";
        return CliExit::kBadUsage;
    }
    return CliExit::kDone;
}

int CTool::ProfileApply(SFoundDisplay& found_I, const std::string& file_I, bool json_I) {
    const std::optional<SProfile> profile = ReadProfile(file_I);
    if (!profile) {
        return CliExit::kBadUsage;
    }
    const SProfileReport report =
        ApplyProfile(*found_I.display, *profile, [&](uint8_t code_I) { Remember(found_I, code_I); });
    if (json_I) {
        mOut << ReportJson(found_I, report).dump(2) << "\n";
    }
    return PrintReport(found_I, report, json_I);
}

int CTool::Check(SFoundDisplay& found_I, const std::string& file_I, bool json_I) {
    const std::optional<SProfile> profile = ReadProfile(file_I);
    if (!profile) {
        return CliExit::kBadUsage;
    }
    const SProfileReport report = CheckProfile(*found_I.display, *profile);
    if (json_I) {
        mOut << ReportJson(found_I, report).dump(2) << "\n";
    } else if (report.Matches()) {
        mOut << "matches " << file_I << "\n";
    }
    return PrintReport(found_I, report, json_I);
}
