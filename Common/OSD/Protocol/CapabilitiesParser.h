#pragma once
// The three readers of an MCCS capabilities string such as
// "(prot(monitor)type(lcd)model(x)cmds(01 02 03 0C F3)vcp(10 12 14(05 08 0B))mccs_ver(2.2))":
// the outer keys and their value texts, the option map made from the "vcp" value, and the
// command list made from the "cmds" value. Pure text processing, tolerant of what real
// monitors send: malformed input asserts (which only logs) and parsing goes on.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "CVCPOption.h"
#include "CodeInfo.h"

using CapabilitiesMap = std::map<std::string, std::string>;

// Splits the outer level into key -> value text; nested groups stay inside the value with
// their parentheses. Pairs with an empty key or value are dropped.
CapabilitiesMap ParseCapabilitiesString(const std::string& capsStr_I);

// Makes one option per known code of the "vcp" value; the option class follows the code's
// row with the display's variants. An empty result means failure.
VCPOptionsMap CreateVCPCodeMap(const SCodeVariants& variants_I, const std::string& vcpStr_I,
                               const CodeInfoTable& codeInfo_I);

// The command codes of the "cmds" value in the order they stand; the first token that is not
// hexadecimal ends the list.
std::vector<uint32_t> CreateCommandsVector(const std::string& cmdsStr_I);
