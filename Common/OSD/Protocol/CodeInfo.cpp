#include "CodeInfo.h"

#include "Assert.h"

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

CodeInfoTable BuildCodeInfoTable(const SCodeVariants& variants_I) {
    CodeInfoTable table;
    for (const SVcpCodeRow& base : VcpCodeRows()) {
        const SVcpCodeRow& row = *FindVcpCodeRow(base.code, variants_I);
        if (row.hasInfo) {
            table[row.code] = CCodeInfo::Explicit(row.access, row.type, row.readSize, row.writeSize);
        }
    }
    return table;
}
