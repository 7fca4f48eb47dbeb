#include "StringUtilities.h"

#include <cstdarg>
#include <cstdio>

std::string StringPrintf(const char* format_I, ...) {
    va_list args;
    va_start(args, format_I);
    va_list copy;
    va_copy(copy, args);
    int needed = std::vsnprintf(nullptr, 0, format_I, args);
    va_end(args);
    std::string result;
    if (needed > 0) {
        result.resize(static_cast<size_t>(needed) + 1);
        std::vsnprintf(result.data(), result.size(), format_I, copy);
        result.resize(static_cast<size_t>(needed));
    }
    va_end(copy);
    return result;
}

std::string TrimRightWhitespace(std::string text_I) {
    size_t end = text_I.find_last_not_of(" \t\r\n\v\f");
    text_I.erase(end == std::string::npos ? 0 : end + 1);
    return text_I;
}

bool ParseHex32(const std::string& text_I, uint32_t& value_O) {
    size_t pos = 0;
    if (text_I.size() > 2 && text_I[0] == '0' && (text_I[1] == 'x' || text_I[1] == 'X')) {
        pos = 2;
    }
    if (pos >= text_I.size()) {
        return false;
    }
    uint64_t value = 0;
    for (; pos < text_I.size(); ++pos) {
        char c = text_I[pos];
        int digit;
        if (c >= '0' && c <= '9') {
            digit = c - '0';
        } else if (c >= 'a' && c <= 'f') {
            digit = c - 'a' + 10;
        } else if (c >= 'A' && c <= 'F') {
            digit = c - 'A' + 10;
        } else {
            return false;
        }
        value = value * 16 + static_cast<uint64_t>(digit);
        if (value > 0xFFFFFFFFull) {
            return false;
        }
    }
    value_O = static_cast<uint32_t>(value);
    return true;
}
