// The trimming every transport applies to a raw capabilities reply: the result is a prefix of
// the input, and a result that ends its first group is balanced.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "Connector.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    const ByteBuffer raw(data_I, data_I + size_I);
    const std::string trimmed = Connector::TrimCapabilitiesString(raw);
    if (trimmed.size() > raw.size() ||
        !std::equal(trimmed.begin(), trimmed.end(), raw.begin(),
                    [](char a_I, uint8_t b_I) { return static_cast<uint8_t>(a_I) == b_I; })) {
        __builtin_trap();
    }
    int depth = 0;
    for (char c : trimmed) {
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
    }
    if (!trimmed.empty() && trimmed.front() == '(' && trimmed.size() < raw.size() && depth != 0) {
        __builtin_trap();  // cut before the end, so its first group must have closed
    }
    return 0;
}
