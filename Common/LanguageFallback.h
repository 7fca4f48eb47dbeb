#pragma once
// The order in which the interface looks for a text in other languages when the requested one
// has none: region to neutral language, neutral language to English, and Chinese variants
// among themselves (Chinese never falls back to English).

#include <cstdint>

// One step from a 16-bit language id (low 10 bits primary language, high 6 bits
// sub-language). False when there is no further step.
bool NextFallbackLanguage(uint16_t& languageId_IO);
