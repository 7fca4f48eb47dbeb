#include "StringUtilities.h"

#include <cstdarg>
#include <cstdio>

#include "Assert.h"

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

namespace {

// Base64 values; 64 for the padding "=", high bit set for a byte outside the alphabet.
struct SBase64Table {
    uint8_t values[256];
    SBase64Table() {
        for (uint8_t& value : values) {
            value = 0x80;
        }
        const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (uint8_t i = 0; i < 64; ++i) {
            values[static_cast<uint8_t>(alphabet[i])] = i;
        }
        values[static_cast<uint8_t>('=')] = 64;
    }
};

uint8_t Base64Value(uint8_t coded_I) {
    static const SBase64Table table;
    const uint8_t* valueTable = table.values;
    VLR_ASSERT((valueTable[coded_I] & 0x80) == 0);
    return valueTable[coded_I];
}

}  // namespace

std::string Base64Decode(const std::string& codedbuffer_I) {
    VLR_ASSERT((((codedbuffer_I.size() + 3) / 4) * 4) == codedbuffer_I.size());
    std::string bytes;
    bytes.reserve(codedbuffer_I.size() / 4 * 3);
    for (size_t i = 0; i + 3 < codedbuffer_I.size(); i += 4) {
        const uint8_t s1 = Base64Value(static_cast<uint8_t>(codedbuffer_I[i]));
        const uint8_t s2 = Base64Value(static_cast<uint8_t>(codedbuffer_I[i + 1]));
        const uint8_t s3 = Base64Value(static_cast<uint8_t>(codedbuffer_I[i + 2]));
        const uint8_t s4 = Base64Value(static_cast<uint8_t>(codedbuffer_I[i + 3]));
        VLR_ASSERT(s1 < 64);
        VLR_ASSERT(s2 < 64);
        if (s1 >= 64 || s2 >= 64) {
            break;  // "=" or garbage where data must be: the rest cannot be trusted
        }
        bytes += static_cast<char>(((s1 & 0x3F) << 2) | ((s2 & 0x3F) >> 4));
        if (s3 >= 64) {
            const unsigned bits = s2 & 0x0F;
            VLR_ASSERT(bits == 0);
            break;
        }
        bytes += static_cast<char>(((s2 & 0x0F) << 4) | ((s3 & 0x3F) >> 2));
        if (s4 >= 64) {
            const unsigned bits = s3 & 0x03;
            VLR_ASSERT(bits == 0);
            break;
        }
        bytes += static_cast<char>(((s3 & 0x03) << 6) | (s4 & 0x3F));
    }
    return bytes;
}

std::u16string DecodeCodedString(const std::u16string& codedString_I) {
    if (codedString_I.empty() || codedString_I[0] != kCodedTextMark) {
        return codedString_I;
    }
    std::string coded;
    coded.reserve(codedString_I.size() + 3);
    for (size_t i = 1; i < codedString_I.size(); ++i) {
        VLR_ASSERT(codedString_I[i] < 256);
        coded += static_cast<char>(codedString_I[i] & 0xFF);
    }
    while (coded.size() % 4 != 0) {
        coded += '=';
    }
    return Utf8ToUtf16(Base64Decode(coded));
}

std::u16string Utf8ToUtf16(const std::string& text_I) {
    std::u16string out;
    out.reserve(text_I.size());
    for (size_t i = 0; i < text_I.size();) {
        const uint8_t lead = static_cast<uint8_t>(text_I[i]);
        size_t length = lead < 0x80           ? 1
                        : (lead >> 5) == 0x6  ? 2
                        : (lead >> 4) == 0xE  ? 3
                        : (lead >> 3) == 0x1E ? 4
                                              : 0;
        if (length == 0 || i + length > text_I.size()) {
            out += u'\uFFFD';  // not UTF-8: replaced, never dropped silently
            ++i;
            continue;
        }
        uint32_t code = length == 1 ? lead : lead & (0x7F >> length);
        for (size_t k = 1; k < length; ++k) {
            code = (code << 6) | (static_cast<uint8_t>(text_I[i + k]) & 0x3F);
        }
        i += length;
        if (code >= 0x10000) {
            code -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (code >> 10));
            out += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
        } else {
            out += static_cast<char16_t>(code);
        }
    }
    return out;
}

std::string Utf16ToUtf8(const std::u16string& text_I) {
    std::string out;
    for (size_t i = 0; i < text_I.size(); ++i) {
        uint32_t code = text_I[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text_I.size()) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text_I[++i] - 0xDC00);
        }
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return out;
}

bool IsValidUtf8(const std::string& text_I) {
    for (size_t i = 0; i < text_I.size();) {
        const uint8_t lead = static_cast<uint8_t>(text_I[i]);
        const size_t length = lead < 0x80           ? 1
                              : (lead >> 5) == 0x6  ? 2
                              : (lead >> 4) == 0xE  ? 3
                              : (lead >> 3) == 0x1E ? 4
                                                    : 0;
        if (length == 0 || i + length > text_I.size()) {
            return false;
        }
        for (size_t k = 1; k < length; ++k) {
            if ((static_cast<uint8_t>(text_I[i + k]) & 0xC0) != 0x80) {
                return false;
            }
        }
        i += length;
    }
    return true;
}
