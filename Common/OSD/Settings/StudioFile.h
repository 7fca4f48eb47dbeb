#pragma once
// The studio file: how every display of a room or a studio is to be set, in one JSON file that
// each station applies (velor-display apply). Its form is described by
// docs/studio.schema.json:
//   {"displays": [
//      {"model": "Canvas 22 Pro", "settings": {"brightness": 60, "colour-space": "srgb"}, "keep": true},
//      {"model": "canvas-22-pro", "serial": "VC1060A40892", "settings": {"brightness": 45}}]}
// An entry names a model by the name the displays report ("Canvas 22 Pro", with or without
// "Velor") or by its family's name ("canvas-22-pro"); with a serial number it is for that one
// display. The most specific entry wins: a display takes its own entry, else its model's; the
// two are not merged. Unknown models and setting names are reported and left out, never
// guessed at.

#include <optional>
#include <string>
#include <vector>

#include "Profile.h"

struct SStudioEntry {
    std::string model;   // as the file writes it
    std::string serial;  // empty: every display of the model
    SProfile profile;    // the settings, in the file's order
    bool keep = false;   // the display keeps these settings: the keeper puts them back
};

struct SStudioFile {
    std::vector<SStudioEntry> entries;
    // What was left out and why ("displays[2]: \"Canvas 99\" is not a model this tool knows").
    std::vector<std::string> problems;
};

// The studio file in a text; none, and the reason, when it is not one at all.
std::optional<SStudioFile> StudioFromText(const std::string& text_I, std::string& problem_O);
// The same from a file; the reason names the file.
std::optional<SStudioFile> ReadStudioFile(const std::string& path_I, std::string& problem_O);

// A model's name as entries and displays are compared: lower case, words joined by hyphens,
// without the maker's name ("Velor Canvas 22 Pro" -> "canvas-22-pro").
std::string PlainModelName(const std::string& model_I);

// The entry for a display of this model and family ("canvas-22-pro"; empty when unknown) and
// serial number: its own, else its model's; null when the file has none.
const SStudioEntry* StudioEntryFor(const SStudioFile& studio_I, const std::string& model_I,
                                   const std::string& family_I, const std::string& serial_I);
