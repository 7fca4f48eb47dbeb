#include "EdidText.h"

#include <algorithm>

#include "StringUtilities.h"

namespace Edid {

std::string DescriptorText(const ByteBuffer& edid_I, uint8_t tag_I) {
    const uint8_t pattern[4] = {0x00, 0x00, tag_I, 0x00};
    auto match = std::search(edid_I.begin(), edid_I.end(), std::begin(pattern), std::end(pattern));
    if (match == edid_I.end()) {
        return {};
    }
    std::string text;
    for (auto it = match + 4; it != edid_I.end() && *it >= 0x20 && *it <= 0x7E; ++it) {
        text += static_cast<char>(*it);
    }
    return TrimRightWhitespace(std::move(text));
}

uint16_t ProductCode(const ByteBuffer& edid_I) {
    if (edid_I.size() < 12) {
        return 0;
    }
    return static_cast<uint16_t>(edid_I[10] | (edid_I[11] << 8));
}

std::string ManufacturerId(const ByteBuffer& edid_I) {
    if (edid_I.size() < 10) {
        return {};
    }
    const unsigned id = (edid_I[8] << 8) | edid_I[9];
    std::string letters;
    for (int shift : {10, 5, 0}) {
        const unsigned letter = (id >> shift) & 0x1F;
        letters += letter >= 1 && letter <= 26 ? static_cast<char>('A' + letter - 1) : '?';
    }
    return letters;
}

}  // namespace Edid
