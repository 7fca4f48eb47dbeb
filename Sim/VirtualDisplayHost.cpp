// Serves one virtual display on a pseudo-terminal and prints the terminal's path, so that a
// program (the Windows build under Wine, through a COM-port link) can talk to it as to a
// display on a serial line.
//
//   vlr_virtual_display_host [--model KEY] [--edid FILE] [--fault KIND[:COUNT]]...
//                            [--fault-rate RATE] [--seed N] [--silent] [--list]
//
// KIND is one of no-reply, null, checksum, wrong-code, result-code, truncated. --silent makes
// the display answer nothing. The host runs until it is interrupted or terminated.

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "CPtyDisplayServer.h"
#include "CVirtualDisplay.h"
#include "VirtualDisplayPresets.h"

namespace {

std::atomic<bool> gStop{false};

void OnSignal(int) {
    gStop.store(true);
}

int Usage(const char* problem) {
    std::fprintf(stderr, "vlr_virtual_display_host: %s\n", problem);
    std::fprintf(stderr,
                 "usage: vlr_virtual_display_host [--model KEY] [--edid FILE] [--fault KIND[:COUNT]]... "
                 "[--fault-rate RATE] [--seed N] [--silent] [--list]\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string model = "studio-24";
    std::string edidFile;
    std::vector<std::pair<EFault, unsigned>> faults;
    double rate = 0.0;
    unsigned seed = 1;
    bool silent = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const bool hasValue = i + 1 < argc;
        if (option == "--list") {
            for (const SVirtualDisplayModel& preset : VirtualDisplayPresets()) {
                std::printf("%s\t%s\t0x%04X\n", preset.key.c_str(), preset.monitorName.c_str(),
                            preset.edidProductCode);
            }
            return 0;
        } else if (option == "--model" && hasValue) {
            model = argv[++i];
        } else if (option == "--edid" && hasValue) {
            edidFile = argv[++i];
        } else if (option == "--fault" && hasValue) {
            const std::string faultText = argv[++i];
            const size_t colon = faultText.find(':');
            const EFault fault = ParseFault(faultText.substr(0, colon));
            if (fault == EFault::None) {
                return Usage("unknown fault kind");
            }
            const unsigned count = colon == std::string::npos
                                       ? 1u
                                       : static_cast<unsigned>(std::atoi(faultText.c_str() + colon + 1));
            faults.emplace_back(fault, count);
        } else if (option == "--fault-rate" && hasValue) {
            rate = std::atof(argv[++i]);
        } else if (option == "--seed" && hasValue) {
            seed = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
        } else if (option == "--silent") {
            silent = true;
        } else {
            return Usage(("unknown option " + option).c_str());
        }
    }

    const SVirtualDisplayModel* preset = FindVirtualDisplayPreset(model);
    if (preset == nullptr) {
        return Usage(("no display model " + model + " (see --list)").c_str());
    }
    auto display = std::make_shared<CVirtualDisplay>(*preset);
    if (!edidFile.empty()) {
        std::ifstream in(edidFile, std::ios::binary);
        if (!in) {
            return Usage(("cannot read " + edidFile).c_str());
        }
        ByteBuffer edid{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        // Whole 128-byte blocks: a base block and at most 255 extensions.
        if (edid.empty() || edid.size() % 128 != 0 || edid.size() > 128 * 256) {
            return Usage((edidFile + " holds " + std::to_string(edid.size()) +
                          " bytes; an EDID is made of whole 128-byte blocks, 1 to 256 of them")
                             .c_str());
        }
        display->SetEdid(std::move(edid));
    }
    for (const auto& [fault, count] : faults) {
        display->Faults().FailNext(fault, count);
    }
    if (silent) {
        display->Faults().SetRate(1.0, seed, {EFault::NoReply});
    } else if (rate > 0.0) {
        display->Faults().SetRate(rate, seed);
    }

    CPtyDisplayServer server(display);
    if (!server.Open()) {
        return 1;
    }
    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    std::printf("%s\n", server.TerminalPath().c_str());
    std::fflush(stdout);
    server.Serve(gStop);
    return 0;
}
