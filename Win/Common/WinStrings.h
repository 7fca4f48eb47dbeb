#pragma once
// Conversions between the program's UTF-8 strings and Windows' UTF-16 ones.

#include <string>

std::string Narrow(const std::wstring& text_I);
std::wstring Widen(const std::string& text_I);
