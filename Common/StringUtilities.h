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
