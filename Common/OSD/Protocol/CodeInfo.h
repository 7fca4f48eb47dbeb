#pragma once
// What the program knows of each VCP code, as an option sees it: how it may be accessed,
// whether it is continuous, non-continuous or a table, and its read and write sizes, taken
// from the code table. A code missing from the table is never turned into an option.

#include <cstdint>
#include <map>

#include "VcpCodeTable.h"

class CCodeInfo {
public:
    CCodeInfo() = default;
    // Sizes start at 4/2 and follow the access: read-only has no write size, write-only no
    // read size, a placeholder neither.
    static CCodeInfo Continuous(uint32_t access_I);
    static CCodeInfo NonContinuous(uint32_t access_I);
    // A table gives its own sizes; the access rule then applies to them.
    static CCodeInfo Table(uint32_t access_I, uint32_t readSize_I, uint32_t writeSize_I);
    // Sizes exactly as given, for the few codes that keep both.
    static CCodeInfo Explicit(uint32_t access_I, uint32_t type_I, uint32_t readSize_I, uint32_t writeSize_I);

    uint32_t Access() const { return mAccess; }
    uint32_t Type() const { return mType; }
    uint32_t ReadSize() const { return mReadSize; }
    uint32_t WriteSize() const { return mWriteSize; }

    bool Readable() const { return mAccess == eAccessReadOnly || mAccess == eAccessReadWrite; }
    bool Writable() const { return mAccess == eAccessWriteOnly || mAccess == eAccessReadWrite; }
    bool WriteOnly() const { return mAccess == eAccessWriteOnly; }
    bool Placeholder() const { return mAccess == eAccessPlaceholder; }
    bool Continuous() const { return mType == eTypeContinuous; }
    bool Table() const { return mType == eTypeTable; }

    friend bool operator==(const CCodeInfo&, const CCodeInfo&) = default;

private:
    CCodeInfo(uint32_t access_I, uint32_t type_I, uint32_t readSize_I, uint32_t writeSize_I);
    void ApplyAccessToSizes();

    uint32_t mAccess = eAccessPlaceholder;
    uint32_t mType = eTypeNonContinuous;
    uint32_t mReadSize = 0;
    uint32_t mWriteSize = 0;
};

using CodeInfoTable = std::map<uint8_t, CCodeInfo>;

// The code information of every code the table describes, with the display's variants.
CodeInfoTable BuildCodeInfoTable(const SCodeVariants& variants_I);
