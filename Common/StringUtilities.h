#pragma once
// Small string helpers shared by the whole program.

#include <cstdint>
#include <string>

#include "DebugLog.h"  // VLR_PRINTF_FORMAT

std::string StringPrintf(const char* format_I, ...) VLR_PRINTF_FORMAT(1, 2);

// Removes blanks, tabs and line ends from the end.
std::string TrimRightWhitespace(std::string text_I);

// Reads the whole text as a hexadecimal number ("1070", "0x1070"); false when it is not one
// or does not fit 32 bits.
bool ParseHex32(const std::string& text_I, uint32_t& value_O);

// ---- Coded resource texts ----
// A resource text is either plain, or U+0298 followed by the base64 form of its UTF-8 bytes.
constexpr char16_t kCodedTextMark = 0x0298;

// Standard base64 ("=" padding); assertions report characters outside the alphabet and a
// length that is not a multiple of four.
std::string Base64Decode(const std::string& codedbuffer_I);

// The text of a resource string: a plain string unchanged, a coded one decoded. Unpadded
// base64 is padded first.
std::u16string DecodeCodedString(const std::u16string& codedString_I);

std::u16string Utf8ToUtf16(const std::string& text_I);
std::string Utf16ToUtf8(const std::u16string& text_I);
bool IsValidUtf8(const std::string& text_I);

// How many letters must be added, removed or changed to make one text the other (letter case
// counts as a change).
size_t EditDistance(const std::string& a_I, const std::string& b_I);
