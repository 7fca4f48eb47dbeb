#include "StringUtilities.h"

#include <algorithm>
#include <vector>

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

namespace {

// The well-formed UTF-8 sequences of a lead byte: their length and the range the second byte
// must fall in (the others take 80..BF). Length 0: the byte cannot start a sequence.
struct SUtf8Lead {
    size_t length;
    uint8_t secondLow;
    uint8_t secondHigh;
};

SUtf8Lead Utf8Lead(uint8_t lead_I) {
    if (lead_I < 0x80)
        return {1, 0, 0};
    if (lead_I >= 0xC2 && lead_I <= 0xDF)
        return {2, 0x80, 0xBF};
    if (lead_I == 0xE0)
        return {3, 0xA0, 0xBF};  // no overlong forms
    if (lead_I == 0xED)
        return {3, 0x80, 0x9F};  // no surrogates
    if (lead_I >= 0xE1 && lead_I <= 0xEF)
        return {3, 0x80, 0xBF};
    if (lead_I == 0xF0)
        return {4, 0x90, 0xBF};  // no overlong forms
    if (lead_I >= 0xF1 && lead_I <= 0xF3)
        return {4, 0x80, 0xBF};
    if (lead_I == 0xF4)
        return {4, 0x80, 0x8F};  // nothing above U+10FFFF
    return {0, 0, 0};
}

// Reads the sequence that starts at i_I: how many bytes belong to it (at least one) and, when
// it is well formed, its code point. False for an ill-formed sequence.
bool ReadUtf8Sequence(const std::string& text_I, size_t i_I, size_t& taken_O, uint32_t& code_O) {
    const uint8_t lead = static_cast<uint8_t>(text_I[i_I]);
    const SUtf8Lead form = Utf8Lead(lead);
    taken_O = 1;
    if (form.length == 0) {
        return false;
    }
    code_O = form.length == 1 ? lead : lead & (0x7F >> form.length);
    for (; taken_O < form.length && i_I + taken_O < text_I.size(); ++taken_O) {
        const uint8_t next = static_cast<uint8_t>(text_I[i_I + taken_O]);
        const uint8_t low = taken_O == 1 ? form.secondLow : 0x80;
        const uint8_t high = taken_O == 1 ? form.secondHigh : 0xBF;
        if (next < low || next > high) {
            return false;
        }
        code_O = (code_O << 6) | (next & 0x3F);
    }
    return taken_O == form.length;
}

}  // namespace

std::u16string Utf8ToUtf16(const std::string& text_I) {
    // As the system's UTF-8 conversion does: each ill-formed sequence (its longest start that
    // could still have become a character) is one U+FFFD, and decoding goes on at the first
    // byte that does not belong to it, so nothing valid after it is lost.
    std::u16string out;
    out.reserve(text_I.size());
    for (size_t i = 0; i < text_I.size();) {
        size_t taken = 1;
        uint32_t code = 0;
        const bool wellFormed = ReadUtf8Sequence(text_I, i, taken, code);
        i += taken;
        if (!wellFormed) {
            out += u'\uFFFD';
        } else if (code >= 0x10000) {
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
        size_t taken = 1;
        uint32_t code = 0;
        if (!ReadUtf8Sequence(text_I, i, taken, code)) {
            return false;
        }
        i += taken;
    }
    return true;
}

size_t EditDistance(const std::string& a_I, const std::string& b_I) {
    std::vector<size_t> row(b_I.size() + 1);
    for (size_t j = 0; j < row.size(); ++j) {
        row[j] = j;
    }
    for (size_t i = 1; i <= a_I.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b_I.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a_I[i - 1] == b_I[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}
