#include "CapabilitiesCache.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "DebugLog.h"
#include "ProgramFolders.h"
#include "TextFile.h"

namespace {

using nlohmann::json;

constexpr int kFormat = 1;
// More than any desk has seen; the oldest entries go first.
constexpr size_t kMaxEntries = 64;
// A capabilities string is at most a few kilobytes; a file far beyond that is not ours.
constexpr std::uintmax_t kMaxFileSize = 1024 * 1024;

// A field of a file that may be anything: the wrong type reads as missing.
std::string Text(const json& entry_I, const char* key_I) {
    const auto it = entry_I.find(key_I);
    return it != entry_I.end() && it->is_string() ? it->get<std::string>() : std::string();
}

long long Number(const json& entry_I, const char* key_I) {
    const auto it = entry_I.find(key_I);
    return it != entry_I.end() && it->is_number_integer() ? it->get<long long>() : -1;
}

// FNV-1a over the entry's fields: a stable check value on every platform and build.
std::string CheckValue(const json& entry_I) {
    uint64_t hash = 14695981039346656037ull;
    auto add = [&hash](const std::string& text_I) {
        for (unsigned char c : text_I) {
            hash = (hash ^ c) * 1099511628211ull;
        }
        hash = (hash ^ 0xFF) * 1099511628211ull;  // a field separator no text contains
    };
    for (const char* field : {"manufacturer", "serial", "route", "firmware", "name", "capabilities"}) {
        add(Text(entry_I, field));
    }
    add(std::to_string(Number(entry_I, "product")));
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

bool IsOf(const json& entry_I, const SDisplayIdentity& identity_I) {
    return entry_I.is_object() && Text(entry_I, "manufacturer") == identity_I.manufacturer &&
           Number(entry_I, "product") == identity_I.productCode &&
           Text(entry_I, "serial") == identity_I.serial && Text(entry_I, "route") == identity_I.route;
}

// The file's entries; empty (and a log line) when it is missing, unreadable or not the cache.
json LoadEntries(const std::string& file_I) {
    std::error_code error;
    if (file_I.empty() || !std::filesystem::exists(Utf8Path(file_I), error)) {
        return json::array();
    }
    const std::uintmax_t size = std::filesystem::file_size(Utf8Path(file_I), error);
    if (error || size > kMaxFileSize) {
        DLog("Capabilities cache %s is not usable; the displays are read instead\n", file_I.c_str());
        return json::array();
    }
    std::ifstream in(Utf8Path(file_I), std::ios::binary);
    const json cache = json::parse(in, nullptr, false);
    if (!cache.is_object() || Number(cache, "capabilities-cache") != kFormat || !cache.contains("entries") ||
        !cache["entries"].is_array()) {
        DLog("Capabilities cache %s is damaged; the displays are read instead\n", file_I.c_str());
        return json::array();
    }
    return cache["entries"];
}

void SaveEntries(const std::string& file_I, const json& entries_I) {
    std::string problem;
    if (!WriteTextFile(file_I, json{{"capabilities-cache", kFormat}, {"entries", entries_I}}.dump(1) + "\n",
                       problem)) {
        DLog("Capabilities cache %s\n", problem.c_str());
    }
}

}  // namespace

std::optional<CCapabilitiesCache::SEntry> CCapabilitiesCache::Find(const SDisplayIdentity& identity_I,
                                                                   const SFirmwareVersion& firmware_I) {
    if (!identity_I.IsComplete() || firmware_I.IsZero()) {
        return std::nullopt;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    for (const json& entry : LoadEntries(mFile)) {
        if (!IsOf(entry, identity_I)) {
            continue;
        }
        if (Text(entry, "firmware") != firmware_I.ToString()) {
            DLog("Capabilities cache: %s has other firmware now; reading it\n", identity_I.serial.c_str());
            return std::nullopt;
        }
        const std::string capabilities = Text(entry, "capabilities");
        if (Text(entry, "check") != CheckValue(entry) || capabilities.empty() ||
            capabilities.front() != '(') {
            DLog("Capabilities cache: the entry of %s is damaged; reading the display\n",
                 identity_I.serial.c_str());
            return std::nullopt;
        }
        return SEntry{capabilities, Text(entry, "name")};
    }
    return std::nullopt;
}

void CCapabilitiesCache::Store(const SDisplayIdentity& identity_I, const SFirmwareVersion& firmware_I,
                               const SEntry& entry_I) {
    if (!identity_I.IsComplete() || firmware_I.IsZero() || mFile.empty()) {
        return;
    }
    json entry = {{"manufacturer", identity_I.manufacturer},
                  {"product", identity_I.productCode},
                  {"serial", identity_I.serial},
                  {"route", identity_I.route},
                  {"firmware", firmware_I.ToString()},
                  {"name", entry_I.monitorName},
                  {"capabilities", entry_I.capabilities}};
    entry["check"] = CheckValue(entry);
    std::lock_guard<std::mutex> lock(mMutex);
    json kept = json::array();
    for (json& other : LoadEntries(mFile)) {
        if (!IsOf(other, identity_I)) {
            kept.push_back(std::move(other));
        }
    }
    kept.push_back(std::move(entry));
    while (kept.size() > kMaxEntries) {
        kept.erase(kept.begin());
    }
    SaveEntries(mFile, kept);
}

void CCapabilitiesCache::Forget(const SDisplayIdentity& identity_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    json kept = json::array();
    bool dropped = false;
    for (json& other : LoadEntries(mFile)) {
        if (IsOf(other, identity_I)) {
            dropped = true;
        } else {
            kept.push_back(std::move(other));
        }
    }
    if (dropped) {
        SaveEntries(mFile, kept);
    }
}

std::string CCapabilitiesCache::DefaultFile(bool demo_I) {
    if (const char* named = std::getenv("VLR_CAPABILITIES_CACHE"); named != nullptr && *named != '\0') {
        return named;
    }
    const std::string folder = UserCacheFolder();
    if (folder.empty()) {
        return {};
    }
    return Utf8String(Utf8Path(folder) / (demo_I ? "demo-capabilities.json" : "capabilities.json"));
}
