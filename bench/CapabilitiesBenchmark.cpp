// How long initialisation spends parsing a display's capabilities, for a typical real
// string and the longest one captured.

#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>

#include "CapabilitiesParser.h"
#include "DisplayTraits.h"

namespace {

std::string ReadCaps(const char* name) {
    std::ifstream in(std::string(VLR_TESTDATA_DIR) + "/caps/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ParseEverything(benchmark::State& state, const char* file) {
    const std::string text = ReadCaps(file);
    const SCodeVariants variants = DisplayTraitsFor(0x1070).codeVariants;
    const CodeInfoTable table = BuildCodeInfoTable(variants);
    for (auto _ : state) {
        CapabilitiesMap caps = ParseCapabilitiesString(text);
        VCPOptionsMap options = CreateVCPCodeMap(variants, caps["vcp"], table);
        std::vector<uint32_t> commands = CreateCommandsVector(caps["cmds"]);
        benchmark::DoNotOptimize(options);
        benchmark::DoNotOptimize(commands);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

}  // namespace

BENCHMARK_CAPTURE(ParseEverything, typical, "iss_dell_u3011.txt");
BENCHMARK_CAPTURE(ParseEverything, deep_nesting, "ddcutil_lenovo_legion_27u10_deep_nesting.txt");
