#include "LanguageFallback.h"

namespace {
constexpr uint16_t kPrimaryMask = 0x03FF;
constexpr uint16_t kChinese = 0x0004;
constexpr uint16_t kEnglish = 0x0009;
constexpr uint16_t kChineseTaiwan = 0x0404;
constexpr uint16_t kChinesePrc = 0x0804;
constexpr uint16_t kChineseHongKong = 0x0C04;
constexpr uint16_t kChineseMacao = 0x1404;
}  // namespace

bool NextFallbackLanguage(uint16_t& languageId_IO) {
    const uint16_t before = languageId_IO;
    if (before == 0) {
        return false;
    }
    if ((before & kPrimaryMask) == kChinese) {
        switch (before) {
            case kChinese: languageId_IO = 0; break;
            case kChineseTaiwan:
            case kChinesePrc: languageId_IO = kChinese; break;
            case kChineseHongKong:
            case kChineseMacao: languageId_IO = kChineseTaiwan; break;
            default: languageId_IO = kChinesePrc; break;
        }
    } else if (before < 0x0400) {
        languageId_IO = before == kEnglish ? 0 : kEnglish;
    } else {
        languageId_IO = before & kPrimaryMask;
    }
    return languageId_IO != before;
}
