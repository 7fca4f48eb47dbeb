#pragma once
// What a user can do about the Windows error codes that discovery reports as decimal numbers
// ("errcode: 3223725443"): the code in hexadecimal, as Microsoft's documentation and support
// write it, and one line of advice.

#include <string>

// The text with a line per error code it names appended; unchanged when it names none.
std::wstring WithErrorAdvice(const std::wstring& text_I);
