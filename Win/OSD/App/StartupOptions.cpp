#include "StartupOptions.h"

#include <cwctype>

#include "WinStrings.h"

SSearchOptions SearchOptionsFrom(const SStartupOptions& options_I, uint16_t language_I) {
    SSearchOptions search;
    search.connectionMode = options_I.connectionMode;
    search.matchByModel = options_I.skipSerialMatch;
    search.stopOnGraphicsDriverError = options_I.exitOnError;
    search.atOnce = !options_I.serialInit;
    if (!options_I.noCache) {
        search.cache = std::make_shared<CCapabilitiesCache>(
            CCapabilitiesCache::DefaultFile(!options_I.demoScenario.empty()));
    }
    search.interfaceLanguage = language_I;
    return search;
}

namespace {

bool Has(const std::wstring& text_I, const wchar_t* option_I) {
    return text_I.find(option_I) != std::wstring::npos;
}

bool IsWordCharacter(wchar_t c_I) {
    return c_I == L'_' || std::iswalnum(static_cast<wint_t>(c_I)) != 0;
}

// The first match of "<option> (\w+)" anywhere in the text: the word, or nothing.
std::wstring WordAfter(const std::wstring& text_I, const std::wstring& option_I,
                       bool (*isPart_I)(wchar_t) = &IsWordCharacter) {
    const std::wstring prefix = option_I + L" ";
    for (size_t at = text_I.find(prefix); at != std::wstring::npos; at = text_I.find(prefix, at + 1)) {
        size_t end = at + prefix.size();
        while (end < text_I.size() && isPart_I(text_I[end])) {
            ++end;
        }
        if (end > at + prefix.size()) {
            return text_I.substr(at + prefix.size(), end - at - prefix.size());
        }
    }
    return {};
}

bool IsScenarioCharacter(wchar_t c_I) {
    return (c_I >= L'a' && c_I <= L'z') || (c_I >= L'0' && c_I <= L'9') || c_I == L'-';
}

}  // namespace

SStartupOptions ParseStartupOptions(const std::wstring& commandLine_I, bool debugDefault_I) {
    SStartupOptions options;
    if (const std::wstring language = WordAfter(commandLine_I, L"/language"); !language.empty()) {
        options.languageName = Narrow(language);
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
    // Not in the "/help" box, whose text stays as it is: the log-on entry and the README name it.
    options.tray = Has(commandLine_I, L"/tray");
    options.serialInit = Has(commandLine_I, L"/serialInit");
    options.noCache = Has(commandLine_I, L"/nocache");
    if (Has(commandLine_I, L"/demo")) {
        const std::wstring scenario = WordAfter(commandLine_I, L"/demo", &IsScenarioCharacter);
        options.demoScenario = scenario.empty() ? kDefaultDemoScenario : Narrow(scenario);
    }
    return options;
}

std::wstring ProgramOptions(const SStartupOptions& options_I) {
    std::wstring options;
    if (!options_I.demoScenario.empty()) {
        options += L"/demo " + Widen(options_I.demoScenario);
    }
    if (options_I.languageName != "userUI") {
        options += (options.empty() ? L"" : L" ") + (L"/language " + Widen(options_I.languageName));
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
