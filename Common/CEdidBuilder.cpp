#include "CEdidBuilder.h"

#include <mutex>
#include <new>

#include "Assert.h"
#include "DebugLog.h"
#include "StringUtilities.h"

std::unique_ptr<CEdidBuilder> CEdidBuilder::mInstance;
std::map<uint16_t, TabletId> CEdidBuilder::sEdidToTablet;

namespace {

struct SEdidRow {
    uint16_t edidProductCode;
    uint16_t tabletProductId;
};

// Shipped contents, in the order the rows are added.
constexpr SEdidRow kShippedRows[] = {
    {0x1040, 0x0304}, {0x1046, 0x0333}, {0x1042, 0x0325}, {0x1043, 0x032B}, {0x1044, 0x032A},
    {0x1048, 0x032B}, {0x1049, 0x032A}, {0x1060, 0x037C}, {0x1063, 0x037C}, {0x1057, 0x0352},
    {0x1073, 0x03B2}, {0x1052, 0x034D}, {0x1053, 0x034E}, {0x1066, 0x0398}, {0x1067, 0x0399},
    {0x1064, 0x0390}, {0x1071, 0x03AE}, {0x1065, 0x0391}, {0x1068, 0x0396}, {0x1072, 0x03B0},
    {0x1070, 0x03A6}, {0x1075, 0x03BD},
};

}  // namespace

CEdidBuilder* CEdidBuilder::Instance() {
    static std::once_flag once;
    std::call_once(once, [] {
        mInstance.reset(new (std::nothrow) CEdidBuilder());
        if (mInstance) {
            mInstance->FillShippedTable();
        }
    });
    VLR_ASSERT(mInstance);
    return mInstance.get();
}

void CEdidBuilder::FillShippedTable() {
    for (const SEdidRow& row : kShippedRows) {
        Add(MakeTabletId(row.tabletProductId), row.edidProductCode);
    }
}

void CEdidBuilder::Add(TabletId tabletId_I, uint32_t edid_I) {
    VLR_ASSERT(edid_I < 0xFFFF);
    std::lock_guard<std::mutex> lock(mMutex);
    sEdidToTablet[static_cast<uint16_t>(edid_I)] = tabletId_I;
}

std::vector<uint16_t> CEdidBuilder::FamilyOf(TabletId tabletId_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::vector<uint16_t> family;
    for (const auto& row : sEdidToTablet) {
        if (row.second == tabletId_I) {
            family.push_back(row.first);
        }
    }
    return family;
}

bool CEdidBuilder::IsInFamily(TabletId tabletId_I, uint16_t edid_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = sEdidToTablet.find(edid_I);
    return it != sEdidToTablet.end() && it->second == tabletId_I;
}

int32_t CEdidBuilder::LookupByEDID(const std::string& shortName_I) {
    if (shortName_I.compare(0, 3, "VLR") != 0) {
        DLog("LookupByEDID: WARNING - found NO tablet to match EDID: %s\n", shortName_I.c_str());
        return -1;
    }
    uint32_t parsed = 0;
    if (!ParseHex32(shortName_I.substr(3), parsed)) {
        DLog("HexStringToInteger: %s a string to %s\n", "cannot convert", shortName_I.c_str());
        parsed = 0;
    }
    DLog("LookupByEDID: found tablet: %d to match EDID: %s\n", static_cast<int>(parsed), shortName_I.c_str());
    std::lock_guard<std::mutex> lock(mMutex);
    // operator[] enters an unknown code with tablet 0, which no resource names.
    return static_cast<int32_t>(sEdidToTablet[static_cast<uint16_t>(parsed & 0xFFFF)]);
}

size_t CEdidBuilder::Size() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return sEdidToTablet.size();
}
