// velor-display: the command-line tool. With --demo it works on the demo's virtual displays;
// otherwise on the displays this system's transports find.

#include <algorithm>
#include <iostream>

#include "CommandLineTool.h"
#include "DemoDisplays.h"

namespace {

// No transports of this system yet: an empty list.
class CNoDisplays : public IDisplaySource {
public:
    std::vector<SCliDisplay>& Displays() override { return mNone; }

private:
    std::vector<SCliDisplay> mNone;
};

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    const bool demo = std::find(args.begin(), args.end(), "--demo") != args.end();
    if (demo) {
        CDemoDisplays displays(CDemoDisplays::DefaultStateFile());
        return RunCommandLineTool(args, displays, std::cout, std::cerr);
    }
    CNoDisplays none;
    const int result = RunCommandLineTool(args, none, std::cout, std::cerr);
    if (result == 0 && !args.empty() && args.front() == "list") {
        std::cerr << "(this build finds no displays of its own yet; --demo uses the virtual displays)\n";
    }
    return result;
}
