#include "CodeInfo.h"

#include "Assert.h"
#include "ModelGroups.h"

CCodeInfo::CCodeInfo(uint32_t access_I, uint32_t type_I, uint32_t readSize_I, uint32_t writeSize_I)
    : mAccess(access_I), mType(type_I), mReadSize(readSize_I), mWriteSize(writeSize_I) {}

void CCodeInfo::ApplyAccessToSizes() {
    if (mAccess == eAccessReadOnly) {
        mWriteSize = 0;
    } else if (mAccess == eAccessWriteOnly) {
        mReadSize = 0;
    } else if (mAccess == eAccessPlaceholder) {
        mReadSize = 0;
        mWriteSize = 0;
    }
}

CCodeInfo CCodeInfo::Continuous(uint32_t access_I) {
    CCodeInfo info(access_I, eTypeContinuous, 4, 2);
    info.ApplyAccessToSizes();
    VLR_ASSERT_AS(info.Readable(), "Readable()");
    return info;
}

CCodeInfo CCodeInfo::NonContinuous(uint32_t access_I) {
    CCodeInfo info(access_I, eTypeNonContinuous, 4, 2);
    info.ApplyAccessToSizes();
    return info;
}

CCodeInfo CCodeInfo::Table(uint32_t access_I, uint32_t readSize_I, uint32_t writeSize_I) {
    CCodeInfo info(access_I, eTypeTable, readSize_I, writeSize_I);
    info.ApplyAccessToSizes();
    return info;
}

CCodeInfo CCodeInfo::Explicit(uint32_t access_I, uint32_t type_I, uint32_t readSize_I, uint32_t writeSize_I) {
    return CCodeInfo(access_I, type_I, readSize_I, writeSize_I);
}

CodeInfoTable BuildCodeInfoTable(uint16_t edidProductCode_I) {
    CodeInfoTable table;
    auto add = [&table](std::initializer_list<uint8_t> codes_I, const CCodeInfo& info_I) {
        for (uint8_t code : codes_I) {
            table[code] = info_I;
        }
    };

    // Standard codes follow the VESA MCCS classification; the maker's codes (0xE0 and up)
    // follow the option classes the capabilities parser makes of them.
    add({0x0C, 0x0E, 0x10, 0x12, 0x13, 0x16, 0x17, 0x18, 0x1A, 0x1C, 0x20, 0x22, 0x24, 0x26, 0x28, 0x29,
         0x2A, 0x2C, 0x30, 0x32, 0x34, 0x36, 0x38, 0x39, 0x3A, 0x3C, 0x3E, 0x40, 0x41, 0x42, 0x43, 0x44,
         0x46, 0x48, 0x4A, 0x4C, 0x56, 0x58, 0x59, 0x5A, 0x5B, 0x5C, 0x5D, 0x5E, 0x64, 0x6B, 0x6C, 0x6D,
         0x6E, 0x6F, 0x70, 0x71, 0x7C, 0x87, 0x88, 0x8A, 0x8C, 0x8E, 0x90, 0x92, 0x95, 0x96, 0x97, 0x98,
         0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F, 0xA0, 0xA5, 0xA6, 0xA7, 0xE5, 0xE6},
        CCodeInfo::Continuous(eAccessReadWrite));
    add({0x02, 0x11, 0x14, 0x1E, 0x1F, 0x2E, 0x54, 0x60, 0x62, 0x63, 0x66, 0x82, 0x84, 0x86, 0x8D, 0x8F,
         0x91, 0x93, 0x94, 0xC4, 0xCA, 0xCC, 0xCD, 0xD0, 0xD4, 0xD6, 0xD7, 0xDA, 0xDB, 0xDC, 0xDE, 0xE0,
         0xE1, 0xE2, 0xE3, 0xE7, 0xE8, 0xE9, 0xEB, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF3, 0xF4},
        CCodeInfo::NonContinuous(eAccessReadWrite));
    add({0x0B, 0xAA, 0xAC, 0xAE, 0xB2, 0xB6, 0xC6, 0xC8, 0xC9, 0xCE, 0xDF},
        CCodeInfo::NonContinuous(eAccessReadOnly));
    add({0x01, 0x04, 0x05, 0x06, 0x08, 0x0A, 0xA2, 0xB0, 0xB5, 0xEA},
        CCodeInfo::NonContinuous(eAccessWriteOnly));
    add({0x03, 0x52}, CCodeInfo::Explicit(eAccessReadOnly, eTypeNonContinuous, 4, 2));
    add({0x8B}, CCodeInfo::Explicit(eAccessWriteOnly, eTypeNonContinuous, 4, 2));
    add({0xC2}, CCodeInfo::Continuous(eAccessReadOnly));

    add({0x73}, CCodeInfo::Table(eAccessReadOnly, 9, 0));
    add({0x74}, CCodeInfo::Table(eAccessReadWrite, 9, 9));
    add({0x75}, CCodeInfo::Table(eAccessReadWrite, 12, 12));
    add({0x76}, CCodeInfo::Table(eAccessWriteOnly, 0, 19));
    add({0x78}, CCodeInfo::Table(eAccessReadOnly, 128, 0));
    add({0xA4}, CCodeInfo::Table(eAccessReadWrite, 10, 10));
    add({0xB4}, CCodeInfo::Table(eAccessReadWrite, 5, 5));
    add({0xC3}, CCodeInfo::Table(eAccessReadWrite, 256, 256));
    add({0xCF}, CCodeInfo::Table(eAccessWriteOnly, 0, 325));
    add({0xD2}, CCodeInfo::Table(eAccessReadWrite, 16, 16));
    add({0xF2}, CCodeInfo::Table(eAccessReadOnly, 70, 0));

    add({0x72}, IsInModelGroup(EModelGroup::ContinuousGammaDefaultMccs, edidProductCode_I)
                    ? CCodeInfo::Continuous(eAccessReadWrite)
                    : CCodeInfo::NonContinuous(eAccessReadWrite));
    add({0xE4}, IsInModelGroup(EModelGroup::ColorOffsetRedIsColorPreset, edidProductCode_I)
                    ? CCodeInfo::NonContinuous(eAccessReadWrite)
                    : CCodeInfo::Continuous(eAccessReadWrite));
    return table;
}
