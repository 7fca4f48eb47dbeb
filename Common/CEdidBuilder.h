#pragma once
// The EDID-to-tablet table: which pen tablet (USB vendor and product id) is built into a
// display with a given 16-bit EDID product code. Several product codes may map to one
// tablet; together they form that tablet's product family, and every per-model decision of
// the program asks whether a display's product code is in a given family.

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// The maker's USB vendor id, carried in the high half of every tablet id.
constexpr uint16_t kVelorUsbVendorId = 0x2F4A;

using TabletId = uint32_t;

constexpr TabletId MakeTabletId(uint16_t productId_I) {
    return (static_cast<TabletId>(kVelorUsbVendorId) << 16) | productId_I;
}
constexpr uint16_t TabletProductId(TabletId tabletId_I) {
    return static_cast<uint16_t>(tabletId_I & 0xFFFF);
}

class CEdidBuilder {
public:
    // The single instance; the table is filled on first use. Null only if creation failed.
    static CEdidBuilder* Instance();

    // Sets the tablet of an EDID product code (0xFFFF is reserved).
    void Add(TabletId tabletId_I, uint32_t edid_I);

    // Every product code that maps to the tablet, in code order.
    std::vector<uint16_t> FamilyOf(TabletId tabletId_I) const;
    bool IsInFamily(TabletId tabletId_I, uint16_t edid_I) const;
    // Convenience for the usual form of the question: the family named by a USB product id.
    bool IsInProductFamily(uint16_t productId_I, uint16_t edid_I) const {
        return IsInFamily(MakeTabletId(productId_I), edid_I);
    }

    // Short name "VLR1070" -> tablet id; -1 when the name is not the maker's. An unknown
    // code is entered with tablet 0 and 0 is returned (no resource names product id 0).
    int32_t LookupByEDID(const std::string& shortName_I);

    size_t Size() const;

private:
    CEdidBuilder() = default;
    void FillShippedTable();

    static std::unique_ptr<CEdidBuilder> mInstance;
    static std::map<uint16_t, TabletId> sEdidToTablet;
    mutable std::mutex mMutex;
};
