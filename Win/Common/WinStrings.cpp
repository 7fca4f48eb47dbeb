#include "WinStrings.h"

#include <windows.h>

std::string Narrow(const std::wstring& text_I) {
    if (text_I.empty()) {
        return {};
    }
    const int size = WideCharToMultiByte(CP_UTF8, 0, text_I.data(), static_cast<int>(text_I.size()), nullptr,
                                         0, nullptr, nullptr);
    std::string result(static_cast<size_t>(size > 0 ? size : 0), '\0');
    if (size > 0) {
        WideCharToMultiByte(CP_UTF8, 0, text_I.data(), static_cast<int>(text_I.size()), result.data(), size,
                            nullptr, nullptr);
    }
    return result;
}

std::wstring Widen(const std::string& text_I) {
    if (text_I.empty()) {
        return {};
    }
    const int size =
        MultiByteToWideChar(CP_UTF8, 0, text_I.data(), static_cast<int>(text_I.size()), nullptr, 0);
    std::wstring result(static_cast<size_t>(size > 0 ? size : 0), L'\0');
    if (size > 0) {
        MultiByteToWideChar(CP_UTF8, 0, text_I.data(), static_cast<int>(text_I.size()), result.data(), size);
    }
    return result;
}
