#pragma once
// What the command line asks of a run.

#include <cstdint>
#include <string>

#include "SearchOptions.h"

struct SStartupOptions {
    std::string languageName = "userUI";
    bool skipSerialMatch = false;
    bool exitOnError = false;
    uint32_t connectionMode = 3;  // all routes
    bool debugOutput = false;
    bool help = false;
    // The resident keeper instead of the settings dialog.
    bool tray = false;
    // "/serialInit": displays initialised one after another (for drivers that dislike
    // concurrent DDC/CI); "/nocache": every capabilities string read from its display.
    bool serialInit = false;
    bool noCache = false;
    // The simulated machine to run on instead of the real one; empty: the real one.
    std::string demoScenario;
};

// How the settings window's and the keeper's searches go by these options.
SSearchOptions SearchOptionsFrom(const SStartupOptions& options_I, uint16_t language_I);

// Options are searched for anywhere in the text, case-sensitively, in any order.
// debugDefault_I is the trace switch's built-in default.
SStartupOptions ParseStartupOptions(const std::wstring& commandLine_I, bool debugDefault_I);

// The options of this run that a program it starts (the keeper, the settings) keeps: the
// demo's scenario and the interface language ("/demo one-per-route /language de").
std::wstring ProgramOptions(const SStartupOptions& options_I);

// The text of the "/help" box.
const wchar_t* HelpText();
constexpr wchar_t kHelpCaption[] = L"ScreenTuner Options";
constexpr unsigned kHelpStyle = 0x40040;  // MB_ICONINFORMATION | MB_TOPMOST

// The scenario "/demo" runs when it names none.
constexpr char kDefaultDemoScenario[] = "one-per-route";
