// The coded strings of the string tables (U+0298, base64 of UTF-8) and the UTF-8 step on any
// bytes: nothing crashes, and well-formed UTF-8 survives the round trip.

#include <cstddef>
#include <cstdint>
#include <string>

#include "StringUtilities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    const std::string bytes(reinterpret_cast<const char*>(data_I), size_I);
    std::u16string wide;
    for (size_t i = 0; i + 1 < size_I; i += 2) {
        wide += static_cast<char16_t>((data_I[i] << 8) | data_I[i + 1]);
    }
    DecodeCodedString(wide);
    DecodeCodedString(u"\u0298" + std::u16string(bytes.begin(), bytes.end()));
    Base64Decode(bytes);
    const std::u16string decoded = Utf8ToUtf16(bytes);
    if (IsValidUtf8(bytes) && Utf16ToUtf8(decoded) != bytes) {
        __builtin_trap();
    }
    Utf16ToUtf8(wide);
    return 0;
}
