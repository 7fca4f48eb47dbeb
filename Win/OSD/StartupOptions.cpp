#include "StartupOptions.h"

#include <regex>

#include "WinStrings.h"

namespace {

bool Has(const std::wstring& text_I, const wchar_t* option_I) {
    return text_I.find(option_I) != std::wstring::npos;
}

}  // namespace

SStartupOptions ParseStartupOptions(const std::wstring& commandLine_I, bool debugDefault_I) {
    SStartupOptions options;
    std::wsmatch match;
    if (std::regex_search(commandLine_I, match, std::wregex(L"/language (\\w+)"))) {
        options.languageName = Narrow(match[1].str());
    }
    options.skipSerialMatch = Has(commandLine_I, L"/skipSerialMatch");
    options.exitOnError = Has(commandLine_I, L"/exitOnError");
    // The first channel option present wins, in this order.
    if (Has(commandLine_I, L"/displayPort")) {
        options.connectionMode = 1;
    } else if (Has(commandLine_I, L"/hidPort")) {
        options.connectionMode = 0;
    } else if (Has(commandLine_I, L"/ftdiPort")) {
        options.connectionMode = 2;
    }
    options.debugOutput = Has(commandLine_I, L"/debug") || debugDefault_I;
    options.help = Has(commandLine_I, L"/help");
    if (std::regex_search(commandLine_I, match, std::wregex(L"/demo(?: ([a-z][a-z0-9-]*))?"))) {
        options.demoScenario = match[1].matched ? Narrow(match[1].str()) : kDefaultDemoScenario;
    }
    return options;
}

const wchar_t* HelpText() {
    return L"/hidPort - use only a HID channel\n"
           L"/displayPort - use only a video display channel\n"
           L"/ftdiPort - use only an FTDI display channel\n"
           L"/skipSerialMatch - skip match monitor/channel serial numbers\n"
           L"/debug - send trace lines to debug output (slows down app)\n"
           L"/help - show options";
}
