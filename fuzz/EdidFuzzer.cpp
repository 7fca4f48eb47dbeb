// EDID text extraction and product code on any bytes, and the hardware-id lookup on any text.

#include <cstddef>
#include <cstdint>
#include <string>

#include "CEdidBuilder.h"
#include "EdidText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data_I, size_t size_I) {
    const ByteBuffer edid(data_I, data_I + size_I);
    Edid::DescriptorText(edid, Edid::kTagMonitorName);
    Edid::DescriptorText(edid, Edid::kTagSerialNumber);
    Edid::ProductCode(edid);
    // Hardware ids are short: the first bytes stand for one.
    const std::string name(reinterpret_cast<const char*>(data_I), size_I < 16 ? size_I : 16);
    CEdidBuilder::Instance()->LookupByEDID(name);
    return 0;
}
